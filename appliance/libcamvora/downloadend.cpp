#include "libcamvora/downloadend.h"

#include "libcamvora/downloadfiles.h"
#include "libcamvora/downloadlock.h"
#include "libcamvora/downloadstate.h"

#include <unistd.h>

#include <thread>

namespace camvora {

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr milliseconds kLimit{5000};
constexpr milliseconds kLookAgain{5};

// The files first: a record of nothing does no harm.
void RemoveAll(Store& store, const UpdateSettings& settings, const std::string& package) {
    if (!package.empty()) {
        (void)unlink(package.c_str());
    }
    if (!RemoveDownloadFiles(settings, "")) {
        throw UpdateFailure("its files cannot be removed");
    }
    if (!store.Write([&](SQLite::Database& database) { ForgetDownload(database, settings.service); })) {
        throw UpdateFailure("the database cannot be written");
    }
}

}  // namespace

void CancelDownload(Store& store, const UpdateSettings& settings) {
    const auto deadline = steady_clock::now() + kLimit;
    DownloadLock lock(settings.lockFile);
    while (!lock.HoldToCleanUp()) {
        if (steady_clock::now() > deadline) {
            throw UpdateFailure("the lock of its download is not to be had");
        }
        EndDownloader(settings.lockFile, kLimit);
        std::this_thread::sleep_for(kLookAgain);
    }
    const auto last = LastDownload(store, settings.service);
    if (!last || !IsReady(*last, "")) {  // a cancel takes nothing away that was there before it
        RemoveAll(store, settings, "");
    } else if (!RemoveDownloadFiles(settings, last->info.filePath)) {
        throw UpdateFailure("the files of an older download cannot be removed");
    }
}

void CleanDownload(Store& store, const UpdateSettings& settings) {
    const auto deadline = steady_clock::now() + kLimit;
    DownloadLock lock(settings.lockFile);
    while (!lock.HoldToCleanUp()) {
        if (IsDownloading(settings.lockFile)) {
            return;
        }
        if (steady_clock::now() > deadline) {
            throw UpdateFailure("the lock of its download is not to be had");
        }
        std::this_thread::sleep_for(kLookAgain);
    }
    const auto last = LastDownload(store, settings.service);
    RemoveAll(store, settings, last ? last->info.filePath : "");
}

}  // namespace camvora
