#include "libcamvora/updatesettings.h"

#include "libcamvora/keyvalue.h"
#include "libcamvora/paths.h"
#include "libcamvora/servicetable.h"
#include "libcamvora/weburl.h"

namespace camvora {

bool HasReleases(ADDON_SERVICE service) {
    const ServiceEntry* entry = FindService(service);
    return entry != nullptr && entry->folder != nullptr;
}

UpdateSettings SettingsOf(ADDON_SERVICE service) {
    if (!HasReleases(service)) {
        throw UpdateFailure("it has no packages");
    }
    const ServiceEntry* entry = FindService(service);
    UpdateSettings settings;
    settings.service = service;
    settings.shortName = entry->shortName;
    settings.conf = ReadReleasesConf(kReleasesConf);
    settings.installedVersion =
        TextOfKey((std::string(entry->folder) + kAddOnConfName).c_str(), "version", "");
    settings.mainVersion = TextOfKey(kPackageInfo, "version", "");
    settings.downloadFolder = kDownloadFolder;
    settings.lockFile = std::string(kRunFolder) + "/download-" + settings.shortName + ".lock";
    return settings;
}

std::string FeedAddress(const ReleasesConf& conf, const std::string& fileName) {
    const std::size_t end = conf.feedUrl.find_last_not_of('/');
    return conf.feedUrl.substr(0, end + 1) + "/" + PercentEncoded(fileName);
}

}  // namespace camvora
