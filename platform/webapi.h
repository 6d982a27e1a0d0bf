// The web API framework as a handler sees it: one request, one response, one upload.
// Implemented by the framework; called in the request process only.
#pragma once

#include <json/value.h>

#include <string>

namespace ORVA {

// What arrived and what is answered, in the framework's own form. Defined by whoever provides the
// framework; a handler never looks inside.
struct RequestContent;
struct ResponseContent;

// One request. Owned by the framework, valid for the duration of one handler call.
class APIRequest {
public:
    // Reads from `content`, which the framework owns and keeps alive longer than this object.
    explicit APIRequest(const RequestContent& content);

    // True when the framework itself has authorised the caller.
    bool IsAuthorized() const;

    // The parameter `name` as JSON of any type; `defaultValue` when the request does not carry it.
    Json::Value GetParam(const std::string& name, const Json::Value& defaultValue) const;

    // The text of the cookie `name`; `defaultValue` when the request does not carry it.
    std::string GetCookie(const std::string& name, const std::string& defaultValue) const;

    // The method's name without API and version; empty when the framework has none.
    std::string GetAPIMethod() const;

    // True when the request is a form that may carry files.
    bool IsUploadRequest() const;

private:
    friend class APIUpload;
    const RequestContent& content_;
};

// One answer. Owned by the framework, valid for the duration of one handler call. A handler calls
// exactly one of the two, once; of several calls the last one holds.
class APIResponse {
public:
    // Writes into `content`, which the framework owns and keeps alive longer than this object.
    explicit APIResponse(ResponseContent& content);

    // Answers with success and `data`: an object, or null where there is nothing to report.
    void SetSuccess(const Json::Value& data);

    // Answers with the error number `code` and `data`: an object with details, or null.
    void SetError(int code, const Json::Value& data);

private:
    ResponseContent& content_;
};

// The form of an upload request. Made by a handler for the length of its call.
class APIUpload {
public:
    // Reads the form of `request`, which stays the framework's.
    explicit APIUpload(APIRequest* request);

    // Adds each ordinary form field to the object `form` as a text member of the field's name.
    void GetUploadParam(Json::Value& form);

    // Adds two members for each file field F to the object `form`: F, the name that the client sent,
    // and F + "_tmp", the path of the stored file. The file stays after the request; whoever uses it
    // removes it.
    void GetUploadFile(Json::Value& form);

private:
    const RequestContent& content_;
};

}  // namespace ORVA
