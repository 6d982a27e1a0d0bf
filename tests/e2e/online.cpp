#include "e2e/online.h"

#include "e2e/packages.h"
#include "e2e/processes.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <random>
#include <thread>

namespace e2e {

namespace {

namespace fs = std::filesystem;
using std::chrono::milliseconds;

constexpr char kDownloads[] = "target/@CVData/download";
constexpr int kRuns = 1;
constexpr int kReady = 2;

Answer Call(const Appliance& appliance, const char* method, int service) {
    return appliance.Owner().AddOns(method, Param("service", service));
}

std::vector<fs::path> DownloadFiles(const Appliance& appliance) {
    std::vector<fs::path> files;
    const fs::path folder = appliance.PackagePath(kDownloads);
    for (const std::string name : {".spk", ".partial"}) {
        if (!fs::exists(folder)) {
            break;
        }
        for (const auto& entry : fs::directory_iterator(folder)) {
            if (entry.path().extension() == name) {
                files.push_back(entry.path());
            }
        }
    }
    return files;
}

// The host's processes that work on a request, or on what it has ordered.
std::vector<pid_t> Workers(const Appliance& appliance) {
    return Descendants(appliance.Supervisor(), [&appliance](pid_t pid) {
        return NameOf(pid) == "camvora-host" && pid != appliance.RequestServer() &&
               pid != appliance.HttpProcess() && IsAlive(pid);
    });
}

// Makes a ready download one that is not there.
void Forget(const Appliance& appliance) {
    for (const fs::path& file : DownloadFiles(appliance)) {
        fs::remove(file);
    }
}

milliseconds AnyMoment(std::mt19937& random, milliseconds limit) {
    return milliseconds(std::uniform_int_distribution<long>(0, limit.count())(random));
}

}  // namespace

int UpdateStateOf(const Appliance& appliance, int service) {
    return Call(appliance, "CheckUpdateInfo", service).Data()["status"].asInt();
}

int DownloadStateOf(const Appliance& appliance, int service) {
    return Call(appliance, "DownloadProgress", service).Data()["status"].asInt();
}

// While nobody works on a request, and no download runs, what is on record is the end.
int Download(const Appliance& appliance, int service) {
    EXPECT_TRUE(Call(appliance, "DownloadStart", service).Succeeded());
    EXPECT_TRUE(WaitUntil([&] { return Workers(appliance).empty(); }, std::chrono::seconds(60)));
    return DownloadStateOf(appliance, service);
}

// It leads a session of its own.
pid_t Downloader(const Appliance& appliance) {
    for (const pid_t pid : Workers(appliance)) {
        if (getsid(pid) == pid) {
            return pid;
        }
    }
    return -1;
}

std::string DownloadedPackage(const Appliance& appliance) {
    const std::vector<fs::path> files = DownloadFiles(appliance);
    return files.empty() || files.front().extension() != ".spk" ? "" : ReadFile(files.front());
}

std::vector<std::string> KillDownloads(const Appliance& appliance, FaultyFeed& feed,
                                       const std::string& package, unsigned seed, unsigned count) {
    std::vector<std::string> faults;
    std::mt19937 random(seed);
    FeedFault slow;
    slow.pause = milliseconds(2);
    for (unsigned trial = 0; trial < count; ++trial) {
        Forget(appliance);
        feed.SetFault(slow);
        EXPECT_TRUE(Call(appliance, "DownloadStart", kLocalDisplayService).Succeeded());
        std::this_thread::sleep_for(AnyMoment(random, milliseconds(400)));
        const pid_t downloader = Downloader(appliance);
        if (downloader > 0) {
            kill(downloader, SIGKILL);
            WaitUntil([&] { return !IsAlive(downloader); });
            if (DownloadStateOf(appliance, kLocalDisplayService) == kRuns) {
                faults.push_back("trial " + std::to_string(trial) + ": still seen as running");
            }
        }
        feed.SetFault({});
        if (Download(appliance, kLocalDisplayService) != kReady || DownloadedPackage(appliance) != package) {
            faults.push_back("trial " + std::to_string(trial) + ": not whole afterwards");
        }
    }
    return faults;
}

std::vector<std::string> CancelDownloads(const Appliance& appliance, const std::string& package,
                                         unsigned seed, unsigned count) {
    std::vector<std::string> faults;
    std::mt19937 random(seed);
    for (unsigned trial = 0; trial < count; ++trial) {
        Forget(appliance);
        EXPECT_TRUE(Call(appliance, "DownloadStart", kLocalDisplayService).Succeeded());
        std::this_thread::sleep_for(AnyMoment(random, milliseconds(60)));
        const auto start = std::chrono::steady_clock::now();
        const bool isCancelled = Call(appliance, "DownloadCancel", kLocalDisplayService).Succeeded();
        if (!isCancelled || std::chrono::steady_clock::now() - start > std::chrono::seconds(1)) {
            faults.push_back("trial " + std::to_string(trial) + ": not cancelled within a second");
        }
        // A cancel that comes before the download has begun does not reach it.
        WaitUntil([&] { return Downloader(appliance) < 0; });
        const std::vector<fs::path> files = DownloadFiles(appliance);
        const bool isReady =
            UpdateStateOf(appliance, kLocalDisplayService) == 3 && DownloadedPackage(appliance) == package;
        if (!isReady && !files.empty()) {
            faults.push_back("trial " + std::to_string(trial) + ": neither ready nor gone");
        }
    }
    return faults;
}

}  // namespace e2e
