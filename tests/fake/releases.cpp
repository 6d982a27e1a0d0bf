#include "platform/releases.h"

#include "fake/journal.h"
#include "fake/script.h"

AddonsUpdate::AddonsUpdate(ADDON_SERVICE service) : service_(service) {
    fake::Record("AddonsUpdate", static_cast<int>(service));
}

AddonsUpdate::~AddonsUpdate() {
    fake::Record("~AddonsUpdate", static_cast<int>(service_));
}

// Scripted: whether there is a newer release, a number for the result of a check that fails.
int AddonsUpdate::CheckNewRelease(bool& hasNew, std::string& version) {
    const Json::Value answer = fake::Call("AddonsUpdate::CheckNewRelease", false, hasNew, version);
    if (answer.isInt()) {
        return answer.asInt();
    }
    hasNew = answer.asBool();
    return 0;
}

int AddonsUpdate::Download() {
    return fake::Call("AddonsUpdate::Download", 0).asInt();
}

// Scripted: a list of version, percentage and state, of which those at the end may be missing; a number for
// the result of a call that fails.
int AddonsUpdate::GetDownloadStatus(std::string& version, int& percent, APP_DOWNLOAD_STATUS& status) {
    const Json::Value answer =
        fake::Call("AddonsUpdate::GetDownloadStatus", Json::arrayValue, version, percent, status);
    if (answer.isInt()) {
        return answer.asInt();
    }
    version = answer.get(0U, version).asString();
    percent = answer.get(1U, percent).asInt();
    status = static_cast<APP_DOWNLOAD_STATUS>(answer.get(2U, static_cast<int>(status)).asInt());
    return 0;
}

int AddonsUpdate::CancelDownload() {
    return fake::Call("AddonsUpdate::CancelDownload", 0).asInt();
}

int AddonsUpdate::SetAutoDownloadCrontabRule(bool enable) {
    return fake::Call("AddonsUpdate::SetAutoDownloadCrontabRule", 0, enable).asInt();
}

// Scripted: the path of the package file that is ready; "" for none, a number for the result.
int AddonsUpdate::ReadDownloadInfoFile(bool& ready, APP_DOWNLOAD_INFO& info) {
    const Json::Value answer =
        fake::Call("AddonsUpdate::ReadDownloadInfoFile", "", info.version, info.filePath, info.date);
    if (answer.isInt()) {
        return answer.asInt();
    }
    info.filePath = answer.asString();
    ready = !info.filePath.empty();
    return 0;
}

int AddonsUpdate::CleanDownloadResult() {
    return fake::Call("AddonsUpdate::CleanDownloadResult", 0).asInt();
}

// Scripted by the version under test, as "AddonsUpdate::IsVersionNewer VERSION".
bool AddonsUpdate::IsVersionNewer(const std::string& version, const std::string& than, bool allowEqual) {
    fake::Record("AddonsUpdate::IsVersionNewer", version, than, allowEqual);
    return fake::NextAnswer("AddonsUpdate::IsVersionNewer " + version, true).asBool();
}
