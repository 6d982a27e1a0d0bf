#include "host/request.h"

#include <cstring>
#include <utility>

namespace host {

namespace {

struct RequestHead {
    std::int32_t row;
    Caller caller;
    bool upload;
    std::uint32_t cookiesSize;
    std::uint32_t filesSize;
};

template <typename Head>
std::string EncodeHead(const Head& head) {
    return std::string(reinterpret_cast<const char*>(&head), sizeof(head));
}

template <typename Head>
Head DecodeHead(const std::string& text) {
    Head head{};
    text.copy(reinterpret_cast<char*>(&head), sizeof(head));
    return head;
}

}  // namespace

std::string Encode(const Request& request) {
    const RequestHead head{request.row, request.caller, request.upload,
                           static_cast<std::uint32_t>(request.cookies.size()),
                           static_cast<std::uint32_t>(request.files.size())};
    return EncodeHead(head) + request.cookies + request.files + request.body;
}

Request DecodeRequest(const std::string& text) {
    const auto head = DecodeHead<RequestHead>(text);
    const std::size_t files = sizeof(head) + head.cookiesSize;
    const std::size_t body = files + head.filesSize;
    return {head.row,
            head.caller,
            head.upload,
            text.substr(sizeof(head), head.cookiesSize),
            text.substr(files, head.filesSize),
            text.substr(body)};
}

// The number stands at the end, where it is put and taken away without moving the rest.
std::string Encode(Reply reply) {
    reply.body += EncodeHead(reply.httpStatus);
    return std::move(reply.body);
}

Reply DecodeReply(std::string text) {
    const std::size_t bodySize = text.size() - sizeof(int);
    const int httpStatus = DecodeHead<int>(text.substr(bodySize));
    text.resize(bodySize);
    return {httpStatus, std::move(text)};
}

}  // namespace host
