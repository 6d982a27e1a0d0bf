#include "e2e/restores.h"

#include <algorithm>
#include <chrono>
#include <future>
#include <random>
#include <thread>

namespace e2e {

namespace {

namespace fs = std::filesystem;

// What is wrong once both have come to their end; empty when nothing is.
std::string FaultIn(const Appliance& appliance, const AddOn& addOn, const std::vector<Listing>& whole) {
    const fs::path place = PlaceOf(appliance, addOn);
    const Listing installed = fs::is_directory(place) ? ListingOf(place) : Listing();
    if (std::find(whole.begin(), whole.end(), installed) == whole.end()) {
        return "what is installed is not a whole tree";
    }
    for (const char* suffix : {".aside", ".dropped", ".fresh"}) {
        if (fs::exists(place.string() + suffix)) {
            return std::string(suffix) + " is left";
        }
    }
    return "";
}

}  // namespace

fs::path FactoryOf(const Appliance& appliance, const AddOn& addOn) {
    return PlaceOf(appliance, addOn).string() + ".default";
}

void AddRestoreScript(const AddOn& addOn, AddOnTree& tree) {
    if (addOn.service == kDevicePack.service) {
        tree.SetScript("restore", "exec /var/packages/Camvora/target/bin/restore-addon device_pack");
    }
}

Answer Restore(const Appliance& appliance, const AddOn& addOn) {
    return appliance.Owner().AddOns("Restore", Param("service", addOn.service));
}

std::vector<std::string> RestoreDuringUpdates(const Appliance& appliance, const AddOn& addOn, unsigned seed,
                                              unsigned count) {
    constexpr unsigned kUpdateMs = 150;
    std::mt19937 random(seed);
    AddOnTree old(addOn, "1.0.0-0001");
    AddOnTree fresh(addOn, "2.0.0-0002");
    AddOnTree factory(addOn, "0.9.0-0009");
    for (AddOnTree* tree : {&old, &fresh, &factory}) {
        AddRestoreScript(addOn, *tree);
    }
    factory.CopyTo(FactoryOf(appliance, addOn));
    const std::vector<Listing> whole = {old.Content(), fresh.Content(), factory.Content()};
    std::vector<std::string> faults;
    for (unsigned i = 1; i <= count; ++i) {
        Arrange(appliance, addOn, old, fresh);
        const auto restore = std::async(std::launch::async, [&, delay = random() % kUpdateMs] {
            std::this_thread::sleep_for(std::chrono::milliseconds(delay));
            return Restore(appliance, addOn).Succeeded();
        });
        std::this_thread::sleep_for(std::chrono::milliseconds(random() % kUpdateMs));
        (void)Update(appliance, addOn, FilePath(addOn));
        restore.wait();
        const std::string fault = FaultIn(appliance, addOn, whole);
        if (!fault.empty()) {
            faults.push_back(std::to_string(i) + ": " + fault);
        }
    }
    return faults;
}

}  // namespace e2e
