// What every web API handler of the package has in common: the request and its answer, the pending
// error, and the signatures of the relay hooks towards a CMS host.
#pragma once

#include "platform/cms.h"
#include "platform/log.h"
#include "platform/webapi.h"

#include <cstdint>
#include <map>
#include <string>

// Base of a handler object, which serves one request and lives no longer than it.
//   Handler            the concrete handler class
//   RelayWithDataFn    types of the handler's relay hooks; a handler without hooks
//   RelayFn            supplies none and the base holds none
//   RelayWithFlagFn
// Not destroyed through this class: the destructor is neither public nor virtual.
template <typename Handler, typename RelayWithDataFn, typename RelayFn, typename RelayWithFlagFn>
class CVWebAPIHandler {
public:
    // Takes request and response, which stay the framework's. A request counts as relayed when it says so
    // and this server is a CMS host.
    CVWebAPIHandler(ORVA::APIRequest* request, ORVA::APIResponse* response)
        : m_pRequest(request), m_pResponse(response) {
        const bool marked = m_pRequest->GetParam("relayedCmd", false).asBool();
        const bool isHost = IsCmsHost();
        m_blRelayedCmd = marked && isHost;
    }

    CVWebAPIHandler(const CVWebAPIHandler&) = delete;
    CVWebAPIHandler& operator=(const CVWebAPIHandler&) = delete;

    // True when the camera may be changed here: on a CMS host, or when it is this server's own.
    // Otherwise logs one line and returns false.
    virtual bool IsCMSClosed(int cameraId) {
        if (IsCmsHost() || GetCamOwnerHxId(cameraId) == 0) {
            return true;
        }
        CVPrintf(0, nullptr, nullptr, "cvwebapihandler", __LINE__, __func__,
                 "Camera[%d]: Modify detection param while CMS closed.\n", cameraId);
        return false;
    }

    // Makes `code` (not 0) the error that WriteResponse answers, with two texts for the user interface.
    void SetErrorCode(int code, const std::string& param1 = "", const std::string& param2 = "") {
        m_iErrorCode = code;
        m_mapErrorParams[1] = param1;
        m_mapErrorParams[2] = param2;
    }

    // Answers the request: success with `result`, or the pending error with a copy of `result` that
    // carries the two texts as "param1" and "param2".
    void WriteResponse(const Json::Value& result) {
        if (m_iErrorCode == 0) {
            m_pResponse->SetSuccess(result);
            return;
        }
        Json::Value data = result;
        data["param1"] = m_mapErrorParams[1];
        data["param2"] = m_mapErrorParams[2];
        m_pResponse->SetError(m_iErrorCode, data);
    }

protected:
    ~CVWebAPIHandler() = default;

    ORVA::APIRequest* m_pRequest;
    ORVA::APIResponse* m_pResponse;
    bool m_blRelayedCmd = false;
    std::int32_t m_iErrorCode = 0;
    std::map<int, std::string> m_mapErrorParams;
};
