// One check for a new release, or one download of it, as the update client of an appliance does them, on
// state of its own:
//
//   bench_download check|download FEED_URL KEY_FILE STATE_FOLDER
//
// A download prints the seconds that it took and the KiB by which it raised the peak of the process's memory.
#include "libcamvora/downloader.h"
#include "libcamvora/releasecheck.h"

#include <sys/resource.h>

#include <chrono>
#include <exception>
#include <iostream>
#include <string>

namespace {

camvora::UpdateSettings Settings(const std::string& feedUrl, const std::string& keyFile,
                                 const std::string& folder) {
    camvora::UpdateSettings settings;
    settings.service = ADDON_SERVICE_DEVICE_PACK;
    settings.shortName = "device_pack";
    settings.conf = {feedUrl, keyFile, 1LL << 30};
    settings.downloadFolder = folder + "/download";
    settings.lockFile = folder + "/lock";
    return settings;
}

long PeakMemoryKiB() {
    struct rusage usage {};
    (void)getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

void DownloadTimed(camvora::Store& store, const camvora::UpdateSettings& settings) {
    const long before = PeakMemoryKiB();
    const auto start = std::chrono::steady_clock::now();
    camvora::DownloadRelease(store, settings);
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    std::cout << seconds.count() << ' ' << PeakMemoryKiB() - before << '\n';
}

void Run(const std::string& task, const camvora::UpdateSettings& settings, const std::string& folder) {
    camvora::Store store(folder + "/camvora.db");
    if (task == "check") {
        (void)camvora::CheckRelease(store, settings);
    } else {
        DownloadTimed(store, settings);
    }
}

}  // namespace

int main(int argc, char** argv) try {
    if (argc != 5) {
        std::cerr << "usage: bench_download check|download FEED_URL KEY_FILE STATE_FOLDER\n";
        return 2;
    }
    Run(argv[1], Settings(argv[2], argv[3], argv[4]), argv[4]);
    return 0;
} catch (const std::exception& failure) {
    std::cerr << "bench_download: " << failure.what() << '\n';
    return 1;
}
