#include "addons/pkgcontrol.h"

#include "addons/addonpackage.h"
#include "addons/keyvalue.h"
#include "addons/paths.h"
#include "addons/pkgrecovery.h"
#include "addons/scopedlockfile.h"
#include "platform/log.h"

namespace {

std::string TextMember(const Json::Value& object, const char* name) {
    if (!object.isObject()) {
        return "";
    }
    const Json::Value& member = object[name];
    return member.isString() ? member.asString() : "";
}

// Takes what the user is shown from the settings of the unpacked add-on. Returns 0 when all of it is there.
int DescribePkg(const std::string& conf, Json::Value& result) {
    for (const char* key : {kVersionKey, kMaintainerKey}) {
        std::string value;
        if (ReadKeyValue(conf, key, value) < 0) {
            return -1;
        }
        result[key] = value;
    }
    return 0;
}

}  // namespace

std::string GetWorkDir(ADDON_SERVICE service, bool fromHost) {
    return std::string(kWorkDirPrefix) + "_" + GetServiceStr(service) + (fromHost ? kFromHostSuffix : "");
}

std::string GetPkgLockFile(ADDON_SERVICE service) {
    return std::string(kProcessFilePrefix) + kPackageLockName + "_" + GetServiceStr(service) + kLockSuffix;
}

void SetErrInfo(Json::Value& errInfo, const std::string& section, const std::string& key,
                const std::string& param1, const std::string& param2, const std::string& param3) {
    errInfo["sec"] = section;
    errInfo["key"] = key;
    errInfo["param1"] = param1;
    errInfo["param2"] = param2;
    errInfo["param3"] = param3;
}

PkgControl::PkgControl(ADDON_SERVICE service) : m_service(service) {}

// NOLINTNEXTLINE(performance-unnecessary-value-param): the caller's own object is not to be touched
int PkgControl::GetPkgInfo(Json::Value pkgInfo, Json::Value& result, bool fromHost) {
    m_filePath = TextMember(pkgInfo, "filePath");
    m_fileName = TextMember(pkgInfo, "fileName");
    m_fromHost = fromHost;
    int outcome = -1;
    {
        const ScopedLockFile lock(GetPkgLockFile(m_service), kPackageLockWaitMs);
        if (!lock.IsHeld()) {
            CVPrintf(0, nullptr, nullptr, "addonsservice", __LINE__, __func__, "Failed to lock [%s].\n",
                     lock.Path().c_str());
        } else if (RecoverAddOn(m_service) && IsPkgValid()) {
            outcome = DescribePkg(GetFilePath(PKG_PATH_CONF), result);
        }
    }
    if (outcome == 0) {
        result["filePath"] = m_filePath;
    } else if (m_errInfo.isNull()) {
        SetErrInfo(m_errInfo, "localdisplay", "invalid_file", "", "", "");
    }
    result["errinfo"] = m_errInfo;
    return outcome;
}

// NOLINTNEXTLINE(misc-no-recursion): the path of INFO needs no further file
std::string PkgControl::GetFilePath(PATH_TYPE type) const {
    std::string path = GetWorkDir(m_service, m_fromHost);
    if (type == PKG_PATH_INFO) {
        path += std::string("/") + kInfoName;
    } else if (type == PKG_PATH_CONF) {
        const std::string name = GetPkgNameInInfo();
        const AddOnPackage* package = FindAddOnPackage(name);
        path += "/" + (package == nullptr ? name : package->tree) + "/" + kConfName;
    }
    return path;
}

// NOLINTNEXTLINE(misc-no-recursion): the path of INFO needs no further file
std::string PkgControl::GetPkgNameInInfo() const {
    std::string name;
    (void)ReadKeyValue(GetFilePath(PKG_PATH_INFO), kPackageKey, name);  // a missing one is empty
    return name;
}

std::string PkgControl::GetAppMinVerKey() const {
    const AddOnPackage* package = FindAddOnPackage(m_service);
    if (package == nullptr) {
        CVPrintf(0, nullptr, nullptr, "addonsservice", __LINE__, __func__, "Invalid service\n");
        return "";
    }
    return package->minVersionKey;
}
