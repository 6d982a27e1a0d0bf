#include "libcamvora/logfile.h"

#include "libcamvora/descriptor.h"
#include "libcamvora/jsonobject.h"
#include "libcamvora/logline.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <deque>
#include <memory>
#include <optional>
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

// A line that a full disk cut short has no end of its own: the next one follows it directly. No text within
// a line looks like its beginning, since quotes are escaped there.
const char* LastLineIn(const char* text) {
    const char* last = text;
    for (const char* at = text; (at = std::strstr(at, kLogLineBegin)) != nullptr; ++at) {
        last = at;
    }
    return last;
}

std::optional<Json::Value> EntryOfRequest(const char* line, const std::string& requestId) {
    if (std::strstr(line, requestId.c_str()) == nullptr) {
        return std::nullopt;  // spares the parser most lines
    }
    std::optional<Json::Value> entry = ParseJsonObject(LastLineIn(line));
    return entry && (*entry)["request"] == requestId ? entry : std::nullopt;
}

using File = std::unique_ptr<FILE, int (*)(FILE*)>;

File OpenForReading(const std::string& path) {
    return {std::fopen(path.c_str(), "re"), &std::fclose};
}

bool IsSameFile(const File& one, const File& other) {
    struct stat first {};
    struct stat second {};
    return one != nullptr && other != nullptr && fstat(fileno(one.get()), &first) == 0 &&
           fstat(fileno(other.get()), &second) == 0 && first.st_ino == second.st_ino;
}

void CollectLines(const File& file, const std::string& requestId, std::deque<Json::Value>& found) {
    std::array<char, kLineLimitBytes> line{};
    while (file != nullptr && std::fgets(line.data(), line.size(), file.get()) != nullptr) {
        if (auto entry = EntryOfRequest(line.data(), requestId)) {
            found.push_back(std::move(*entry));
        }
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
    // The newer file first: if it is set aside in between, it is the older one too, and nothing that was
    // there is missed.
    const File newer = OpenForReading(path_);
    const File older = OpenForReading(oldPath_);
    if (!IsSameFile(older, newer)) {
        CollectLines(older, requestId, found);
    }
    CollectLines(newer, requestId, found);
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
