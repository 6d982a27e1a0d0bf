// Lock files and their guards.
#include "libcamvora/lockguards.h"

#include "children.h"
#include "support/temporaryfolder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <set>
#include <string>

namespace {

using namespace std::chrono_literals;
using camvora::EnterGuarded;
using camvora::GuardOf;
using Clock = std::chrono::steady_clock;

const char* const kPaths[] = {
    "/tmp/cv_none.lock",
    "/tmp/cv/none.lock",
    "/tmp/cv%2Fnone.lock",
    "/tmp/cv%252Fnone.lock",
    "/",
    "//",
    "%",
    "%%",
    "/%",
    "/a b\n\t\"'*?",
    "/\xc3\xa4",
    "%2",
    "2F",
};

TEST(GuardNames, AreDistinctAndTellTheirLockFile) {
    std::set<std::string> names;
    for (const char* path : kPaths) {
        const std::string guard = GuardOf("/guards", path);
        ASSERT_EQ(0U, guard.find("/guards/")) << path;
        const std::string name = guard.substr(8);
        EXPECT_EQ(std::string::npos, name.find('/')) << path;
        EXPECT_EQ(path, camvora::GuardedBy(name));
        EXPECT_TRUE(names.insert(name).second) << path;
    }
}

class LockGuards : public testing::Test {
protected:
    void SetUp() override { std::filesystem::create_directory(guards_); }

    int Enter(std::chrono::milliseconds limit) const {
        return EnterGuarded(guards_, lock_, Clock::now() + limit);
    }
    bool Exists(const std::string& name) const {
        return std::filesystem::exists(std::filesystem::symlink_status(folder_.PathOf(name)));
    }
    int Remove() const { return camvora::RemoveGuarded(guards_, lock_); }

    const TemporaryFolder folder_;
    const std::string guards_ = folder_.PathOf("guards");
    const std::string lock_ = folder_.PathOf("cv_x.lock");
};

TEST_F(LockGuards, AHolderShowsTheFileAndRemovesItAfterLeaving) {
    const int handle = Enter(0ms);
    ASSERT_GE(handle, 0);
    EXPECT_TRUE(Exists("cv_x.lock"));
    EXPECT_EQ(0, Remove());
    EXPECT_TRUE(Exists("cv_x.lock"));  // somebody holds it
    camvora::LeaveLockQueue(handle);
    EXPECT_EQ(0, Remove());
    EXPECT_FALSE(Exists("cv_x.lock"));
}

TEST_F(LockGuards, AFileThatSomebodyRemovedExcludesAllTheSame) {
    const int handle = Enter(0ms);
    std::filesystem::remove(lock_);
    EXPECT_EQ(-1, Enter(10ms));
    camvora::LeaveLockQueue(handle);
}

TEST_F(LockGuards, AFileThatCannotBeMadeIsNoEntry) {
    std::filesystem::create_directory(lock_);
    EXPECT_EQ(-1, Enter(0ms));
    std::filesystem::remove(lock_);
    std::filesystem::create_symlink("elsewhere", lock_);
    EXPECT_EQ(-1, Enter(0ms));
    EXPECT_FALSE(Exists("cv_x.lock"));  // nobody holds it
    const int handle = Enter(0ms);
    EXPECT_GE(handle, 0);  // and holds nobody up
    camvora::LeaveLockQueue(handle);
}

TEST_F(LockGuards, AFileWithoutAGuardIsRemovedAsAnyOther) {
    folder_.Write("plain", "");
    EXPECT_EQ(0, camvora::RemoveGuarded(guards_, folder_.PathOf("plain")));
    EXPECT_FALSE(Exists("plain"));
    EXPECT_EQ(0, camvora::RemoveGuarded(guards_, folder_.PathOf("plain")));
    EXPECT_EQ(-1, camvora::RemoveGuarded(guards_, guards_));
    EXPECT_EQ(0, camvora::RemoveGuarded(folder_.PathOf("no folder"), folder_.PathOf("plain")));
}

TEST_F(LockGuards, AreSweptWhereNobodyIs) {
    const std::string held = folder_.PathOf("cv_held.lock");
    const std::string unmarked = folder_.PathOf("cv_addons_lock");
    const int handle = EnterGuarded(guards_, held, Clock::now());
    for (const std::string& path : {lock_, unmarked}) {
        EXPECT_TRUE(SucceedsInChild([&] { return EnterGuarded(guards_, path, Clock::now()) >= 0; }));
    }
    for (const char* name : {"cv_x.pid", "cv_held.pid", "cv_other.lock"}) {
        folder_.Write(name, "1");
    }
    camvora::SweepLockFiles(guards_);
    for (const char* name : {"cv_x.lock", "cv_x.pid", "cv_addons_lock"}) {
        EXPECT_FALSE(Exists(name)) << name;
    }
    for (const char* name : {"cv_held.lock", "cv_held.pid", "cv_other.lock"}) {
        EXPECT_TRUE(Exists(name)) << name;
    }
    camvora::LeaveLockQueue(handle);
    camvora::SweepLockFiles(folder_.PathOf("no folder"));
}

}  // namespace
