#include "client/formfile.h"

#include "client/failure.h"

#include <algorithm>
#include <filesystem>
#include <random>

namespace client {
namespace {

constexpr int kBoundaryDigits = 32;

// No file can hold it on purpose.
std::string RandomBoundary() {
    std::random_device random;
    std::uniform_int_distribution<std::size_t> digit(0, 15);
    std::string boundary = "camvoractl-";
    for (int count = 0; count < kBoundaryDigits; ++count) {
        boundary += "0123456789abcdef"[digit(random)];
    }
    return boundary;
}

// What would end the name, or its line, is escaped as browsers do.
std::string EscapedName(const std::string& name) {
    std::string escaped;
    for (const char byte : name) {
        switch (byte) {
            case '"':
                escaped += "%22";
                break;
            case '\r':
                escaped += "%0D";
                break;
            case '\n':
                escaped += "%0A";
                break;
            default:
                escaped += byte;
        }
    }
    return escaped;
}

std::size_t CopyFrom(const std::string& text, std::uint64_t offset, char* buffer, std::size_t sizeBytes) {
    return text.copy(buffer, sizeBytes, static_cast<std::size_t>(offset));
}

}  // namespace

FormFile::FormFile(const std::string& field, const std::string& path)
    : file_(path),
      boundary_(RandomBoundary()),
      head_("--" + boundary_ + "\r\nContent-Disposition: form-data; name=\"" + field + "\"; filename=\"" +
            EscapedName(std::filesystem::path(path).filename()) +
            "\"\r\nContent-Type: application/octet-stream\r\n\r\n"),
      tail_("\r\n--" + boundary_ + "--\r\n") {}

std::string FormFile::ContentType() const {
    return "multipart/form-data; boundary=" + boundary_;
}

std::uint64_t FormFile::SizeBytes() const {
    return head_.size() + file_.SizeBytes() + tail_.size();
}

std::size_t FormFile::ReadAt(std::uint64_t offset, char* buffer, std::size_t sizeBytes) const {
    if (offset < head_.size()) {
        return CopyFrom(head_, offset, buffer, sizeBytes);
    }
    const std::uint64_t offsetInFile = offset - head_.size();
    if (offsetInFile >= file_.SizeBytes()) {
        return CopyFrom(tail_, offsetInFile - file_.SizeBytes(), buffer, sizeBytes);
    }
    const std::uint64_t leftBytes = file_.SizeBytes() - offsetInFile;
    const std::size_t size =
        file_.ReadAt(offsetInFile, buffer, std::min<std::uint64_t>(sizeBytes, leftBytes));
    if (size == 0) {
        throw Failure(ExitStatus::kFailed, "The file became shorter while it was sent");
    }
    return size;
}

}  // namespace client
