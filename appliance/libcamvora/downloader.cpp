#include "libcamvora/downloader.h"

#include "libcamvora/arrivingfile.h"
#include "libcamvora/downloadfiles.h"
#include "libcamvora/downloadlock.h"
#include "libcamvora/downloadstate.h"
#include "libcamvora/operations.h"
#include "libcamvora/packagefetch.h"
#include "libcamvora/releasecheck.h"

#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <exception>

namespace camvora {

namespace {

using std::chrono::steady_clock;

// Writes at most four times a second how far the download has come, and no more once that fails.
class ProgressRecord {
public:
    ProgressRecord(Store& store, ADDON_SERVICE service) : store_(store), service_(service) {}

    void Show(long long bytes) {
        const auto now = steady_clock::now();
        if (isKept_ && now >= nextAt_) {
            nextAt_ = now + kInterval;
            isKept_ = store_.WriteLater(
                [&](SQLite::Database& database) { KeepProgress(database, service_, bytes); });
        }
    }

private:
    static constexpr std::chrono::milliseconds kInterval{250};

    Store& store_;
    const ADDON_SERVICE service_;
    steady_clock::time_point nextAt_;
    bool isKept_ = true;
};

class Downloader {
public:
    Downloader(Store& store, const UpdateSettings& settings) : store_(store), settings_(settings) {}

    void Run() {
        try {
            Download();
        } catch (const std::exception& failure) {
            if (isRecorded_) {
                record_.status = kDownloadFailed;
                record_.problem = failure.what();
                (void)KeepRecord();  // otherwise the freed lock shows that it has failed
            }
            throw;
        }
    }

private:
    void Download() {
        const auto last = LastDownload(store_, settings_.service);
        const bool isReady = last && IsReady(*last, settings_.installedVersion);
        if (!isReady) {
            Record();
        }
        const auto release = CheckRelease(store_, settings_);
        if (!release) {
            throw UpdateFailure("there is no newer release");
        }
        SetOperationVersion(store_, release->version);
        if (!isReady || last->info.version != release->version) {
            Replace(*release);
        }
    }

    void Replace(const Release& release) {
        const std::string partial = PartialFile(settings_, release);
        record_.info = {release.version, "", release.date};
        record_.sizeBytes = release.sizeBytes;
        Record();
        PrepareFolder(partial);
        Fetch(release, partial);
        Publish(partial, PackageFile(settings_, release));
    }

    void PrepareFolder(const std::string& partial) const {
        (void)mkdir(settings_.downloadFolder.c_str(), 0700);
        if (!RemoveDownloadFiles(settings_, partial)) {
            throw UpdateFailure("the files of an older download cannot be removed");
        }
    }

    void Fetch(const Release& release, const std::string& partial) {
        if (release.sizeBytes > settings_.conf.downloadLimitBytes) {
            throw UpdateFailure("it is larger than downloads may be");
        }
        ArrivingFile file(partial);
        CheckSpace(release.sizeBytes - file.SizeBytes());
        ProgressRecord progress(store_, settings_.service);
        FetchPackage(settings_, release, file, [&](long long bytes) {
            record_.bytes = bytes;
            progress.Show(bytes);
        });
        if (!file.Sync()) {
            file.Remove();
            throw UpdateFailure("the file cannot be written");
        }
    }

    void CheckSpace(long long neededBytes) const {
        struct statvfs disk {};
        if (statvfs(settings_.downloadFolder.c_str(), &disk) != 0 ||
            neededBytes > static_cast<long long>(disk.f_bavail) * static_cast<long long>(disk.f_frsize)) {
            throw UpdateFailure("there is not enough space on the disk");
        }
    }

    // From here on it counts as ready.
    void Publish(const std::string& partial, const std::string& package) {
        record_.status = kDownloadReady;
        record_.info.filePath = package;
        record_.bytes = record_.sizeBytes;
        if (!MovePackage(partial, package) || !KeepRecord()) {
            record_.info.filePath.clear();
            (void)RemoveDownloadFiles(settings_, "");
            throw UpdateFailure("the file cannot be recorded");
        }
    }

    void Record() {
        record_.status = kDownloadRuns;
        isRecorded_ = true;
        if (!KeepRecord()) {
            throw UpdateFailure("the database cannot be written");
        }
    }

    bool KeepRecord() {
        return store_.Write(
            [this](SQLite::Database& database) { KeepDownload(database, settings_.service, record_); });
    }

    Store& store_;
    const UpdateSettings& settings_;
    camvora::Download record_;
    bool isRecorded_ = false;  // the record is this download's
};

}  // namespace

void DownloadRelease(Store& store, const UpdateSettings& settings) {
    DownloadLock lock(settings.lockFile);
    if (!lock.HoldToDownload()) {
        throw UpdateFailure("another process downloads it");
    }
    Downloader(store, settings).Run();
}

}  // namespace camvora
