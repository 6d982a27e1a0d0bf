#include "e2e/httpcalls.h"

#include <json/reader.h>
#include <json/writer.h>

#include <memory>

namespace e2e {

namespace {

constexpr int kPatienceS = 30;

}  // namespace

Json::Value ParseJson(const std::string& text) {
    Json::Value value;
    const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
    reader->parse(text.data(), text.data() + text.size(), &value, nullptr);
    return value;
}

Answer ToAnswer(const httplib::Result& result) {
    Answer answer;
    if (!result) {
        return answer;
    }
    answer.status = result->status;
    answer.requestId = result->get_header_value("X-Request-Id");
    answer.body = ParseJson(result->body);
    return answer;
}

HttpCalls::HttpCalls(const std::string& url, const std::string& token) : client_(url) {
    client_.set_keep_alive(true);
    client_.set_tcp_nodelay(true);
    client_.set_read_timeout(kPatienceS);
    if (!token.empty()) {
        client_.set_default_headers({{"Authorization", "Bearer " + token}});
    }
}

Answer HttpCalls::Get(const std::string& path) {
    return ToAnswer(client_.Get(path));
}

Answer HttpCalls::Post(const std::string& path, const std::string& body, const httplib::Headers& headers,
                       const std::string& type) {
    return ToAnswer(client_.Post(path, headers, body, type));
}

Answer HttpCalls::Call(const std::string& api, const std::string& method, const Json::Value& params,
                       const httplib::Headers& headers) {
    return Post("/api/" + api + "/v1/" + method, Json::writeString(Json::StreamWriterBuilder(), params),
                headers);
}

Json::Value Param(const std::string& name, const Json::Value& value) {
    Json::Value params(Json::objectValue);
    params[name] = value;
    return params;
}

}  // namespace e2e
