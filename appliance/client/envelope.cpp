#include "client/envelope.h"

#include "client/failure.h"
#include "client/jsontext.h"

namespace client {
namespace {

constexpr int kHttpOk = 200;

struct CodeWords {
    int code;
    const char* words;
};

// The errors of the module, which come without words.
constexpr CodeWords kCodeWords[] = {
    {105, "the appliance does not accept the token, or there was none"},
    {400, "the appliance could not do it"},
    {401, "the appliance was not told the method"},
};

std::string WordsFor(int code, const Json::Value& data) {
    for (const CodeWords& row : kCodeWords) {
        if (row.code == code) {
            return row.words;
        }
    }
    const std::string text = LeafText(Member(data, "text"));
    return text.empty() ? "the appliance does not say why" : text;
}

Failure ForeignReply(int httpStatus, const std::string& what) {
    if (httpStatus == kHttpOk) {
        return {ExitStatus::kFailed, what + " failed: the reply is not an appliance's"};
    }
    return {StatusOfError(httpStatus, 0), what + " failed: HTTP status " + std::to_string(httpStatus)};
}

Failure AnsweredError(int httpStatus, const Json::Value& error, const std::string& what) {
    const int code = error["code"].asInt();
    const Json::Value& data = error["data"];
    Failure failure(StatusOfError(httpStatus, code),
                    what + " failed (error " + std::to_string(code) + "): " + WordsFor(code, data));
    failure.code = code;
    failure.data = data;
    return failure;
}

}  // namespace

Json::Value DataOf(const HttpReply& reply, const std::string& what) {
    Json::Value answer;
    const bool isJson = ParseJson(reply.body, answer);
    const Json::Value success = isJson ? Member(answer, "success") : Json::Value();
    if (success == Json::Value(true) && reply.status == kHttpOk && answer.isMember("data")) {
        return answer["data"];
    }
    if (success == Json::Value(false) && Member(answer["error"], "code").isInt()) {
        throw AnsweredError(reply.status, answer["error"], what);
    }
    throw ForeignReply(reply.status, what);
}

}  // namespace client
