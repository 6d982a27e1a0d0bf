#include "webapi/apitable.h"

#include "webapi/addons.h"

namespace {

constexpr char kApi[] = "ORVA.Camvora.AddOns";
constexpr std::int32_t kVersion = 1;

}  // namespace

const APIMethodEntry gTable[] = {
    {kApi, kVersion, "List", Process},
    {kApi, kVersion, "Update", Process},
    {kApi, kVersion, "Enable", Process},
    {kApi, kVersion, "Disable", Process},
    {kApi, kVersion, "Restart", Process},
    {kApi, kVersion, "GetInfo", Process},
    {kApi, kVersion, "LoadFile", Process},
    {kApi, kVersion, "GetPkgInfo", Process},
    {kApi, kVersion, "GetAppsStatus", Process},
    {kApi, kVersion, "SetAutoUpdate", Process},
    {kApi, kVersion, "GetUpdateInfo", Process},
    {kApi, kVersion, "CheckUpdateInfo", Process},
    {kApi, kVersion, "CheckEnableDone", Process},
    {kApi, kVersion, "Upload", Process},
    {kApi, kVersion, "Restore", Process},
    {kApi, kVersion, "DownloadStart", Process},
    {kApi, kVersion, "DownloadProgress", Process},
    {kApi, kVersion, "DownloadCancel", Process},
    {},
};

const APIMethodEntry* GetAPITable() {
    return gTable;
}

void Process(ORVA::APIRequest* request, ORVA::APIResponse* response) {
    AddOnsHandler handler(request, response);
    handler.HandleProcess();
}
