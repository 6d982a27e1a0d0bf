#include "e2e/updates.h"

#include "e2e/packages.h"
#include "support/unpacked.h"

#include <array>
#include <chrono>
#include <future>
#include <random>
#include <thread>

namespace e2e {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kBlobBytes = 600'000;  // more than is copied at once
constexpr std::array kScripts = {"preupgrade", "preinst", "postinst", "postupgrade"};

// The folder itself may be a mount.
void MakeEmpty(const fs::path& folder) {
    fs::create_directories(folder);
    for (const auto& entry : fs::directory_iterator(folder)) {
        fs::remove_all(entry.path());
    }
}

// What is installed of the package.
Listing TreeOf(const AddOn& addOn, const std::string& package) {
    const std::string top = std::string(addOn.name) + "/";
    Listing tree;
    for (const auto& [path, entry] : ListingOfPackage(package, addOn.name, addOn.folder)) {
        if (path.rfind(top, 0) == 0) {
            tree[path.substr(top.size())] = entry;
        }
    }
    return tree;
}

}  // namespace

AddOnTree::AddOnTree(const AddOn& addOn, const std::string& version) {
    folder_.Write("conf", "version=\"" + version + "\"\nmaintainer=\"M\"\ncv_min_ver=\"1.0.0-0001\"\n");
    folder_.Write("blob", std::string(kBlobBytes, version.back()));
    folder_.Write("lib/" + version, version);
    folder_.Write("lib/deep/file", version);
    if (addOn.service == kDevicePack.service) {
        for (const char* script : kScripts) {
            SetScript(script, "echo " + version + " " + script + " >>/tmp/scripts.log");
        }
    }
}

void AddOnTree::SetScript(const std::string& name, const std::string& text) {
    const std::string file = std::string("script/") + name;
    folder_.Write(file, "#!/bin/sh\n" + text + "\n");
    fs::permissions(folder_.PathOf(file), fs::perms::owner_exec, fs::perm_options::add);
}

void AddOnTree::CopyTo(const fs::path& place) const {
    MakeEmpty(place);
    fs::copy(folder_.Path(), place, fs::copy_options::recursive);
}

fs::path PlaceOf(const Appliance& appliance, const AddOn& addOn) {
    return appliance.PackagePath(std::string("target/") + addOn.name);
}

std::string FilePath(const AddOn& addOn, bool isFromHost) {
    return std::string("/var/packages/Camvora/target/cv_addOns_") + addOn.name +
           (isFromHost ? "_host/" : "/");
}

void Arrange(const Appliance& appliance, const AddOn& addOn, const AddOnTree& old, const AddOnTree& fresh) {
    const fs::path place = PlaceOf(appliance, addOn);
    for (const char* suffix : {".aside", ".dropped"}) {
        fs::remove_all(place.string() + suffix);
    }
    old.CopyTo(place);
    MakeEmpty(WorkDirectory(appliance, addOn));
    fresh.CopyTo(WorkDirectory(appliance, addOn) / addOn.name);
}

Answer Update(const Appliance& appliance, const AddOn& addOn, const std::string& filePath) {
    Json::Value params = Param("service", addOn.service);
    params["filePath"] = filePath;
    return appliance.Owner().AddOns("Update", params);
}

std::vector<std::string> InspectDuringUpdates(const Appliance& appliance, const AddOn& addOn, unsigned seed,
                                              unsigned count) {
    constexpr unsigned kUpdateMs = 150;
    std::mt19937 random(seed);
    HttpCalls calls = appliance.Owner();
    const std::array packages = {MakePackage(addOn.service, Content(kBlobBytes, 1)),
                                 MakePackage(addOn.service, Content(kBlobBytes, 2))};
    std::array trees = {TreeOf(addOn, packages[0]), TreeOf(addOn, packages[1])};
    (void)Inspect(appliance, calls, addOn, packages[0]);
    std::vector<std::string> faults;
    for (unsigned i = 1; i <= count; ++i) {
        const auto update = std::async(std::launch::async,
                                       [&] { return Update(appliance, addOn, FilePath(addOn)).Succeeded(); });
        std::this_thread::sleep_for(std::chrono::milliseconds(random() % kUpdateMs));
        if (!Inspect(appliance, calls, addOn, packages.at(i % 2)).Succeeded()) {
            faults.push_back(std::to_string(i) + ": the inspection failed");
        }
        update.wait();
        const Listing installed = ListingOf(PlaceOf(appliance, addOn));
        if (installed != trees[0] && installed != trees[1]) {
            faults.push_back(std::to_string(i) + ": what is installed is not a whole package");
        }
    }
    return faults;
}

}  // namespace e2e
