#include "client/packageupload.h"

#include "client/appliance.h"
#include "client/failure.h"
#include "client/jsontext.h"
#include "client/progress.h"
#include "client/refusal.h"
#include "client/services.h"

#include <filesystem>

namespace client {
namespace {

constexpr char kField[] = "addonsSpkFile";

}  // namespace

PackageUpload::PackageUpload(const std::string& path)
    : name_(std::filesystem::path(path).filename()), file_(kField, path) {}

Json::Value PackageUpload::Send(const Appliance& host, const Service& service, Progress& progress,
                                bool isForPrograms) const {
    try {
        Json::Value params;
        params["pkgInfo"] = Store(host, progress);
        params["service"] = service.number;
        progress.Step("The appliance unpacks and checks it");
        return host.Call("GetPkgInfo", params);
    } catch (const Failure& failure) {
        throw Refusal(failure, name_, isForPrograms);
    }
}

// Returns where the appliance has stored the file.
Json::Value PackageUpload::Store(const Appliance& host, Progress& progress) const {
    progress.Step("Sending " + name_);
    const auto sizeBytes = static_cast<double>(file_.SizeBytes());
    const Json::Value data = host.Upload(file_, [&progress, sizeBytes](std::uint64_t sentBytes) {
        progress.SetDone(static_cast<double>(sentBytes) / sizeBytes);
    });
    Json::Value pkgInfo = Member(data, "pkgInfo");
    if (!pkgInfo.isObject()) {
        throw Failure(ExitStatus::kFailed, "Upload failed: the answer names no stored file");
    }
    return pkgInfo;
}

}  // namespace client
