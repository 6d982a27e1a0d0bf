// One request and one answer of the stand-in framework, behind ORVA::APIRequest and ORVA::APIResponse.
// Filled and read by the host, in the request process.
#pragma once

#include <json/value.h>

#include <map>
#include <string>

namespace ORVA {

// A file of a form, as it lies in the upload area.
struct UploadedFile {
    std::string clientName;  // as the client sent it: never part of a path
    std::string path;
};

struct RequestContent {
    bool authorized = false;
    bool upload = false;  // the body is a form
    std::string method;
    Json::Value params{Json::objectValue};
    std::map<std::string, UploadedFile> files;  // of a form, by field
    std::map<std::string, std::string> cookies;
};

// Untouched as long as the handler has not answered.
struct ResponseContent {
    bool answered = false;
    bool success = false;
    int code = 0;  // of an error
    Json::Value data;
};

}  // namespace ORVA
