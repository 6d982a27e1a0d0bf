#include "platform/services.h"

#include "fake/journal.h"
#include "fake/script.h"

#include <csignal>

Json::Value GetServiceInfo(ADDON_SERVICE service) {
    fake::Record("GetServiceInfo", service);
    return fake::NextAnswer("GetServiceInfo", Json::Value(Json::objectValue));
}

bool IsServiceRunning(ADDON_SERVICE service) {
    fake::Record("IsServiceRunning", service);
    return fake::NextAnswer("IsServiceRunning", false).asBool();
}

bool IsCVRunning() {
    fake::Record("IsCVRunning");
    return fake::NextAnswer("IsCVRunning", true).asBool();
}

std::string GetServiceStr(ADDON_SERVICE service) {
    fake::Record("GetServiceStr", service);
    return "name" + std::to_string(service);
}

int ChangeServiceStatus(ADDON_SERVICE service, CONTROL_ACTION status) {
    fake::Record("ChangeServiceStatus", service, status);
    return fake::NextAnswer("ChangeServiceStatus", 0).asInt();
}

// The answer "killed" ends the calling process by a signal.
int DaemonCtrl::Run(CV_DAEMON_TYPE type) {
    fake::Record("DaemonCtrl::Run", type);
    const Json::Value answer = fake::NextAnswer("DaemonCtrl::Run", 0);
    if (answer == "killed") {
        (void)raise(SIGKILL);
    }
    return answer.asInt();
}

int DaemonCtrl::Kill(CV_DAEMON_TYPE type) {
    fake::Record("DaemonCtrl::Kill", type);
    return fake::NextAnswer("DaemonCtrl::Kill", 0).asInt();
}

int GetDaemonInfo(CV_DAEMON_TYPE type, CV_DAEMON_INFO& info) {
    fake::Record("GetDaemonInfo", type);
    info = {type, "daemon", "/tmp/daemon" + std::to_string(type) + ".pid"};
    return fake::NextAnswer("GetDaemonInfo", 0).asInt();
}

WebUIOptions::WebUIOptions() {
    fake::Record("WebUIOptions");
}

WebUIOptions::~WebUIOptions() {
    fake::Record("~WebUIOptions");
}

void WebUIOptions::SetOption(OPTION_TYPE type, const std::string& value) {
    fake::Record("WebUIOptions::SetOption", type, value);
}

int WebUIOptions::Apply() {
    fake::Record("WebUIOptions::Apply");
    return fake::NextAnswer("WebUIOptions::Apply", 0).asInt();
}

std::string Bool2String(bool value) {
    return value ? "true" : "false";
}
