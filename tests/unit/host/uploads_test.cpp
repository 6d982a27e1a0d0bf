// Files of forms on a disk that is full.
#include "host/uploads.h"
#include "support/smalldisk.h"
#include "support/temporaryfolder.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <string>

namespace host {
namespace {

constexpr std::size_t kMiB = std::size_t{1} << 20;
constexpr std::size_t kDiskBytes = 8 * kMiB;

// Appends pieces until that fails or so many have been stored.
std::optional<FrameworkError> Store(Uploads& uploads, std::size_t sizeBytes) {
    const std::string piece(100'000, 'x');
    auto failure = uploads.Begin("f", "name");
    for (std::size_t stored = 0; !failure && stored < sizeBytes; stored += piece.size()) {
        failure = uploads.Append(piece.data(), piece.size());
    }
    return failure ? failure : uploads.Finish();
}

std::optional<FrameworkError> Upload(const UploadArea& area, std::uint64_t announcedSize, std::size_t size) {
    Uploads uploads(area, announcedSize);
    return Store(uploads, size);
}

// True when each upload that finds no room says so and leaves nothing, and the next one that does works.
bool CopeWithFullDisk(const std::string& folder) {
    const UploadArea area(folder);
    return Upload(area, 0, 2 * kDiskBytes) == FrameworkError::kNoSpace && std::filesystem::is_empty(folder) &&
           Upload(area, kDiskBytes, kMiB) == FrameworkError::kNoSpace && std::filesystem::is_empty(folder) &&
           !Upload(area, kMiB, kMiB);
}

// What the first file takes is a part of what was announced for both.
bool TakeTwoFiles(const std::string& folder) {
    const UploadArea area(folder);
    Uploads uploads(area, 3 * kMiB);
    return !Store(uploads, 3 * kMiB / 2) && !Store(uploads, 3 * kMiB / 2);
}

TEST(Uploads, FindADiskFullAndLeaveNothing) {
    if (!CanMountSmallDisk()) {
        GTEST_SKIP() << "no small disk can be had here";
    }
    const TemporaryFolder folder;
    const pid_t pid = fork();
    if (pid == 0) {
        const bool isMounted = MountSmallDisk(folder.Path(), kDiskBytes);
        _exit(isMounted && CopeWithFullDisk(folder.Path()) && TakeTwoFiles(folder.Path()) ? 0 : 1);
    }
    int status = 0;
    ASSERT_EQ(pid, waitpid(pid, &status, 0));
    EXPECT_EQ(0, status);
}

TEST(Uploads, SayThatTheyCannotBeStored) {
    const TemporaryFolder folder;
    EXPECT_EQ(FrameworkError::kUploadNotStored, Upload(UploadArea(folder.PathOf("missing")), 0, kMiB));
}

}  // namespace
}  // namespace host
