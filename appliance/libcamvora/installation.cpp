#include "libcamvora/installation.h"

#include "libcamvora/keyvalue.h"
#include "libcamvora/paths.h"
#include "libcamvora/servicetable.h"
#include "platform/files.h"

#include <algorithm>

namespace camvora {

namespace {

constexpr int kAddOnsNotification = 24;
constexpr char kAfterUpdate[] = "0";  // a restore, with an entry of its own, has an empty text there

const ServiceEntry* FindByNumber(const std::string& number) {
    constexpr ADDON_SERVICE kWithPackages[] = {ADDON_SERVICE_DEVICE_PACK, ADDON_SERVICE_LOCAL_DISPLAY};
    const auto* const service =
        std::find_if(std::begin(kWithPackages), std::end(kWithPackages),
                     [&number](ADDON_SERVICE known) { return itos(known) == number; });
    return service == std::end(kWithPackages) ? nullptr : FindService(*service);
}

}  // namespace

std::optional<std::array<std::string, 3>> InstallationToldBy(int type,
                                                             const std::array<std::string, 3>& texts) {
    const ServiceEntry* entry = FindByNumber(texts[0]);
    if (type != kAddOnsNotification || entry == nullptr || texts[1] != itos(CONTROL_ACTION_UPDATE) ||
        texts[2] != kAfterUpdate) {
        return std::nullopt;
    }
    const std::string conf = std::string(entry->folder) + kAddOnConfName;
    return {{entry->name, "Updated to " + TextOfKey(conf.c_str(), "version", "an unknown version"), ""}};
}

}  // namespace camvora
