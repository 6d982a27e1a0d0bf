// Telling from the outside whether a file was written.
#pragma once

#include <sys/types.h>

#include <ctime>
#include <optional>
#include <string>

namespace camvora {

// Two equal stamps of one path mean that the file was not written in between, if the first one was settled
// when it was taken.
struct FileStamp {
    ino_t inode;
    off_t sizeBytes;
    timespec written;

    // True when a write from now on is sure to change the stamp: file systems keep the time of a write in
    // steps of up to two seconds.
    bool IsSettled() const;
};

bool operator==(const FileStamp& one, const FileStamp& other);

// The stamp of the file at `path`; nothing when there is none.
std::optional<FileStamp> StampOf(const std::string& path);

}  // namespace camvora
