#include "libcamvora/logfile.h"

#include "libcamvora/descriptor.h"

#include <fcntl.h>
#include <json/reader.h>
#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <deque>
#include <memory>
#include <utility>

namespace camvora {

namespace {

constexpr std::size_t kLinesLimit = 1000;
constexpr std::size_t kLineLimitBytes = 1UL << 16;  // more than any line that is written

int OpenForAppend(const std::string& path) {
    return open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_NOFOLLOW | O_CLOEXEC, 0600);
}

int OpenWithFolder(const std::string& path) {
    const int number = OpenForAppend(path);
    if (number >= 0 || errno != ENOENT) {
        return number;
    }
    (void)mkdir(path.substr(0, path.rfind('/')).c_str(), 0700);  // the second try tells
    return OpenForAppend(path);
}

bool IsLineOfRequest(const char* line, const std::string& requestId, Json::Value& entry) {
    if (std::strstr(line, requestId.c_str()) == nullptr) {
        return false;  // spares the parser most lines
    }
    const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
    return reader->parse(line, line + std::strlen(line), &entry, nullptr) && entry.isObject() &&
           entry["request"] == requestId;
}

void CollectLines(const std::string& path, const std::string& requestId, std::deque<Json::Value>& found) {
    const std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen(path.c_str(), "re"), &std::fclose);
    std::array<char, kLineLimitBytes> line{};
    while (file != nullptr && std::fgets(line.data(), line.size(), file.get()) != nullptr) {
        Json::Value entry;
        if (!IsLineOfRequest(line.data(), requestId, entry)) {
            continue;
        }
        found.push_back(std::move(entry));
        if (found.size() > kLinesLimit) {
            found.pop_front();
        }
    }
}

}  // namespace

LogFile::LogFile(std::string path) : path_(std::move(path)), oldPath_(path_ + ".1") {}

void LogFile::Append(const std::string& line) const {
    const Descriptor file(OpenWithFolder(path_));
    if (file.IsOpen()) {
        (void)!write(file.Number(), line.data(), line.size());  // there is nowhere to complain
    }
}

Json::Value LogFile::LinesOfRequest(const std::string& requestId) const {
    std::deque<Json::Value> found;
    CollectLines(oldPath_, requestId, found);
    CollectLines(path_, requestId, found);
    Json::Value lines(Json::arrayValue);
    for (Json::Value& entry : found) {
        lines.append(std::move(entry));
    }
    return lines;
}

void LogFile::RotateIfLarger(long long limitBytes) const {
    struct stat status {};
    if (stat(path_.c_str(), &status) == 0 && status.st_size > limitBytes) {
        (void)std::rename(path_.c_str(), oldPath_.c_str());  // if it fails, the log grows until the next try
    }
}

}  // namespace camvora
