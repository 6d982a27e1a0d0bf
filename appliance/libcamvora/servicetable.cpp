#include "libcamvora/servicetable.h"

#include "libcamvora/paths.h"
#include "libcamvora/servicerunning.h"

#include <algorithm>
#include <iterator>

namespace camvora {

namespace {

constexpr ServiceEntry kServices[] = {
    // clang-format off
    {ADDON_SERVICE_NONE,          "none",          "None",               nullptr,             RunsNever,    -1},
    {ADDON_SERVICE_DEVICE_PACK,   "device_pack",   "Device Pack",        kDevicePackFolder,   RunsByStatus, -1},
    {ADDON_SERVICE_CMS,           "cms",           "Central Management", nullptr,             RunsByOption, -1},
    {ADDON_SERVICE_3,             "service3",      "Service 3",          nullptr,             RunsByDaemon,  1},
    {ADDON_SERVICE_4,             "service4",      "Service 4",          nullptr,             RunsByStatus, -1},
    {ADDON_SERVICE_5,             "service5",      "Service 5",          nullptr,             RunsByDaemon,  6},
    {ADDON_SERVICE_LOCAL_DISPLAY, "local_display", "Local Display",      kLocalDisplayFolder, RunsByDaemon, 11},
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
