// Packages: "Upload", "GetPkgInfo", "LoadFile".
#include "webapi/addons.h"

#include "addons/paths.h"
#include "addons/pkgcontrol.h"
#include "addons/uploadarea.h"
#include "platform/files.h"
#include "platform/log.h"
#include "platform/plibc.h"

#include <cstddef>
#include <cstdlib>
#include <memory>

namespace {

constexpr int kErrFailed = 400;
constexpr char kFileField[] = "addonsSpkFile";
constexpr char kStoredFile[] = "addonsSpkFile_tmp";
constexpr std::size_t kFileLimitBytes = 0x5FFFFF00;  // a JSON value takes less than 2 GiB of text

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};

// The file in base64, with its size in bytes; empty and 0, with a log line, where it cannot be read. What was
// read is removed, once the text stands where the answer takes it from: the file moves to who asked for it.
// The biggest parts are never held all at once: the bytes go before the text is copied.
Json::Value TakeFile(const std::string& path, std::size_t& sizeBytes) {
    unsigned char* content = nullptr;
    const bool isRead = IsUploadedFile(path) &&
                        ReadContentFromFileToBuf(path, true, content, sizeBytes) == 0 &&
                        sizeBytes <= kFileLimitBytes;
    std::unique_ptr<unsigned char, Free> owner(content);
    if (!isRead) {
        CVPrintf(0, nullptr, nullptr, "addons", __LINE__, "HandleLoadFile", "Failed to read file[%s]!\n",
                 path.c_str());
        sizeBytes = 0;
        return "";
    }
    const std::string text = HttpBase64EncodeUnsigned(content, sizeBytes);
    owner.reset();
    Json::Value encoded(text);
    (void)PLIBCExec(kRemoveProgram, "-rf", path.c_str());
    return encoded;
}

}  // namespace

void AddOnsHandler::HandleUpload() {
    Json::Value form;
    Json::Value result;
    ORVA::APIUpload upload(m_pRequest);
    if (m_pRequest->IsUploadRequest()) {
        upload.GetUploadParam(form);
        upload.GetUploadFile(form);
    }
    if (form.isMember(kFileField) && form.isMember(kStoredFile)) {
        result["pkgInfo"]["fileName"] = form[kFileField].asString();
        result["pkgInfo"]["filePath"] = form[kStoredFile].asString();
    } else {
        SetErrorCode(kErrFailed);
        result["errinfo"]["sec"] = "device_pack";
        result["errinfo"]["key"] = "sel_file";
    }
    WriteResponse(result);
}

void AddOnsHandler::HandleGetPkgInfo() {
    const Json::Value pkgInfo = m_pRequest->GetParam("pkgInfo", "");
    const int service = m_pRequest->GetParam("service", 0).asInt();
    const bool fromHost = m_pRequest->GetParam("isRedirectCgi", false).asBool();
    PkgControl package(static_cast<ADDON_SERVICE>(service));
    Json::Value result(Json::objectValue);
    if (package.GetPkgInfo(pkgInfo, result, fromHost) != 0) {
        SetErrorCode(kErrFailed);
    }
    WriteResponse(result);
}

void AddOnsHandler::HandleLoadFile() {
    const std::string path = m_pRequest->GetParam("filePath", "").asString();
    std::size_t sizeBytes = 0;
    Json::Value data(Json::objectValue);
    data["fileData"] = TakeFile(path, sizeBytes);
    data["fileSize"] = static_cast<Json::UInt64>(sizeBytes);
    m_pResponse->SetSuccess(data);
}
