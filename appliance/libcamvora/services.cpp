#include "platform/services.h"

#include "libcamvora/daemonlock.h"
#include "libcamvora/daemontable.h"
#include "libcamvora/paths.h"
#include "libcamvora/servicetable.h"
#include "libcamvora/settings.h"
#include "libcamvora/store.h"
#include "libcamvora/utctime.h"
#include "platform/files.h"
#include "platform/plibc.h"
#include "platform/settings.h"

#include <SQLiteCpp/Statement.h>
#include <sys/stat.h>

#include <array>
#include <string>

namespace {

using camvora::FindService;
using camvora::ServiceEntry;
using camvora::State;

int RecordedStatus(ADDON_SERVICE service, const State& state) {
    const auto status = state.statuses.find(service);
    return status == state.statuses.end() ? CONTROL_ACTION_STOP : status->second;
}

std::string StatusName(int status) {
    switch (status) {
        case CONTROL_ACTION_STOP:
            return "stopped";
        case CONTROL_ACTION_START:
            return "started";
        case CONTROL_ACTION_IN_PROGRESS:
            return "in progress";
        default:
            return std::to_string(status);
    }
}

std::string InstalledVersion(const std::string& folder) {
    std::array<char, 256> version{};
    (void)PLIBCFileGetKeyValue((folder + camvora::kAddOnConfName).c_str(), "version", version.data(),
                               static_cast<int>(version.size()), 0);
    return version.data();
}

void DescribePackages(const ServiceEntry* entry, Json::Value& description) {
    const bool hasPackages = entry != nullptr && entry->folder != nullptr;
    const std::string folder = hasPackages ? entry->folder : "";
    description["blHasPackages"] = hasPackages;
    description["version"] = hasPackages ? InstalledVersion(folder) : "";
    description["blFactoryCopy"] = hasPackages && IsExistDir(folder + camvora::kFactoryCopySuffix);
}

// The daemon has been up since its pid file was written; a restart may have removed that.
void DescribeDaemon(const ServiceEntry* entry, Json::Value& description) {
    const camvora::DaemonEntry* daemon = entry != nullptr ? camvora::FindDaemon(entry->daemonType) : nullptr;
    const pid_t pid =
        daemon != nullptr
            ? camvora::ReadyLockHolder(camvora::DaemonLockFile(camvora::kRunFolder, daemon->type))
            : 0;
    if (pid == 0) {
        return;
    }
    description["pid"] = pid;
    struct stat pidFile {};
    if (lstat(camvora::DaemonPidFile(camvora::kRunFolder, *daemon).c_str(), &pidFile) == 0) {
        description["since"] = camvora::UtcTimeText(pidFile.st_mtim);
    }
}

Json::Value Options(const State& state) {
    Json::Value options(Json::objectValue);
    for (const auto& [number, value] : state.options) {
        options[std::to_string(number)] = value;
    }
    return options;
}

}  // namespace

Json::Value GetServiceInfo(ADDON_SERVICE service) {
    const ServiceEntry* entry = FindService(service);
    const auto state = camvora::TheStore().Read();
    Json::Value description(Json::objectValue);
    description["service"] = static_cast<int>(service);
    description["name"] = entry != nullptr ? entry->name : "Service " + std::to_string(service);
    description["shortName"] = GetServiceStr(service);
    description["status"] = RecordedStatus(service, *state);
    description["statusName"] = StatusName(RecordedStatus(service, *state));
    description["blRunning"] = entry != nullptr && entry->isRunning(*entry, *state);
    description["blAutoUpdate"] = camvora::IsSettingEnabled(*state, GetAutoDownloadKey(service), false);
    DescribePackages(entry, description);
    DescribeDaemon(entry, description);
    if (service == ADDON_SERVICE_CMS) {
        description["options"] = Options(*state);
    }
    return description;
}

std::string GetServiceStr(ADDON_SERVICE service) {
    const ServiceEntry* entry = FindService(service);
    return entry != nullptr ? entry->shortName : "service" + std::to_string(service);
}

int ChangeServiceStatus(ADDON_SERVICE service, CONTROL_ACTION status) {
    const bool written = camvora::TheStore().Write([&](SQLite::Database& database) {
        SQLite::Statement statement(database,
                                    "INSERT OR REPLACE INTO services(service, status) VALUES(?, ?)");
        statement.bind(1, static_cast<int>(service));
        statement.bind(2, static_cast<int>(status));
        statement.exec();
    });
    return written ? 0 : -1;
}

bool IsServiceRunning(ADDON_SERVICE service) {
    const ServiceEntry* entry = FindService(service);
    return entry != nullptr && entry->isRunning(*entry, *camvora::TheStore().Read());
}

bool IsCVRunning() {
    return IsFileExist(camvora::kStartedFile);
}
