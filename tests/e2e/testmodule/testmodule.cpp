// A web API module for the tests of the host: its methods do what a module should not, or tell what a
// handler sees.
#include "platform/log.h"
#include "platform/notify.h"
#include "platform/plibc.h"
#include "platform/services.h"
#include "platform/webapi.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <thread>

namespace {

using ORVA::APIRequest;
using ORVA::APIResponse;

int IntParam(APIRequest* request, const char* name, int defaultValue = 0) {
    return request->GetParam(name, defaultValue).asInt();
}

std::string TextParam(APIRequest* request, const char* name) {
    return request->GetParam(name, "").asString();
}

void SleepMs(int milliseconds) {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

void Echo(APIRequest* request, APIResponse* response) {
    Json::Value data;
    data["value"] = request->GetParam("value", Json::Value());
    data["cookie"] = request->GetCookie("flavour", "none");
    data["authorized"] = request->IsAuthorized();
    data["upload"] = request->IsUploadRequest();
    data["method"] = request->GetAPIMethod();
    response->SetSuccess(data);
}

void StaySilent(APIRequest*, APIResponse*) {}

void Crash(APIRequest*, APIResponse*) {
    std::abort();
}

void Throw(APIRequest*, APIResponse*) {
    throw std::runtime_error("thrown on purpose");
}

void ThrowNumber(APIRequest*, APIResponse*) {
    throw 42;
}

void HangWithoutAlarm(APIRequest*, APIResponse*) {
    std::signal(SIGALRM, SIG_IGN);
    for (;;) {
        pause();
    }
}

void Hang(APIRequest*, APIResponse*) {
    for (;;) {
        pause();
    }
}

void Exit(APIRequest*, APIResponse*) {
    _exit(0);
}

// Answers after so many milliseconds.
void Sleep(APIRequest* request, APIResponse* response) {
    SleepMs(IntParam(request, "ms"));
    response->SetSuccess(Json::Value());
}

void Large(APIRequest* request, APIResponse* response) {
    response->SetSuccess(std::string(static_cast<std::size_t>(IntParam(request, "bytes")), 'x'));
}

// Forks a child that lives on for so many milliseconds and then makes a file. The request answers at once,
// or ends without an answer.
void Detach(APIRequest* request, APIResponse* response) {
    const std::string path = TextParam(request, "path");
    const int milliseconds = IntParam(request, "ms");
    if (fork() == 0) {
        setsid();
        SleepMs(milliseconds);
        _exit(open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600) < 0);
    }
    if (!request->GetParam("blSilent", false).asBool()) {
        response->SetSuccess(Json::Value());
    }
}

// What the handler's process has inherited.
void Inspect(APIRequest*, APIResponse* response) {
    Json::Value data;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code gone;
        const auto target = std::filesystem::read_symlink(entry.path(), gone);
        if (!gone && target.string().find("/fd") == std::string::npos) {
            data["descriptors"][entry.path().filename().string()] = target.string();
        }
    }
    sigset_t blocked;
    sigprocmask(SIG_SETMASK, nullptr, &blocked);
    struct sigaction childAction {};
    sigaction(SIGCHLD, nullptr, &childAction);
    data["blChildSignalBlocked"] = sigismember(&blocked, SIGCHLD) == 1;
    data["blChildSignalDefault"] = childAction.sa_handler == SIG_DFL;
    response->SetSuccess(data);
}

void Notify(APIRequest* request, APIResponse* response) {
    CVClientNotify::Notify(static_cast<CLIENT_NOTIFY_TYPE>(IntParam(request, "type")),
                           TextParam(request, "text"), "second", "third");
    response->SetSuccess(Json::Value());
}

void Log(APIRequest* request, APIResponse* response) {
    CVPrintf(0, nullptr, nullptr, "testmodule", __LINE__, __func__, "%s\n",
             TextParam(request, "text").c_str());
    response->SetSuccess(Json::Value());
}

// Answers with the form as a handler sees it; with the field "fail" as an error.
void Upload(APIRequest* request, APIResponse* response) {
    Json::Value form;
    ORVA::APIUpload upload(request);
    upload.GetUploadParam(form);
    upload.GetUploadFile(form);
    SleepMs(form.isMember("ms") ? std::stoi(form["ms"].asString()) : 0);
    response->SetSuccess(form);
    if (form.isMember("fail")) {
        response->SetError(400, form);  // of several answers the last one holds
    }
}

// Runs a program with up to four arguments.
void Exec(APIRequest* request, APIResponse* response) {
    const std::string path = TextParam(request, "path");
    const Json::Value arguments = request->GetParam("arguments", Json::Value());
    std::array<const char*, 4> texts{};
    for (Json::ArrayIndex i = 0; i < arguments.size(); ++i) {
        texts.at(i) = arguments[i].asCString();
    }
    Json::Value data;
    data["exitStatus"] = PLIBCExec(path.c_str(), texts[0], texts[1], texts[2], texts[3]);
    response->SetSuccess(data);
}

// Starts or ends a daemon.
void Daemon(APIRequest* request, APIResponse* response) {
    const auto type = static_cast<CV_DAEMON_TYPE>(IntParam(request, "type"));
    const bool start = request->GetParam("blStart", false).asBool();
    response->SetSuccess((start ? DaemonCtrl::Run(type) : DaemonCtrl::Kill(type)) == 0);
}

struct Row {
    const char* api;
    std::int32_t version;
    const char* method;
    void (*handler)(APIRequest*, APIResponse*);
};

constexpr char kApi[] = "TEST.Module";

const Row kTable[] = {
    {kApi, 1, "Echo", Echo},
    {kApi, 1, "StaySilent", StaySilent},
    {kApi, 1, "Crash", Crash},
    {kApi, 1, "Throw", Throw},
    {kApi, 1, "ThrowNumber", ThrowNumber},
    {kApi, 1, "Hang", Hang},
    {kApi, 1, "HangWithoutAlarm", HangWithoutAlarm},
    {kApi, 1, "Exit", Exit},
    {kApi, 1, "Sleep", Sleep},
    {kApi, 1, "Large", Large},
    {kApi, 1, "Detach", Detach},
    {kApi, 1, "Inspect", Inspect},
    {kApi, 1, "Notify", Notify},
    {kApi, 1, "Log", Log},
    {kApi, 1, "Upload", Upload},
    {kApi, 1, "Exec", Exec},
    {kApi, 1, "Daemon", Daemon},
    {kApi, 2, "Echo", Echo},
    {"TEST.Other", 1, "Echo", Echo},
    {},
};

}  // namespace

extern "C" __attribute__((visibility("default"))) const Row* GetAPITable();

const Row* GetAPITable() {
    return kTable;
}
