// A package file on its way from the CMS host. The file is big: its text is held no longer and no more often
// than a step needs it.
#include "addons/pkgcontrol.h"

#include "addons/uploadarea.h"
#include "platform/cms.h"
#include "platform/files.h"
#include "platform/log.h"

#include <cstddef>
#include <memory>
#include <new>

namespace {

constexpr char kApi[] = "ORVA.Camvora.AddOns";
constexpr char kLoadMethod[] = "LoadFile";
constexpr int kApiVersion = 1;
constexpr int kReplyLimitS = 40;

// True when the host has answered with a file: a number and a text in the place of its size and its data.
bool HoldsFile(const Json::Value& reply) {
    if (!reply.isObject() || !reply["success"].isConvertibleTo(Json::booleanValue) ||
        !reply["success"].asBool() || !reply["data"].isObject()) {
        return false;
    }
    const Json::Value& data = reply["data"];
    return data["fileSize"].isIntegral() && data["fileData"].isString();
}

// A buffer of as many bytes as the host announces; null where there cannot be one.
std::unique_ptr<unsigned char[]> MakeBuffer(const Json::Value& sizeBytes) {
    if (!sizeBytes.isInt() || sizeBytes.asInt() < 0) {
        return nullptr;
    }
    return std::unique_ptr<unsigned char[]>(
        new (std::nothrow) unsigned char[static_cast<std::size_t>(sizeBytes.asInt())]);
}

// Takes the text out of `value`, which is null afterwards.
std::string TakeText(Json::Value& value) {
    const char* begin = nullptr;
    const char* end = nullptr;
    (void)value.getString(&begin, &end);
    std::string text(begin, end);
    value = Json::Value();
    return text;
}

}  // namespace

int PkgControl::GetFileFromHost() {
    if (!IsUploadPath(m_filePath)) {
        return -1;
    }
    Json::Value request = GetJsonAPIInfo(kApi, kLoadMethod, kApiVersion);
    request["filePath"] = m_filePath;
    Json::Value reply(Json::objectValue);
    if (SendWebAPIToHost(request, true, reply, kReplyLimitS, nullptr, 0) != 0) {
        CVPrintf(0, nullptr, nullptr, "addonsservice", __LINE__, __func__,
                 "Failed to send webapi to host [%s].\n", JsonWrite(request, true).c_str());
        return -1;
    }
    if (!HoldsFile(reply)) {
        CVPrintf(0, nullptr, nullptr, "addonsservice", __LINE__, __func__, "Failed to load file from host\n");
        return -1;
    }
    Json::Value& data = reply["data"];
    const std::unique_ptr<unsigned char[]> buffer = MakeBuffer(data["fileSize"]);
    if (buffer == nullptr) {
        return -1;
    }
    const int sizeBytes = data["fileSize"].asInt();
    if (WriteFileByBase64String(m_filePath, TakeText(data["fileData"]), buffer.get(), sizeBytes) != 0) {
        CVPrintf(0, nullptr, nullptr, "addonsservice", __LINE__, __func__,
                 "Failed to write file = [%s],Size = [%d]\n", m_filePath.c_str(), sizeBytes);
        return -1;
    }
    return 0;
}
