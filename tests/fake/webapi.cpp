#include "fake/webapi.h"

#include "fake/journal.h"
#include "fake/json.h"

namespace ORVA {
namespace {

void AddMembers(Json::Value& object, const Json::Value& members) {
    for (const std::string& name : members.getMemberNames()) {
        object[name] = members[name];
    }
}

}  // namespace

APIRequest::APIRequest(const RequestContent& content) : content_(content) {}

bool APIRequest::IsAuthorized() const {
    fake::Record("IsAuthorized");
    return content_.isAuthorized;
}

Json::Value APIRequest::GetParam(const std::string& name, const Json::Value& defaultValue) const {
    fake::Record("GetParam", name, defaultValue);
    return content_.params.get(name, defaultValue);
}

std::string APIRequest::GetCookie(const std::string& name, const std::string& defaultValue) const {
    fake::Record("GetCookie", name, defaultValue);
    const auto found = content_.cookies.find(name);
    return found == content_.cookies.end() ? defaultValue : found->second;
}

std::string APIRequest::GetAPIMethod() const {
    fake::Record("GetAPIMethod");
    return content_.method;
}

bool APIRequest::IsUploadRequest() const {
    fake::Record("IsUploadRequest");
    return !content_.form.isNull();
}

APIUpload::APIUpload(APIRequest* request) : content_(request->content_) {
    fake::Record("APIUpload");
}

void APIUpload::GetUploadParam(Json::Value& form) {
    fake::Record("GetUploadParam", form);
    AddMembers(form, content_.form);
}

void APIUpload::GetUploadFile(Json::Value& form) {
    fake::Record("GetUploadFile", form);
    AddMembers(form, content_.files);
}

APIResponse::APIResponse(ResponseContent& content) : content_(content) {}

void APIResponse::SetSuccess(const Json::Value& data) {
    content_.answer = "SetSuccess " + fake::Text(data);
    fake::WriteLine(content_.answer);
}

void APIResponse::SetError(int code, const Json::Value& data) {
    content_.answer = "SetError " + fake::Text(code) + " " + fake::Text(data);
    fake::WriteLine(content_.answer);
}

}  // namespace ORVA

namespace fake {

ORVA::RequestContent Authorized(const std::string& method, const std::string& params) {
    return {true, method, ParseJson(params), {}};
}

ORVA::RequestContent Unauthorized(const std::string& method, const std::string& params,
                                  const std::map<std::string, std::string>& cookies) {
    return {false, method, ParseJson(params), cookies};
}

ORVA::RequestContent Upload(const std::string& form, const std::string& files) {
    return {true, "Upload", Json::Value(Json::objectValue), {}, ParseJson(form), ParseJson(files)};
}

std::string Serve(Handler handler, const ORVA::RequestContent& request) {
    ORVA::ResponseContent response;
    ORVA::APIRequest apiRequest(request);
    ORVA::APIResponse apiResponse(response);
    handler(&apiRequest, &apiResponse);
    return response.answer;
}

Steps Admission() {
    return {"GetParam relayedCmd false", "IsCmsHost", "IsAuthorized", "GetAPIMethod"};
}

}  // namespace fake
