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

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using camvora::EnterGuarded;
using Clock = std::chrono::steady_clock;

TEST(GuardNames, AreDistinctAndTellTheirLockFile) {
    std::set<std::string> names;
    for (const char* path :
         {"/tmp/cv_none.lock", "/tmp/cv/none.lock", "/tmp/cv%2Fnone.lock", "/tmp/cv%252Fnone.lock", "//",
          "%%", "/%", "/a b\n\t\"'*?\xc3\xa4", "%2", "2F"}) {
        const std::string guard = camvora::GuardOf("/guards", path);
        ASSERT_EQ(0U, guard.find("/guards/")) << path;
        const std::string name = guard.substr(8);
        EXPECT_EQ(std::string::npos, name.find('/')) << path;
        EXPECT_EQ(path, camvora::GuardedBy(name));
        EXPECT_TRUE(names.insert(name).second) << path;
    }
}

class LockGuards : public testing::Test {
protected:
    void SetUp() override { fs::create_directory(guards_); }

    int Enter(std::chrono::milliseconds limit = 0ms) const {
        return EnterGuarded(guards_, lock_, Clock::now() + limit);
    }
    bool Exists(const std::string& name) const {
        return fs::exists(fs::symlink_status(folder_.PathOf(name)));
    }

    const TemporaryFolder folder_;
    const std::string guards_ = folder_.PathOf("guards");
    const std::string lock_ = folder_.PathOf("cv_x.lock");
};

TEST_F(LockGuards, AFileThatSomebodyRemovedExcludesAllTheSame) {
    const int handle = Enter();
    EXPECT_TRUE(fs::remove(lock_));
    EXPECT_EQ(-1, Enter(10ms));
    camvora::LeaveLockQueue(handle);
}

TEST_F(LockGuards, AFileThatCannotBeMadeIsNoEntry) {
    fs::create_directory(lock_);
    EXPECT_EQ(-1, Enter());
    fs::remove(lock_);
    fs::create_symlink("elsewhere", lock_);
    EXPECT_EQ(-1, Enter());
    EXPECT_FALSE(Exists("cv_x.lock"));  // nobody holds it
    const int handle = Enter();
    EXPECT_GE(handle, 0);  // and holds nobody up
    camvora::LeaveLockQueue(handle);
}

TEST_F(LockGuards, AFileWithoutAGuardIsRemovedAsAnyOther) {
    folder_.Write("plain", "");
    EXPECT_EQ(0, camvora::RemoveGuarded(guards_, folder_.PathOf("plain")));
    EXPECT_FALSE(Exists("plain"));
    EXPECT_EQ(0, camvora::RemoveGuarded(guards_, folder_.PathOf("plain")));
    EXPECT_EQ(-1, camvora::RemoveGuarded(guards_, guards_));
}

TEST_F(LockGuards, AreSweptWhereNobodyIs) {
    const int held = EnterGuarded(guards_, folder_.PathOf("cv_held.lock"), Clock::now());
    for (const std::string& path : {lock_, folder_.PathOf("cv_addons_lock")}) {
        EXPECT_TRUE(SucceedsInChild([&] { return EnterGuarded(guards_, path, Clock::now()) >= 0; }));
    }
    for (const char* name : {"cv_x.pid", "cv_x.pid.new", "cv_held.pid", "cv_other.lock"}) {
        folder_.Write(name, "1");
    }
    camvora::SweepLockFiles(guards_);
    for (const char* name : {"cv_x.lock", "cv_x.pid", "cv_x.pid.new", "cv_addons_lock"}) {
        EXPECT_FALSE(Exists(name)) << name;
    }
    for (const char* name : {"cv_held.lock", "cv_held.pid", "cv_other.lock"}) {
        EXPECT_TRUE(Exists(name)) << name;
    }
    camvora::LeaveLockQueue(held);
    camvora::SweepLockFiles(folder_.PathOf("no folder"));
}

}  // namespace
