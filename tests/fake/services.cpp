#include "platform/services.h"

#include "fake/journal.h"
#include "fake/script.h"

#include <csignal>

Json::Value GetServiceInfo(ADDON_SERVICE service) {
    return fake::Call("GetServiceInfo", Json::Value(Json::objectValue), service);
}

bool IsServiceRunning(ADDON_SERVICE service) {
    return fake::Call("IsServiceRunning", false, service).asBool();
}

bool IsCVRunning() {
    return fake::Call("IsCVRunning", true).asBool();
}

// Not recorded: it only names things.
std::string GetServiceStr(ADDON_SERVICE service) {
    return "name" + std::to_string(service);
}

int ChangeServiceStatus(ADDON_SERVICE service, CONTROL_ACTION status) {
    return fake::Call("ChangeServiceStatus", 0, service, status).asInt();
}

// The answer "killed" ends the calling process by a signal.
int DaemonCtrl::Run(CV_DAEMON_TYPE type) {
    const Json::Value answer = fake::Call("DaemonCtrl::Run", 0, type);
    if (answer == "killed") {
        (void)raise(SIGKILL);
    }
    return answer.asInt();
}

int DaemonCtrl::Kill(CV_DAEMON_TYPE type) {
    return fake::Call("DaemonCtrl::Kill", 0, type).asInt();
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
    return fake::Call("WebUIOptions::Apply", 0).asInt();
}

std::string Bool2String(bool value) {
    return value ? "true" : "false";
}
