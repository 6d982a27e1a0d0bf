// A package file on its way to the appliance.
#pragma once

#include "client/formfile.h"

#include <json/value.h>

#include <string>

namespace client {

class Appliance;
class Progress;
struct Service;

class PackageUpload {
public:
    // Throws Failure as FormFile does.
    explicit PackageUpload(const std::string& path);

    // Sends the file and has the appliance unpack it and check it for the service.
    //   returns  the data of "GetPkgInfo"
    //   throws   Failure as Appliance::Upload does; a refusal has plain words, and the appliance's own too
    //            where `isForPrograms`
    Json::Value Send(const Appliance& host, const Service& service, Progress& progress,
                     bool isForPrograms) const;

private:
    Json::Value Store(const Appliance& host, Progress& progress) const;

    const std::string name_;
    const FormFile file_;
};

}  // namespace client
