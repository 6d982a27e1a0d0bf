// Making and removing folders.
#include "platform/files.h"
#include "support/temporaryfolder.h"

#include "children.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <string>

namespace {

namespace fs = std::filesystem;

class RemoveTree : public testing::Test {
protected:
    const TemporaryFolder folder_;
    const std::string tree_ = folder_.PathOf("tree");
};

TEST_F(RemoveTree, TakesFilesAndFoldersAndWhatIsNotThere) {
    folder_.Write("tree/a/b/c", "x");
    folder_.Write("tree/0/1/2/0/1", "names that the removal itself uses");
    folder_.Write("tree/1", "x");
    folder_.Write("tree/- \n\xff*/-rf", "x");
    folder_.Write("file", "x");
    ASSERT_EQ(0, mkfifo((tree_ + "/a/fifo").c_str(), 0600));
    EXPECT_EQ(0, CVRm(tree_ + "//"));
    EXPECT_EQ(0, CVRm(folder_.PathOf("file")));
    EXPECT_EQ(0, CVRm(tree_));
    EXPECT_TRUE(fs::is_empty(folder_.Path()));
    EXPECT_EQ(-1, CVRm(""));
    EXPECT_EQ(-1, CVRm("/"));
}

TEST_F(RemoveTree, FollowsNoLink) {
    folder_.Write("other/kept", "x");
    fs::create_directories(tree_ + "/inside");
    fs::create_directory_symlink(folder_.PathOf("other"), tree_ + "/link");
    fs::create_directory_symlink(folder_.PathOf("other"), tree_ + "/inside/link");
    fs::create_directory_symlink(folder_.PathOf("other"), folder_.PathOf("toplink"));
    EXPECT_EQ(0, CVRm(tree_));
    EXPECT_EQ(0, CVRm(folder_.PathOf("toplink") + "/"));
    EXPECT_EQ("x", folder_.Read("other/kept"));
    EXPECT_FALSE(fs::exists(fs::symlink_status(folder_.PathOf("toplink"))));
}

TEST_F(RemoveTree, IsNotHeldUpByDepth) {
    constexpr int kDepth = 3000;
    const int start = open(".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    ASSERT_EQ(0, mkdir(tree_.c_str(), 0700));
    ASSERT_EQ(0, chdir(tree_.c_str()));
    for (int i = 0; i < kDepth; ++i) {
        ASSERT_TRUE(mkdir("d", 0700) == 0 && chdir("d") == 0) << i;
    }
    ASSERT_EQ(0, fchdir(start));
    close(start);
    EXPECT_EQ(0, CVRm(tree_));
    EXPECT_FALSE(IsExistDir(tree_));
}

TEST_F(RemoveTree, IsNotHeldUpByModes) {
    EXPECT_TRUE(SucceedsInChild([this] {
        folder_.Write("tree/outer/closed/inner/file", "x");
        for (const char* name : {"/outer/closed/inner", "/outer/closed", "/outer", ""}) {
            (void)chmod((tree_ + name).c_str(), name[0] == '\0' ? 0500 : 0);
        }
        return GiveUpPrivileges() && CVRm(tree_) == 0 && !IsFileExist(tree_);
    }));
}

TEST(MakeFolder, MakesAllThatIsMissing) {
    const TemporaryFolder folder;
    const mode_t before = umask(0);
    EXPECT_EQ(0, CreateFullDirPath(folder.PathOf("a/b//c/")));
    umask(before);
    EXPECT_EQ(fs::perms(0755), fs::status(folder.PathOf("a/b/c")).permissions());
    EXPECT_EQ(0, CreateFullDirPath(folder.PathOf("a")));
    folder.Write("file", "x");
    EXPECT_EQ(-1, CreateFullDirPath(folder.PathOf("file")));
    EXPECT_EQ(-1, CreateFullDirPath(folder.PathOf("file/x")));
    EXPECT_EQ(-1, CreateFullDirPath(""));
}

}  // namespace
