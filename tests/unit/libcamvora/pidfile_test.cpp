// The pid file of an action process or a daemon.
#include "platform/plibc.h"

#include "support/temporaryfolder.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <iterator>
#include <string>

namespace {

namespace fs = std::filesystem;

class PidFile : public testing::Test {
protected:
    std::ptrdiff_t FileCount() const {
        return std::distance(fs::directory_iterator(folder_.PathOf("")), fs::directory_iterator());
    }

    const TemporaryFolder folder_;
    const std::string path_ = folder_.PathOf("cv_x.pid");
    const std::string own_ = std::to_string(getpid());
};

TEST_F(PidFile, NamesItsWriterAndNothingElseIsLeft) {
    folder_.Write("cv_x.pid", "an older and longer text");
    EXPECT_EQ(0, PLIBCProcPidFileCreate(path_.c_str()));
    EXPECT_EQ(own_ + "\n", folder_.Read("cv_x.pid"));
    EXPECT_EQ(1, FileCount());
}

// Process numbers are used again, after a restart of the appliance the same low ones.
TEST_F(PidFile, IsWrittenOverTheRestsOfAKilledWriterOfTheSameNumber) {
    folder_.Write("cv_x.pid." + own_, "");
    EXPECT_EQ(0, PLIBCProcPidFileCreate(path_.c_str()));
    EXPECT_EQ(own_ + "\n", folder_.Read("cv_x.pid"));
}

TEST_F(PidFile, FailsWhereItCannotBeWritten) {
    fs::create_directory(path_);
    EXPECT_EQ(-1, PLIBCProcPidFileCreate(path_.c_str()));
    EXPECT_EQ(1, FileCount());
    EXPECT_EQ(-1, PLIBCProcPidFileCreate(folder_.PathOf("no folder/x.pid").c_str()));
}

TEST_F(PidFile, FollowsNoLink) {
    folder_.Write("other", "untouched");
    fs::create_symlink("other", path_);
    EXPECT_EQ(0, PLIBCProcPidFileCreate(path_.c_str()));
    EXPECT_EQ("untouched", folder_.Read("other"));
}

}  // namespace
