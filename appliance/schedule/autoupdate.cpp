// auto-update device_pack|local_display: looks for a newer release of the add-on, downloads it and has it
// installed. Run by the schedule, or by hand while the appliance runs; either way the operation log names the
// schedule. Exit status: 0 when the newest release is installed, 1 with a message when it is not, 2 for a
// wrong use.
#include "schedule/webapi.h"

#include "platform/files.h"
#include "platform/locks.h"
#include "platform/log.h"
#include "platform/releases.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>

namespace {

constexpr int kUsage = 2;
constexpr std::chrono::seconds kStartLimit{60};  // the schedule begins a little before the web framework

// Held by whoever asks the release service.
constexpr char kCheckLock[] = "/tmp/cv_addons_lock";
constexpr int kCheckLockWaitMs = 30'000;

ADDON_SERVICE ServiceNamed(const std::string& name) {
    for (const ADDON_SERVICE service : {ADDON_SERVICE_DEVICE_PACK, ADDON_SERVICE_LOCAL_DISPLAY}) {
        if (name == GetServiceStr(service)) {
            return service;
        }
    }
    return ADDON_SERVICE_NONE;
}

bool Check(ADDON_SERVICE service, bool& hasNew, std::string& version) {
    const int lock = BeginCriticalSection(kCheckLock, kCheckLockWaitMs);
    if (lock < 0) {
        return false;
    }
    const bool isChecked = AddonsUpdate(service).CheckNewRelease(hasNew, version) == 0;
    EndCriticalSection(lock);
    (void)RemoveFileIfExist(kCheckLock);
    return isChecked;
}

bool IsDownloaded(ADDON_SERVICE service, const std::string& version) {
    bool isReady = false;
    APP_DOWNLOAD_INFO info;
    return AddonsUpdate(service).ReadDownloadInfoFile(isReady, info) == 0 && isReady &&
           info.version == version;
}

[[noreturn]] void DownloadAndEnd(ADDON_SERVICE service) noexcept {
    _exit(AddonsUpdate(service).Download() == 0 ? EXIT_SUCCESS : EXIT_FAILURE);
}

// A process of its own does it: whoever cancels a download may end that.
bool Download(ADDON_SERVICE service) {
    const pid_t child = fork();
    if (child == 0) {
        DownloadAndEnd(service);
    }
    int status = 0;
    while (child > 0 && waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return child > 0 && WIFEXITED(status) && WEXITSTATUS(status) == EXIT_SUCCESS;
}

// Returns what went wrong; empty when the newest release is installed.
std::string UpdateToNewest(ADDON_SERVICE service) {
    const auto api = schedule::AwaitWebApi(kStartLimit);
    if (!api) {
        return "the appliance does not serve";
    }
    bool hasNew = false;
    std::string version;
    if (!Check(service, hasNew, version)) {
        return "the release service could not be asked";
    }
    if (!hasNew) {
        return "";
    }
    if (!IsDownloaded(service, version) && !Download(service)) {
        return "version " + version + " could not be downloaded";
    }
    const std::string problem = schedule::Install(*api, service);
    return problem.empty() ? "" : "version " + version + " could not be installed: " + problem;
}

int Run(const std::string& name) {
    const ADDON_SERVICE service = ServiceNamed(name);
    if (service == ADDON_SERVICE_NONE) {
        (void)std::fputs("usage: auto-update device_pack|local_display\n", stderr);
        return kUsage;
    }
    const std::string problem = UpdateToNewest(service);
    if (!problem.empty()) {
        CVPrintf(0, nullptr, nullptr, "autoupdate", __LINE__, __func__, "Failed to update [%s]: %s\n",
                 name.c_str(), problem.c_str());
        (void)std::fprintf(stderr, "auto-update: %s\n", problem.c_str());
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return Run(argc == 2 ? argv[1] : "");
    } catch (const std::exception& failure) {
        (void)std::fprintf(stderr, "auto-update: %s\n", failure.what());
        return EXIT_FAILURE;
    }
}
