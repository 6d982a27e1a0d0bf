// Methods in the table that this build does not serve yet: each answers that it failed.
#include "webapi/addons.h"

namespace {

constexpr int kErrFailed = 400;

void AnswerNotServed(ORVA::APIResponse& response) {
    response.SetError(kErrFailed, Json::Value());
}

}  // namespace

void AddOnsHandler::HandleSetAutoUpdate() {
    AnswerNotServed(*m_pResponse);
}

void AddOnsHandler::HandleGetUpdateInfo() {
    AnswerNotServed(*m_pResponse);
}

void AddOnsHandler::HandleCheckUpdateInfo() {
    AnswerNotServed(*m_pResponse);
}

void AddOnsHandler::HandleRestore() {
    AnswerNotServed(*m_pResponse);
}

void AddOnsHandler::HandleDownloadStart() {
    AnswerNotServed(*m_pResponse);
}

void AddOnsHandler::HandleDownloadProgress() {
    AnswerNotServed(*m_pResponse);
}

void AddOnsHandler::HandleDownloadCancel() {
    AnswerNotServed(*m_pResponse);
}
