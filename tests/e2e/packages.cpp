#include "e2e/packages.h"

#include <filesystem>
#include <iterator>

namespace e2e {

namespace {

void Pack(const std::string& archive, const std::string& folder, const std::vector<std::string>& names) {
    std::vector<std::string> command = {"/bin/tar", "-C", folder, "-cf", archive};
    command.insert(command.end(), names.begin(), names.end());
    EXPECT_EQ(0, Program(command, {"PATH=/usr/bin:/bin"}).Wait().status);
}

}  // namespace

std::string Content(std::size_t sizeBytes, unsigned seed) {
    std::string content(sizeBytes, '\0');
    for (char& byte : content) {
        seed = seed * 1664525U + 1013904223U;
        byte = static_cast<char>(seed >> 24U);
    }
    return content;
}

std::string MakePackage(int service, const std::string& blob) {
    const bool isDisplay = service == kLocalDisplayService;
    const TemporaryFolder folder;
    const std::string tree = isDisplay ? "tree/" : "tree/device_pack/";
    folder.Write(tree + "conf", "version=\"9.0.0-0001\"\nmaintainer=\"M\"\ncv_min_ver=\"1.0.0-0001\"\n");
    folder.Write(tree + "blob", blob);
    folder.Write("INFO", std::string("package=\"") +
                             (isDisplay ? "CamvoraLocalDisplay" : "CamvoraDevicePack") +
                             "\"\narch=\"plat1 plat2\"\n");
    Pack(folder.PathOf("package.tgz"), folder.PathOf("tree"), {"."});
    Pack(folder.PathOf("x.spk"), folder.Path(), {"INFO", "package.tgz"});
    return folder.Read("x.spk");
}

std::string SamplePath(const std::string& name) {
    return CAMVORA_BUILD_FOLDER "/packages/" + name + ".spk";
}

Json::Value Upload(const Appliance& appliance, const std::string& package, int service) {
    const httplib::MultipartFormDataItems form = {{"addonsSpkFile", package, "x.spk", ""}};
    Json::Value params =
        ToAnswer(appliance.Owner().Client().Post("/api/ORVA.Camvora.AddOns/v1/Upload", form)).Data();
    params["service"] = service;
    return params;
}

std::size_t UploadCount(const Appliance& appliance) {
    const std::filesystem::directory_iterator files(appliance.PackagePath(kUploads));
    return static_cast<std::size_t>(std::distance(begin(files), end(files)));
}

}  // namespace e2e
