#include "libcamvora/settings.h"

#include "libcamvora/store.h"
#include "platform/settings.h"

#include <SQLiteCpp/Statement.h>

namespace camvora {

bool IsSettingEnabled(const State& state, const std::string& key, bool defaultValue) {
    const auto setting = state.settings.find(key);
    if (setting == state.settings.end()) {
        return defaultValue;
    }
    const std::string opposite = Bool2String(!defaultValue);
    return setting->second == opposite ? !defaultValue : defaultValue;
}

}  // namespace camvora

std::string Bool2String(bool value) {
    return value ? "yes" : "no";
}

std::string GetAutoDownloadKey(ADDON_SERVICE service) {
    return "auto_download_" + GetServiceStr(service);
}

bool IsSettingEnabled(const std::string& key, bool defaultValue, bool /*fromCache*/) {
    return camvora::IsSettingEnabled(*camvora::TheStore().Read(), key, defaultValue);
}

int SetSettingEnabled(const std::string& key, bool enabled) {
    const bool written = camvora::TheStore().Write([&](SQLite::Database& database) {
        SQLite::Statement statement(database, "INSERT OR REPLACE INTO settings(key, value) VALUES(?, ?)");
        statement.bind(1, key);
        statement.bind(2, Bool2String(enabled));
        statement.exec();
    });
    return written ? 0 : -1;
}
