#include "libcamvora/servicetable.h"

#include "libcamvora/paths.h"
#include "libcamvora/servicerunning.h"

#include <algorithm>
#include <iterator>

namespace camvora {

namespace {

constexpr ServiceEntry kServices[] = {
    // clang-format off
    {ADDON_SERVICE_NONE,          -1, "none",          "None",               nullptr,             RunsNever},
    {ADDON_SERVICE_DEVICE_PACK,   -1, "device_pack",   "Device Pack",        kDevicePackFolder,   RunsByStatus},
    {ADDON_SERVICE_CMS,           -1, "cms",           "Central Management", nullptr,             RunsByOption},
    {ADDON_SERVICE_3,              1, "service3",      "Service 3",          nullptr,             RunsByDaemon},
    {ADDON_SERVICE_4,             -1, "service4",      "Service 4",          nullptr,             RunsByStatus},
    {ADDON_SERVICE_5,              6, "service5",      "Service 5",          nullptr,             RunsByDaemon},
    {ADDON_SERVICE_LOCAL_DISPLAY, 11, "local_display", "Local Display",      kLocalDisplayFolder, RunsByDaemon},
    // clang-format on
};

}  // namespace

const ServiceEntry* FindService(ADDON_SERVICE service) {
    const auto* const entry =
        std::find_if(std::begin(kServices), std::end(kServices),
                     [service](const ServiceEntry& candidate) { return candidate.service == service; });
    return entry == std::end(kServices) ? nullptr : entry;
}

}  // namespace camvora
