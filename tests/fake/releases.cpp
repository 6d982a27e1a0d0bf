#include "platform/releases.h"

#include "fake/journal.h"
#include "fake/script.h"

AddonsUpdate::AddonsUpdate(ADDON_SERVICE service) : service_(service) {
    fake::Record("AddonsUpdate", static_cast<int>(service));
}

AddonsUpdate::~AddonsUpdate() {
    fake::Record("~AddonsUpdate", static_cast<int>(service_));
}

// Scripted: the path of the package file that is ready; "" for none, a number for the result.
int AddonsUpdate::ReadDownloadInfoFile(bool& ready, APP_DOWNLOAD_INFO& info) {
    fake::Record("AddonsUpdate::ReadDownloadInfoFile", info.version, info.filePath, info.date);
    const Json::Value answer = fake::NextAnswer("AddonsUpdate::ReadDownloadInfoFile", "");
    if (answer.isInt()) {
        return answer.asInt();
    }
    info.filePath = answer.asString();
    ready = !info.filePath.empty();
    return 0;
}

int AddonsUpdate::CleanDownloadResult() {
    fake::Record("AddonsUpdate::CleanDownloadResult");
    return fake::NextAnswer("AddonsUpdate::CleanDownloadResult", 0).asInt();
}

// Scripted by the version under test, as "AddonsUpdate::IsVersionNewer VERSION".
bool AddonsUpdate::IsVersionNewer(const std::string& version, const std::string& than, bool allowEqual) {
    fake::Record("AddonsUpdate::IsVersionNewer", version, than, allowEqual);
    return fake::NextAnswer("AddonsUpdate::IsVersionNewer " + version, true).asBool();
}
