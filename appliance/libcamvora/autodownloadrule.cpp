// The schedule of the automatic updates. All of an appliance have one time of day, which is drawn at the
// first, so that those of many appliances are spread over the day.
#include "libcamvora/cronrule.h"
#include "libcamvora/paths.h"
#include "libcamvora/servicetable.h"
#include "libcamvora/store.h"
#include "platform/log.h"
#include "platform/releases.h"

#include <SQLiteCpp/Statement.h>

#include <random>
#include <string>

namespace {

constexpr int kMinutesOfHour = 60;
constexpr int kMinutesOfDay = 24 * kMinutesOfHour;
constexpr char kMinuteSetting[] = "auto_update_minute";  // of the day

int DrawMinute() {
    std::random_device random;
    return std::uniform_int_distribution<int>(0, kMinutesOfDay - 1)(random);
}

// The minute of the day; negative when it cannot be kept.
int UpdateMinute() {
    int minute = -1;
    const bool isKept = camvora::TheStore().Write([&minute](SQLite::Database& database) {
        SQLite::Statement draw(database, "INSERT OR IGNORE INTO settings(key, value) VALUES(?, ?)");
        draw.bind(1, kMinuteSetting);
        draw.bind(2, std::to_string(DrawMinute()));
        draw.exec();
        SQLite::Statement kept(database, "SELECT value FROM settings WHERE key = ?");
        kept.bind(1, kMinuteSetting);
        if (kept.executeStep()) {
            minute = kept.getColumn(0).getInt() % kMinutesOfDay;
        }
    });
    return isKept ? minute : -1;
}

bool Schedule(const std::string& rule, const std::string& service) {
    const int minute = UpdateMinute();
    if (minute < 0) {
        return false;
    }
    return camvora::WriteRule(camvora::kScheduleFolder, rule,
                              std::to_string(minute % kMinutesOfHour) + " " +
                                  std::to_string(minute / kMinutesOfHour) + " * * * " +
                                  camvora::kAutoUpdateProgram + " " + service);
}

}  // namespace

int AddonsUpdate::SetAutoDownloadCrontabRule(bool enable) {
    const camvora::ServiceEntry* entry = camvora::FindService(service_);
    if (entry == nullptr || entry->folder == nullptr) {
        return -1;
    }
    const std::string rule = std::string("auto-update-") + entry->shortName;
    const bool isSet =
        enable ? Schedule(rule, entry->shortName) : camvora::RemoveRule(camvora::kScheduleFolder, rule);
    if (!isSet) {
        CVPrintf(0, nullptr, nullptr, "addonsupdate", __LINE__, __func__, "Failed to change the rule [%s]\n",
                 rule.c_str());
    }
    return isSet ? 0 : -1;
}
