#include "host/requestprocess.h"

#include "host/cookies.h"
#include "host/exceptiontype.h"
#include "host/jsonparams.h"
#include "host/operations.h"
#include "host/records.h"
#include "host/request.h"

#include "libcamvora/operations.h"
#include "libcamvora/pairedcaller.h"
#include "libcamvora/requestcontent.h"
#include "libcamvora/requestid.h"
#include "libcamvora/requestorigin.h"
#include "platform/log.h"

#include <unistd.h>

#include <exception>
#include <map>
#include <optional>

namespace host {

namespace {

// For a stranger, an exception on the way to the module's own refusal is a refusal too.
Reply ReplyForException(const Request& request, const char* what) {
    CVPrintf(0, nullptr, nullptr, "host", __LINE__, __func__, "Handler failed with an exception of type %s\n",
             TypeName(std::current_exception()).c_str());
    if (request.caller == Caller::kStranger && !camvora::IsCallerPaired()) {
        return ReplyFor(FrameworkError::kNotAuthorized);
    }
    return ReplyFor(FrameworkError::kHandlerThrew, what);
}

Reply ReplyOf(const ORVA::ResponseContent& content) {
    if (!content.answered) {
        CVPrintf(0, nullptr, nullptr, "host", __LINE__, __func__, "Handler ended without an answer\n");
        return ReplyFor(FrameworkError::kNoAnswer);
    }
    return content.success ? SuccessReply(content.data) : ErrorReply(200, content.code, content.data);
}

Reply CallHandler(const Request& request, const MethodRow& row, const ORVA::RequestContent& content) {
    ORVA::ResponseContent answer;
    try {
        ORVA::APIRequest apiRequest(content);
        ORVA::APIResponse apiResponse(answer);
        row.handler(&apiRequest, &apiResponse);
        return ReplyOf(answer);
    } catch (const std::exception& exception) {
        return ReplyForException(request, exception.what());
    } catch (...) {
        return ReplyForException(request, "");
    }
}

std::optional<Reply> ReadFiles(const std::string& text, std::map<std::string, ORVA::UploadedFile>& files) {
    Json::Value byField;
    if (auto refusal = ReadParams(text, byField)) {
        return refusal;
    }
    for (const std::string& field : byField.getMemberNames()) {
        files[field] = {byField[field]["name"].asString(), byField[field]["path"].asString()};
    }
    return std::nullopt;
}

// Whoever shows no token may still prove to be a paired server.
const char* OriginOf(Caller caller) {
    switch (caller) {
        case Caller::kClient:
            return camvora::kClientOrigin;
        case Caller::kConsole:
            return camvora::kConsoleOrigin;
        case Caller::kSchedule:
            return camvora::kScheduleOrigin;
        case Caller::kStranger:
            break;
    }
    return "";
}

// Of a caller who is not known yet, the begin is recorded when he has proved who he is.
void BeginOperation(const MethodRow& row, const Json::Value& params) {
    if (!IsOperation(row.method)) {
        return;
    }
    camvora::PlanOperation(row.method, params["service"].isInt() ? params["service"].asInt() : 0);
    if (!camvora::RequestOrigin().empty()) {
        camvora::BeginPlannedOperation();
    }
}

Reply Answer(const Request& request, const Module& module) {
    if (request.row == kPing) {
        return SuccessReply(Json::Value());
    }
    const MethodRow& row = module.Rows().at(static_cast<std::size_t>(request.row));
    ORVA::RequestContent content;
    if (const auto refusal = ReadParams(request.body, content.params)) {
        return *refusal;
    }
    if (const auto refusal = ReadFiles(request.files, content.files)) {
        return *refusal;
    }
    content.authorized = request.caller != Caller::kStranger;
    content.upload = request.upload;
    content.method = row.method;
    content.cookies = ParseCookies(request.cookies);
    camvora::SetRequestOrigin(OriginOf(request.caller));
    BeginOperation(row, content.params);
    return CallHandler(request, row, content);
}

}  // namespace

void PrepareRequests() {
    Json::Value params;
    (void)ReadParams("{}", params);
    (void)SuccessReply(params);
}

void ServeRequest(int connection, const std::string& requestId, const Module& module, int timeS) noexcept {
    camvora::SetRequestId(requestId);
    alarm(static_cast<unsigned>(timeS));
    std::string text;
    int waitStatus = 0;
    if (ReceiveText(connection, text, waitStatus) == Received::kText) {
        (void)SendText(connection, Encode(Answer(DecodeRequest(text), module)));
    }
    _exit(kExitServed);
}

}  // namespace host
