#include "host/bodysize.h"

#include <strings.h>

#include <string>

namespace host {

namespace {

constexpr char kSize[] = "Content-Length";
constexpr char kEncoding[] = "Transfer-Encoding";
constexpr std::size_t kDigitLimit = 18;  // fits 64 bits

bool IsSize(const std::string& text) {
    return !text.empty() && text.size() <= kDigitLimit &&
           text.find_first_not_of("0123456789") == std::string::npos;
}

}  // namespace

BodyFraming FramingOf(const httplib::Request& request) {
    const std::size_t sizes = request.get_header_value_count(kSize);
    if (request.has_header(kEncoding)) {
        const bool isChunked =
            sizes == 0 && strcasecmp(request.get_header_value(kEncoding).c_str(), "chunked") == 0;
        return isChunked ? BodyFraming::kChunked : BodyFraming::kInvalid;
    }
    const bool isSized = sizes == 0 || (sizes == 1 && IsSize(request.get_header_value(kSize)));
    return isSized ? BodyFraming::kSized : BodyFraming::kInvalid;
}

std::uint64_t AnnouncedSize(const httplib::Request& request) {
    return request.get_header_value<std::uint64_t>(kSize);
}

bool HasBody(const httplib::Request& request) {
    return FramingOf(request) != BodyFraming::kSized || AnnouncedSize(request) > 0;
}

}  // namespace host
