#include "e2e/inspection.h"

#include "e2e/packages.h"
#include "support/unpacked.h"

#include <algorithm>
#include <array>
#include <exception>
#include <fstream>

namespace e2e {

namespace {

namespace fs = std::filesystem;

constexpr int kFailed = 400;
constexpr char kPackageFolder[] = "var/packages/Camvora/";
constexpr char kWorkDirectory[] = "target/cv_addOns_";

bool IsErrorInfo(const Json::Value& info) {
    constexpr std::array kMembers = {"sec", "key", "param1", "param2", "param3"};
    return info.isObject() && info["key"] != "" &&
           std::all_of(kMembers.begin(), kMembers.end(),
                       [&info](const char* name) { return info[name].isString(); });
}

std::string FaultOfTree(const Listing& meant, const Listing& tree) {
    const std::vector<std::string> paths = ChangedPaths(meant, tree);
    return paths.empty() ? "" : "is not unpacked as it was meant: " + paths.front();
}

}  // namespace

Answer Inspect(const Appliance& appliance, HttpCalls& calls, const AddOn& addOn, const std::string& package) {
    const std::string file = std::string(kUploads) + "/" + addOn.name;
    std::ofstream(appliance.PackagePath(file), std::ios::binary) << package;
    Json::Value params = Param("service", addOn.service);
    params["pkgInfo"]["fileName"] = "x.spk";
    params["pkgInfo"]["filePath"] = "/" + (kPackageFolder + file);
    return calls.AddOns("GetPkgInfo", params);
}

std::string FaultOf(const Appliance& appliance, const Answer& answer, const AddOn& addOn,
                    const std::string& meant) {
    if (!answer.Succeeded()) {
        return answer.Code() == kFailed && IsErrorInfo(answer.Data()["errinfo"])
                   ? ""
                   : "is answered: " + std::to_string(answer.status) + " " + answer.body.toStyledString();
    }
    try {
        return FaultOfTree(ListingOfPackage(meant, addOn.name, addOn.folder),
                           ListingOf(WorkDirectory(appliance, addOn), {"package.tgz"}));
    } catch (const std::exception& failure) {
        return std::string("is taken, but damaged: ") + failure.what();
    }
}

Listing ListingOutside(const Appliance& appliance) {
    std::set<std::string> leftOut;
    for (const char* name :
         {"log", "run", "camvora.db", "camvora.db-journal", "camvora.db-shm", "camvora.db-wal"}) {
        leftOut.insert(std::string(kPackageFolder) + "target/@CVData/" + name);
    }
    for (const AddOn& addOn : {kDevicePack, kLocalDisplay}) {
        leftOut.insert(std::string(kPackageFolder) + kWorkDirectory + addOn.name);
    }
    return ListingOf(appliance.PathOf(""), leftOut);
}

fs::path WorkDirectory(const Appliance& appliance, const AddOn& addOn) {
    return appliance.PackagePath(std::string(kWorkDirectory) + addOn.name);
}

}  // namespace e2e
