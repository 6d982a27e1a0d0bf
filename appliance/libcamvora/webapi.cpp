#include "platform/webapi.h"

#include "libcamvora/requestcontent.h"

namespace ORVA {

APIRequest::APIRequest(const RequestContent& content) : content_(content) {}

bool APIRequest::IsAuthorized() const {
    return content_.authorized;
}

Json::Value APIRequest::GetParam(const std::string& name, const Json::Value& defaultValue) const {
    const Json::Value* value = content_.params.find(name.data(), name.data() + name.size());
    return value == nullptr ? defaultValue : *value;
}

std::string APIRequest::GetCookie(const std::string& name, const std::string& defaultValue) const {
    const auto cookie = content_.cookies.find(name);
    return cookie == content_.cookies.end() ? defaultValue : cookie->second;
}

std::string APIRequest::GetAPIMethod() const {
    return content_.method;
}

bool APIRequest::IsUploadRequest() const {
    return content_.upload;
}

APIResponse::APIResponse(ResponseContent& content) : content_(content) {}

void APIResponse::SetSuccess(const Json::Value& data) {
    content_.answered = true;
    content_.success = true;
    content_.code = 0;
    content_.data = data;
}

void APIResponse::SetError(int code, const Json::Value& data) {
    content_.answered = true;
    content_.success = false;
    content_.code = code;
    content_.data = data;
}

APIUpload::APIUpload(APIRequest* request) : content_(request->content_) {}

void APIUpload::GetUploadParam(Json::Value& form) {
    for (const std::string& field :
         content_.upload ? content_.params.getMemberNames() : Json::Value::Members()) {
        form[field] = content_.params[field];
    }
}

void APIUpload::GetUploadFile(Json::Value& form) {
    for (const auto& [field, file] : content_.files) {
        form[field] = file.clientName;
    }
    for (const auto& [field, file] : content_.files) {  // in place of a name that a client has put there
        form[field + "_tmp"] = file.path;
    }
}

}  // namespace ORVA
