// The checks of a package, in the order in which they are made.
#include "addons/pkgcontrol.h"

#include "addons/addonpackage.h"
#include "addons/keyvalue.h"
#include "addons/paths.h"
#include "addons/uploadarea.h"
#include "platform/cms.h"
#include "platform/files.h"
#include "platform/log.h"
#include "platform/plibc.h"
#include "platform/releases.h"

#include <algorithm>
#include <list>

namespace {

constexpr char kExtension[] = "spk";
constexpr int kUniqueSizeBytes = 128;

// The machine's platform, which its "unique" text has between the first and the last "_"; else empty.
std::string ReadPlatform() {
    std::string unique;
    if (ReadKeyValue(kMachineInfo, kUniqueKey, unique, kUniqueSizeBytes) <= 0) {
        return "";
    }
    const std::string::size_type first = unique.find('_');
    const std::string::size_type last = unique.rfind('_');
    return first == last ? "" : unique.substr(first + 1, last - first - 1);
}

std::string DisplayName(ADDON_SERVICE service) {
    const AddOnPackage* package = FindAddOnPackage(service);
    return package == nullptr ? GetServiceStr(service) : package->displayName;
}

}  // namespace

bool PkgControl::IsPkgValid() {
    return CheckAndGetFile() == 0 && IsPkgAllowed() && IsPlatformValid() && IsCvVersionValid() &&
           IsPkgVersionValid();
}

int PkgControl::CheckAndGetFile() {
    if (!IsPkgExtensionValid()) {
        SetErrInfo(m_errInfo, "localdisplay", "invalid_file", "", "", "");
        return -1;
    }
    if (m_fromHost) {
        if (!IsCmsPaired() || GetFileFromHost() != 0) {
            return -1;
        }
    } else if (!IsUploadedFile(m_filePath) || PLIBCFileExist(m_filePath.c_str()) == 0) {
        return -1;
    }
    ExtractPkg(m_filePath, m_fromHost, m_service);
    return 0;
}

bool PkgControl::IsPkgExtensionValid() const {
    return m_fileName.substr(m_fileName.rfind('.') + 1) == kExtension;  // past "no position" is 0
}

bool PkgControl::IsPkgAllowed() const {
    const std::string name = GetPkgNameInInfo();
    const AddOnPackage* wanted = FindAddOnPackage(m_service);
    if (wanted == nullptr) {
        return false;
    }
    if (m_service == ADDON_SERVICE_LOCAL_DISPLAY) {
        CVPrintf(0, nullptr, nullptr, "addonsservice", __LINE__, __func__, "%s\n%s\n", wanted->package,
                 name.c_str());
    }
    return name == wanted->package;
}

bool PkgControl::IsPlatformValid() {
    std::string pkgArch;
    std::string mainArch;
    if (ReadKeyValue(GetFilePath(PKG_PATH_INFO), kArchKey, pkgArch) < 0 ||
        ReadKeyValue(kMainInfo, kArchKey, mainArch) < 0) {
        return false;
    }
    if (pkgArch == mainArch) {
        return true;
    }
    const std::string platform = ReadPlatform();
    const std::list<std::string> platforms = String2StrList(pkgArch, " ");
    if (std::find(platforms.begin(), platforms.end(), platform) != platforms.end()) {
        return true;
    }
    SetErrInfo(m_errInfo, "device_pack", "plat_not_support", mainArch, "", "");
    return false;
}

bool PkgControl::IsCvVersionValid() {
    std::string minMain;
    std::string mainVersion;
    if (ReadKeyValue(GetFilePath(PKG_PATH_CONF), kMinMainVersionKey, minMain) < 0 ||
        ReadKeyValue(kMainInfo, kVersionKey, mainVersion) < 0) {
        return false;
    }
    if (AddonsUpdate::IsVersionNewer(mainVersion, minMain, true)) {
        return true;
    }
    SetErrInfo(m_errInfo, "device_pack", "cv_ver_too_old", minMain, "", "");
    return false;
}

bool PkgControl::IsPkgVersionValid() {
    std::string pkgVersion;
    std::string minAddOn;
    if (ReadKeyValue(GetFilePath(PKG_PATH_CONF), kVersionKey, pkgVersion) < 0 ||
        ReadKeyValue(kMainConf, GetAppMinVerKey().c_str(), minAddOn) < 0) {
        return false;
    }
    if (AddonsUpdate::IsVersionNewer(pkgVersion, minAddOn, true)) {
        return true;
    }
    SetErrInfo(m_errInfo, "addons", "forbid_downgrade", DisplayName(m_service), minAddOn, pkgVersion);
    return false;
}
