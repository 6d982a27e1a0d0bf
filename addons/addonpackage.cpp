#include "addons/addonpackage.h"

#include "addons/paths.h"

namespace {

constexpr AddOnPackage kAddOnPackages[] = {
    {ADDON_SERVICE_DEVICE_PACK, "Device Pack", "CamvoraDevicePack", kDevicePackTree, kDevicePackPlace,
     kMinDevicePackVersionKey},
    {ADDON_SERVICE_LOCAL_DISPLAY, "Local Display", "CamvoraLocalDisplay", kLocalDisplayTree,
     kLocalDisplayPlace, kMinLocalDisplayVersionKey},
};

template <typename Predicate>
const AddOnPackage* FindRow(Predicate isWanted) {
    for (const AddOnPackage& row : kAddOnPackages) {
        if (isWanted(row)) {
            return &row;
        }
    }
    return nullptr;
}

}  // namespace

const AddOnPackage* FindAddOnPackage(ADDON_SERVICE service) {
    return FindRow([service](const AddOnPackage& row) { return row.service == service; });
}

const AddOnPackage* FindAddOnPackage(const std::string& package) {
    return FindRow([&package](const AddOnPackage& row) { return row.package == package; });
}
