#include "host/reply.h"

#include "host/jsonappend.h"

namespace host {

namespace {

constexpr char kSuccessBegin[] = R"({"success":true,)";

}  // namespace

Reply SuccessReply(const Json::Value& data) {
    Reply reply{200, kSuccessBegin + std::string(R"("data":)")};
    AppendJson(reply.body, data);
    reply.body += '}';
    return reply;
}

bool IsSuccess(const Reply& reply) {
    return reply.body.rfind(kSuccessBegin, 0) == 0;
}

Reply ErrorReply(int httpStatus, int code, const Json::Value& data) {
    Reply reply{httpStatus, R"({"success":false,"error":{"code":)" + std::to_string(code) + R"(,"data":)"};
    AppendJson(reply.body, data);
    reply.body += "}}";
    return reply;
}

}  // namespace host
