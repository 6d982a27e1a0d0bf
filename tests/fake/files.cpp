#include "platform/files.h"

#include "fake/journal.h"
#include "fake/json.h"
#include "fake/script.h"

#include <ftw.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>

namespace {

// A scripted answer is the error to fail with; without one the call does what it always does.
bool FailsAsScripted(const char* function) {
    const Json::Value error = fake::NextAnswer(function, Json::Value());
    if (error.isInt()) {
        errno = error.asInt();
    }
    return error.isInt();
}

}  // namespace

bool IsFileExist(const std::string& path) {
    fake::Record("IsFileExist", path);
    return fake::NextAnswer("IsFileExist", false).asBool();
}

int RemoveFileIfExist(const std::string& path) {
    fake::Record("RemoveFileIfExist", path);
    return fake::NextAnswer("RemoveFileIfExist", 0).asInt();
}

int CreateFullDirPath(const std::string& path) {
    fake::Record("CreateFullDirPath", path);
    return fake::NextAnswer("CreateFullDirPath", 0).asInt();
}

int CVRm(const std::string& path) {
    fake::Record("CVRm", path);
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
    fake::Record("ReadContentFromFileToBuf", path, wholeFile);
    const Json::Value answer = fake::NextAnswer("ReadContentFromFileToBuf", Json::Value());
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

// The linker's --wrap chooses these names.
extern "C" {

int __real_lstat64(const char* path, struct stat* info);
int __real_nftw64(const char* folder, __nftw_func_t visit, int openFolders, int flags);

// Nothing is removed: the paths are the appliance's.
int __wrap_remove(const char* path) {
    fake::Record("remove", path);
    return fake::NextAnswer("remove", 0).asInt();
}

int __wrap_lstat64(const char* path, struct stat* info) {
    fake::Record("lstat", path);
    return FailsAsScripted("lstat") ? -1 : __real_lstat64(path, info);
}

int __wrap_nftw64(const char* folder, __nftw_func_t visit, int openFolders, int flags) {
    fake::Record("nftw", folder);
    return FailsAsScripted("nftw") ? -1 : __real_nftw64(folder, visit, openFolders, flags);
}
}
