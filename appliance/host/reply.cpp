#include "host/reply.h"

#include <json/writer.h>

#include <memory>
#include <sstream>

namespace host {

namespace {

constexpr char kSuccessBegin[] = R"({"success":true,)";

std::unique_ptr<Json::StreamWriter> CompactWriter() {
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    return std::unique_ptr<Json::StreamWriter>(builder.newStreamWriter());
}

std::string ToText(const Json::Value& value) {
    thread_local const std::unique_ptr<Json::StreamWriter> writer = CompactWriter();
    std::ostringstream text;
    writer->write(value, &text);
    return text.str();
}

}  // namespace

Reply SuccessReply(const Json::Value& data) {
    return {200, kSuccessBegin + (R"("data":)" + ToText(data)) + "}"};
}

bool IsSuccess(const Reply& reply) {
    return reply.body.rfind(kSuccessBegin, 0) == 0;
}

Reply ErrorReply(int httpStatus, int code, const Json::Value& data) {
    return {httpStatus, R"({"success":false,"error":{"code":)" + std::to_string(code) + R"(,"data":)" +
                            ToText(data) + "}}"};
}

}  // namespace host
