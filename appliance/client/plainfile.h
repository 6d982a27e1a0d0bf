// A plain file that is read.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace client {

class PlainFile {
public:
    // Opens the file at `path`. Throws Failure: kNotFound when there is none, kFailed when it cannot be read
    // or is a folder or anything else that is no plain file.
    explicit PlainFile(const std::string& path);
    ~PlainFile();
    PlainFile(const PlainFile&) = delete;
    PlainFile& operator=(const PlainFile&) = delete;

    // The size at the time of opening.
    std::uint64_t SizeBytes() const { return sizeBytes_; }

    // Reads into `buffer` what stands at `offset`, at most `sizeBytes` of it. Returns how much that was, 0 at
    // the end of the file. Throws Failure (kFailed).
    std::size_t ReadAt(std::uint64_t offset, char* buffer, std::size_t sizeBytes) const;

    // The whole file, or its beginning where it is larger than `limitBytes`. Throws Failure (kFailed).
    std::string Text(std::size_t limitBytes) const;

private:
    std::string path_;
    int descriptor_;
    std::uint64_t sizeBytes_ = 0;
};

}  // namespace client
