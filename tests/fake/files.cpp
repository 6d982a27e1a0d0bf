#include "platform/files.h"

#include "fake/journal.h"
#include "fake/json.h"
#include "fake/script.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

bool IsFileExist(const std::string& path) {
    return fake::Call("IsFileExist", false, path).asBool();
}

bool IsExistDir(const std::string& path) {
    return fake::Call("IsExistDir", false, path).asBool();
}

int RemoveFileIfExist(const std::string& path) {
    return fake::Call("RemoveFileIfExist", 0, path).asInt();
}

int CreateFullDirPath(const std::string& path) {
    return fake::Call("CreateFullDirPath", 0, path).asInt();
}

// A path of the appliance is only recorded; a test's own folder is really cleared.
int CVRm(const std::string& path) {
    fake::Record("CVRm", path);
    if (path.rfind("/var/packages/", 0) != 0) {
        std::filesystem::remove_all(path);
    }
    return fake::NextAnswer("CVRm", 0).asInt();
}

// The elements are scripted: what becomes of empty ones is the platform's affair.
std::list<std::string> String2StrList(const std::string& text, const std::string& separator) {
    fake::Record("String2StrList", text, separator);
    std::list<std::string> elements;
    for (const Json::Value& element : fake::NextAnswer("String2StrList", Json::Value(Json::arrayValue))) {
        elements.push_back(element.asString());
    }
    return elements;
}

// The content is scripted as a text; without one the file cannot be read.
int ReadContentFromFileToBuf(const std::string& path, bool wholeFile, unsigned char*& buffer,
                             std::size_t& sizeBytes) {
    const Json::Value answer = fake::Call("ReadContentFromFileToBuf", Json::Value(), path, wholeFile);
    if (!answer.isString()) {
        return -1;
    }
    const std::string content = answer.asString();
    sizeBytes = content.size();
    buffer = static_cast<unsigned char*>(std::malloc(content.size()));
    std::copy(content.begin(), content.end(), buffer);
    return 0;
}

int WriteFileByBase64String(const std::string& path, const std::string& text, unsigned char* buffer,
                            int sizeBytes) {
    fake::Record("WriteFileByBase64String", path, text, sizeBytes);
    std::fill_n(buffer, sizeBytes, static_cast<unsigned char>('x'));
    return fake::NextAnswer("WriteFileByBase64String", 0).asInt();
}

std::string HttpBase64EncodeUnsigned(const unsigned char* bytes, std::size_t sizeBytes) {
    const std::string content(bytes, bytes + sizeBytes);
    fake::Record("HttpBase64EncodeUnsigned", content);
    return "base64 of " + content;
}

std::string JsonWrite(const Json::Value& value, bool compact) {
    return compact ? fake::WriteJson(value) : value.toStyledString();
}

std::string itos(long long number) {
    return std::to_string(number);
}
