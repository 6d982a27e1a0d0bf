#include "host/uploads.h"

#include "host/jsontext.h"

#include <json/value.h>

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>

namespace host {

namespace {

constexpr std::size_t kBufferBytes = std::size_t{256} << 10;

FrameworkError ErrorOfErrno() {
    return errno == ENOSPC || errno == EDQUOT ? FrameworkError::kNoSpace : FrameworkError::kUploadNotStored;
}

std::string Unfinished(const std::string& path) {
    return path + kUnfinishedSuffix;
}

}  // namespace

Uploads::Uploads(const UploadArea& area, std::uint64_t announcedSize)
    : area_(area), announcedSize_(announcedSize) {}

Uploads::~Uploads() {
    if (!isKept_) {
        for (const auto& [field, file] : files_) {
            Remove(file);
        }
    }
}

std::optional<FrameworkError> Uploads::Begin(const std::string& field, const std::string& clientName) {
    if (const auto failure = EndFile()) {
        return failure;
    }
    if (files_.empty() && !area_.HasRoomFor(announcedSize_)) {
        return FrameworkError::kNoSpace;
    }
    File& file = files_[field];
    if (!file.path.empty()) {
        Remove(file);
    }
    file = {clientName, area_.NewPath()};
    current_ = UniqueFd(open(Unfinished(file.path).c_str(),
                             O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, S_IRUSR | S_IWUSR));
    buffer_.reserve(kBufferBytes);
    return current_.IsOpen() ? std::nullopt : std::optional(ErrorOfErrno());
}

std::optional<FrameworkError> Uploads::Append(const char* bytes, std::size_t sizeBytes) {
    while (sizeBytes > 0) {
        const std::size_t size = std::min(sizeBytes, kBufferBytes - buffer_.size());
        buffer_.insert(buffer_.end(), bytes, bytes + size);
        bytes += size;
        sizeBytes -= size;
        if (buffer_.size() == kBufferBytes) {
            if (const auto failure = Flush()) {
                return failure;
            }
        }
    }
    return std::nullopt;
}

std::optional<FrameworkError> Uploads::Flush() {
    if (!area_.HasRoomFor(buffer_.size())) {
        return FrameworkError::kNoSpace;
    }
    std::size_t written = 0;
    while (written < buffer_.size()) {
        const ssize_t size = write(current_.Get(), buffer_.data() + written, buffer_.size() - written);
        if (size < 0 && errno != EINTR) {
            return ErrorOfErrno();
        }
        written += size > 0 ? static_cast<std::size_t>(size) : 0;
    }
    buffer_.clear();
    return std::nullopt;
}

std::optional<FrameworkError> Uploads::EndFile() {
    if (!current_.IsOpen()) {
        return std::nullopt;
    }
    const auto failure = Flush();
    current_.Close();
    return failure;
}

std::optional<FrameworkError> Uploads::Finish() {
    if (const auto failure = EndFile()) {
        return failure;
    }
    for (const auto& [field, file] : files_) {
        if (std::rename(Unfinished(file.path).c_str(), file.path.c_str()) != 0) {
            return ErrorOfErrno();
        }
    }
    return std::nullopt;
}

std::string Uploads::ToJsonText() const {
    if (files_.empty()) {
        return "";
    }
    Json::Value object(Json::objectValue);
    for (const auto& [field, file] : files_) {
        object[field]["name"] = file.clientName;
        object[field]["path"] = file.path;
    }
    return ToRawJsonText(object);
}

void Uploads::Remove(const File& file) const {
    (void)unlink(Unfinished(file.path).c_str());
    (void)unlink(file.path.c_str());
}

}  // namespace host
