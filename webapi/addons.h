// The handler of the API "ORVA.Camvora.AddOns".
#pragma once

#include "webapi/cvwebapihandler.h"

#include <json/value.h>

class AddOnsHandler;

using AddOnsHandlerBase =
    CVWebAPIHandler<AddOnsHandler, int (AddOnsHandler::*)(CmsRelayParams&, CmsRelayTarget&, Json::Value&),
                    int (AddOnsHandler::*)(CmsRelayParams&),
                    int (AddOnsHandler::*)(CmsRelayParams&, CmsRelayTarget&, bool)>;

// Serves one request and lives no longer than it. Used in the request process.
class AddOnsHandler final : public AddOnsHandlerBase {
public:
    // Takes request and response, which stay the framework's.
    AddOnsHandler(ORVA::APIRequest* request, ORVA::APIResponse* response);

    // Admits the request and serves it: the response holds the answer afterwards, or nothing where the
    // method has no handler. Errors: 105 not admitted, 401 no method, 400 a handler failed. Call once.
    void HandleProcess();

private:
    bool IsAdmitted();
    bool IsPairMatch(bool crossSite);
    void Dispatch();

    // Each reads its parameters from the request and answers exactly once.
    void HandleEnable();
    void HandleRestart();
    void HandleGetInfo();
    void HandleGetAppsStatus();
    void HandleSetAutoUpdate();
    void HandleGetUpdateInfo();
    void HandleCheckUpdateInfo();
    void HandleList();
    void HandleCheckEnableDone();
    void HandleGetPkgInfo();
    void HandleLoadFile();
    void HandlePkgUpdate();
    void HandleUpload();
    void HandleRestore();
    void HandleDownloadStart();
    void HandleDownloadProgress();
    void HandleDownloadCancel();

    struct Route;
    static const Route kRoutes[];
};
