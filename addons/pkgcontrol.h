// A package file on its way from a request to an unpacked and checked work directory.
#pragma once

#include "platform/services.h"

#include <json/value.h>

#include <string>

// A path in the work directory, see PkgControl::GetFilePath.
enum PATH_TYPE : int {
    PKG_PATH_INFO = 0,  // what the package says of itself
    PKG_PATH_CONF = 1,  // the settings of the add-on in it
};

// The directory, without final "/", into which packages for `service` are unpacked: one for those that a user
// of this machine brings, one for those fetched from the CMS host.
std::string GetWorkDir(ADDON_SERVICE service, bool fromHost);

// The lock file that guards both work directories of `service`, and how long to wait for it, in milliseconds.
std::string GetPkgLockFile(ADDON_SERVICE service);
inline constexpr int kPackageLockWaitMs = 3000;

// Unpacks the package file at `filePath` into the work directory, emptied before, and removes the file.
// `filePath` names the work directory afterwards, with its final "/". Failures show in what can be read from
// there: of a package that holds links or special files where it may not, nothing can. To be called with the
// package lock held.
void ExtractPkg(std::string& filePath, bool fromHost, ADDON_SERVICE service);

// Removes the unpacked tree from the work directory; one that cannot be removed is marked as cut. Returns
// false when it may still count. To be called with the package lock held.
bool ForgetUnpacked(ADDON_SERVICE service, bool fromHost);

// False while the work directory `dir`, with its final "/", is filled or cleared, and after that was killed.
bool IsWholeUnpacking(const std::string& dir);

// Sets the members of an error-info object, which names a message of the web user interface: the section and
// key of its text and up to three texts to put into it. Other members of `errInfo` stay.
void SetErrInfo(Json::Value& errInfo, const std::string& section, const std::string& key,
                const std::string& param1, const std::string& param2, const std::string& param3);

// The inspection of one package for one service. Used in the request process, for one request; only the work
// directory remains of it.
class PkgControl {
public:
    explicit PkgControl(ADDON_SERVICE service);

    // Checks and unpacks the package file that `pkgInfo` names by its texts "filePath" and "fileName" (the
    // name given by the user); anything else stands for empty texts. With `fromHost` the file lies on the CMS
    // host and is fetched. Waits for another inspection of the service at most 3000 ms.
    //   result   an object that gets "version", "maintainer", "filePath" (the work directory), as far as they
    //            are known, and "errinfo": null or the error-info object
    //   returns  0 when the package may be installed, else -1
    int GetPkgInfo(Json::Value pkgInfo, Json::Value& result, bool fromHost);

    // Whether the package may be installed on this machine: all checks below, in their order, up to the first
    // that fails. Unpacks the package on the way.
    bool IsPkgValid();

    // Finds or fetches the package file and unpacks it. Returns 0, or -1 when the name given by the user is
    // not a package's or there is no file.
    int CheckAndGetFile();

    // Fetches the package file from the CMS host, which loses it, to the same path on this machine. Returns
    // 0, or -1 with nothing written.
    int GetFileFromHost();

    // Whether the name given by the user ends as a package file's does.
    bool IsPkgExtensionValid() const;

    // Whether the unpacked package is one of the service's. Sets no error info.
    bool IsPkgAllowed() const;

    // Whether the unpacked package runs on this machine's platform.
    bool IsPlatformValid();

    // Whether the main package is as new as the add-on needs it.
    bool IsCvVersionValid();

    // Whether the add-on is as new as the main package needs it.
    bool IsPkgVersionValid();

    // The path of a file in the work directory; of the work directory for a value that is none of PATH_TYPE.
    std::string GetFilePath(PATH_TYPE type) const;

    // The package's identifier; empty when it cannot be read.
    std::string GetPkgNameInInfo() const;

    // The key of the main package's setting for the lowest version of the add-on that it accepts; empty, with
    // a log line, for a service without packages.
    std::string GetAppMinVerKey() const;

private:
    ADDON_SERVICE m_service;
    std::string m_filePath;  // of the package file; once that is unpacked, the work directory
    std::string m_fileName;
    bool m_fromHost = false;
    Json::Value m_errInfo;  // null while no check has failed
};
