// Online releases of add-ons: check, download, download state, automatic-download schedule.
// Implemented by the package library. Each user makes an object of its own; the state lies on disk and
// is shared by all processes.
#pragma once

#include "platform/services.h"

#include <string>

// State of a download. 0 is none yet, 1 downloading, 2 ready, 4 failed.
enum APP_DOWNLOAD_STATUS : int {};

// The record of the last download.
struct APP_DOWNLOAD_INFO {
    std::string version;
    std::string filePath;  // full path of the downloaded package file
    std::string date;
};

// The update client of one service.
class AddonsUpdate {
public:
    explicit AddonsUpdate(ADDON_SERVICE service);
    ~AddonsUpdate();
    AddonsUpdate(const AddonsUpdate&) = delete;
    AddonsUpdate& operator=(const AddonsUpdate&) = delete;

    // Asks the release service. Returns 0 when it could be asked: `hasNew` tells whether a release newer
    // than the installed add-on exists, `version` which. Otherwise non-zero, with both untouched.
    int CheckNewRelease(bool& hasNew, std::string& version);

    // Downloads the newer release; returns when the download has ended: 0 when it is complete.
    int Download();

    // Reports the download: version text, 0 to 100 percent, state. Returns 0 when it could be read;
    // what is not known is left untouched.
    int GetDownloadStatus(std::string& version, int& percent, APP_DOWNLOAD_STATUS& status);

    // Ends the download, whichever process runs it. Returns 0 on success, also when none runs.
    int CancelDownload();

    // Reads the record of the last download. Returns 0 when it could be read; `ready` tells whether the
    // package file is complete, and then `info` names it.
    int ReadDownloadInfoFile(bool& ready, APP_DOWNLOAD_INFO& info);

    // Forgets the last download. Returns 0 on success.
    int CleanDownloadResult();

    // Writes or removes the schedule of the automatic download. Returns 0 on success.
    int SetAutoDownloadCrontabRule(bool enable);

    // True when `version` is newer than `than`; equal versions count when `allowEqual` is true.
    static bool IsVersionNewer(const std::string& version, const std::string& than, bool allowEqual);

private:
    ADDON_SERVICE service_;
};
