// tar as the appliance has it.
#include "libcamvora/unpack.h"
#include "platform/files.h"
#include "support/listing.h"
#include "support/smalldisk.h"
#include "support/tararchive.h"
#include "support/temporaryfolder.h"

#include "capturedlog.h"
#include "children.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

using std::chrono::seconds;

constexpr camvora::UnpackLimits kLimits{1'000'000, 50};

class UnpackTest : public testing::Test {
protected:
    void SetUp() override {
        folder_.Write("outside/secret", "untouched");
        folder_.Write("work/INFO", "was there");
        (void)TakeLoggedTexts();
    }

    camvora::ProgramEnd EndOf(const std::string& archive, const camvora::UnpackLimits& limits) const {
        const camvora::Program tar{
            "/bin/tar", {}, {"PATH=/usr/bin:/bin", "LANG=C.UTF-8"}, folder_.PathOf("output"), seconds(20)};
        return camvora::Unpack(tar, folder_.PathOf("work/"), folder_.PathOf(archive), limits);
    }

    bool Unpack(const std::string& archive, const camvora::UnpackLimits& limits = kLimits) const {
        return EndOf(archive, limits).exitStatus == 0;
    }

    bool UnpackBytes(const std::string& archive, const camvora::UnpackLimits& limits = kLimits) const {
        folder_.Write("archive", archive);
        return Unpack("archive", limits);
    }

    // Makes an archive of the folder "tree" as its owner would.
    void Pack(const std::string& options, const std::string& archive) const {
        ASSERT_EQ(0, std::system(("cd " + folder_.Path() + "/tree && tar " + options + " '" +
                                  folder_.PathOf(archive) + "' .")
                                     .c_str()));
    }

    const TemporaryFolder folder_;
};

struct ArchiveCase {
    const char* name;
    std::vector<TarMember> members;
    bool isTaken;
};

const ArchiveCase kHostileArchives[] = {
    {"name_with_dots", {{"../outside/new", "x"}}, false},
    {"link_that_is_written_through", {{"l", "", '2', "../outside"}, {"l/secret", "x"}}, false},
    {"link_to_a_file_that_is_written_through", {{"l", "", '2', "../outside/secret"}, {"l", "x"}}, true},
    {"hard_link_that_is_written_through", {{"h", "", '1', "../../outside/secret"}, {"h", "x"}}, false},
    {"folder_that_lies_there_as_a_link", {{"planted/secret", "x"}}, true},
    {"device", {{"d", "", '3'}}, false},
    {"control_characters_in_names", {{"a\n\x1b[2J\x7f", "x"}, {"-rf", "x"}, {"*", "x"}}, true},
    {"mode_of_the_folder_itself", {{"./", "", '5', "", 0}, {"./a", "x"}}, true},
    {"all_files_too_large", {{"a", std::string(600'000, 'x')}, {"b", std::string(600'000, 'x')}}, false},
    {"damaged_member", {{"a", "x"}, {"b", "x", 'Z'}, {"c/../../d", "x"}}, false},
};

class HostileArchive : public UnpackTest, public testing::WithParamInterface<ArchiveCase> {};

TEST_P(HostileArchive, ReachesNothingOutside) {
    fs::create_directory_symlink(folder_.PathOf("outside"), folder_.PathOf("work/planted"));
    const Listing outside = ListingOf(folder_.PathOf("outside"));
    const Listing work = ListingOf(folder_.PathOf("work"));
    EXPECT_EQ(GetParam().isTaken, UnpackBytes(TarOf(GetParam().members)));
    EXPECT_EQ(outside, ListingOf(folder_.PathOf("outside")));
    const Listing after = ListingOf(folder_.PathOf("work"));
    EXPECT_EQ(after.at("INFO"), work.at("INFO"));
    EXPECT_EQ(GetParam().isTaken, work != after);
    EXPECT_EQ(GetParam().isTaken ? 0U : 1U, TakeLoggedTexts().size());
}

INSTANTIATE_TEST_SUITE_P(All, HostileArchive, testing::ValuesIn(kHostileArchives),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(UnpackTest, SetIdBitsAreNotTakenOver) {
    ASSERT_TRUE(UnpackBytes(TarOf({{"d/", "", '5', "", 07777}, {"d/f", "x", '0', "", 06755}})));
    EXPECT_EQ(fs::perms(0755), fs::status(folder_.PathOf("work/d")).permissions());
    EXPECT_EQ(fs::perms(0755), fs::status(folder_.PathOf("work/d/f")).permissions());
}

TEST_F(UnpackTest, BombsAreRefused) {
    fs::create_directory(folder_.PathOf("tree"));
    std::ofstream(folder_.PathOf("tree/hole")).put('x');
    ASSERT_EQ(0, truncate(folder_.PathOf("tree/hole").c_str(), 1LL << 40));
    Pack("-cSf", "sparse");
    EXPECT_FALSE(Unpack("sparse"));
    std::vector<TarMember> many;
    many.reserve(51);
    for (int i = 0; i < 51; ++i) {
        many.push_back({std::to_string(i)});
    }
    EXPECT_FALSE(UnpackBytes(TarOf(many)));
    many.pop_back();
    EXPECT_TRUE(UnpackBytes(TarOf(many)));
}

// While it runs, not only afterwards: it would fill the disk first. Within a folder that cannot be looked
// into, too.
TEST_F(UnpackTest, ABombIsStoppedOnItsWay) {
    constexpr std::size_t kNames = 60;              // more than the limit
    constexpr std::size_t kPrintedBytes = 240'000;  // less than what is kept of what tar prints
    for (const std::string folder : {"", "c/"}) {
        const auto member = [&folder](const std::string& name) {
            return TarOf({{folder + name}}).substr(0, 512);
        };
        std::string many = TarOf({{"c/", "", '5', "", 0}}).substr(0, 512);
        for (std::size_t i = 0; i < kNames; ++i) {
            many += member(std::to_string(i));
        }
        const std::string same = member("x");
        for (std::size_t printed = 0; printed < kPrintedBytes; printed += folder.size() + sizeof("x")) {
            many += same;
        }
        many += member("last");
        EXPECT_TRUE(SucceedsInChild([&] {
            return GiveUpPrivileges() && !UnpackBytes(many + std::string(1024, '\0')) &&
                   folder_.Read("output").find("last") == std::string::npos;
        }));
        EXPECT_EQ(1U, ListingOf(folder_.PathOf("work")).size());
    }
}

// tar holds it in memory and prints it, again with each complaint.
TEST_F(UnpackTest, AVeryLongNameIsNotPrintedWhole) {
    constexpr camvora::UnpackLimits kNoLimits{1LL << 40, 50};
    for (const std::size_t sizeMiB : {std::size_t{8}, std::size_t{300}}) {
        const std::string name(sizeMiB << 20, 'n');
        EXPECT_FALSE(UnpackBytes(TarOf({{"././@LongLink", name, 'L'}, {"x", "x"}}), kNoLimits));
        EXPECT_LE(folder_.Read("output").size(), std::size_t{1} << 20);
    }
    EXPECT_NE(std::string::npos, folder_.Read("output").find("memory exhausted"));
}

TEST_F(UnpackTest, WhatIsNoPlainFileIsNotWaitedFor) {
    ASSERT_EQ(0, mkfifo(folder_.PathOf("fifo").c_str(), 0600));
    for (const std::string archive : {"fifo", "missing", "work"}) {
        const camvora::ProgramEnd end = EndOf(archive, kLimits);
        EXPECT_EQ(-1, end.exitStatus) << archive;
        EXPECT_EQ(0, end.peakMemoryKiB) << archive << ": tar was started";
    }
}

TEST_F(UnpackTest, ACutArchiveLeavesWhatWasThere) {
    for (int i = 0; i < 8; ++i) {
        folder_.Write("tree/device_pack/" + std::to_string(i), std::string(5000, static_cast<char>('a' + i)));
    }
    Pack("-czf", "archive");
    const std::string whole = folder_.Read("archive");
    const Listing before = ListingOf(folder_.PathOf("work"));
    for (std::size_t size = 0; size < whole.size(); size += whole.size() / 30 + 1) {
        EXPECT_FALSE(UnpackBytes(whole.substr(0, size))) << size;
        EXPECT_EQ(before, ListingOf(folder_.PathOf("work"))) << size;
    }
    EXPECT_TRUE(UnpackBytes(whole));
    EXPECT_EQ(ListingOf(folder_.PathOf("tree/device_pack")), ListingOf(folder_.PathOf("work/device_pack")));
}

// tar itself takes it for whole.
TEST_F(UnpackTest, AnArchiveThatIsNotCompressedNeedsItsEnd) {
    const std::string whole = TarOf({{"a", "x"}, {"b", std::string(1024, '\0')}, {"c", "x"}});
    for (const std::size_t size :
         {whole.size() - 1024, whole.size() - 512, std::size_t{1024}, std::size_t{2560}}) {
        EXPECT_FALSE(UnpackBytes(whole.substr(0, size))) << size;
        EXPECT_EQ(1U, ListingOf(folder_.PathOf("work")).size()) << size;
    }
    EXPECT_TRUE(UnpackBytes(whole));
    EXPECT_TRUE(UnpackBytes(whole + std::string(9000, '\0')));
}

TEST_F(UnpackTest, AnArchiveThatIsNotCompressedMayHaveAllThatTarWrites) {
    fs::create_directory(folder_.PathOf("tree"));
    std::ofstream(folder_.PathOf("tree/file")) << "x";
    Pack("-cV label -f", "labelled");
    EXPECT_TRUE(Unpack("labelled"));
    ASSERT_EQ(0, std::system(("for i in $(seq 0 8 400); do printf x | dd of='" +
                              folder_.PathOf("tree/holes") + "' bs=1K seek=$i conv=notrunc status=none; done")
                                 .c_str()));
    Pack("--format=gnu -cSf", "pieces");
    EXPECT_TRUE(Unpack("pieces"));
}

TEST_F(UnpackTest, AFullDiskLeavesWhatWasThere) {
    if (!CanMountSmallDisk()) {
        GTEST_SKIP() << "no small disk can be had here";
    }
    const std::string small = TarOf({{"a", std::string(100'000, 'x')}});
    const std::string large = TarOf({{"a", std::string(100'000, 'x')}, {"b", std::string(700'000, 'x')}});
    EXPECT_TRUE(SucceedsInChild([&] {
        const bool isMounted = MountSmallDisk(folder_.PathOf("work"), 600'000);
        folder_.Write("work/INFO", "was there");
        return isMounted && !UnpackBytes(large) && ListingOf(folder_.PathOf("work")).size() == 1 &&
               UnpackBytes(small);
    }));
}

TEST_F(UnpackTest, ASecondArchiveMergesWithTheFirst) {
    ASSERT_TRUE(UnpackBytes(TarOf({{"d/a", "1"}, {"d/b", "1"}, {"f", "1"}, {"e/x", "1"}})));
    ASSERT_TRUE(UnpackBytes(TarOf({{"d/b", "2"}, {"d/c", "2"}, {"f/x", "2"}, {"e", "2"}})));
    EXPECT_EQ("was there", folder_.Read("work/INFO"));
    EXPECT_EQ("1", folder_.Read("work/d/a"));
    EXPECT_EQ("2", folder_.Read("work/d/b"));
    EXPECT_EQ("2", folder_.Read("work/d/c"));
    EXPECT_EQ("2", folder_.Read("work/f/x"));
    EXPECT_EQ("2", folder_.Read("work/e"));
    EXPECT_EQ(8U, ListingOf(folder_.PathOf("work")).size());
}

TEST_F(UnpackTest, AnArchivesNameIsAFileName) {
    folder_.Write("host:archive", TarOf({{"a", "x"}}));
    EXPECT_TRUE(Unpack("host:archive"));
    EXPECT_EQ("x", folder_.Read("work/a"));
}

TEST_F(UnpackTest, ClosedFoldersComeWithTheirModes) {
    const std::string archive = TarOf({{"d/", "", '5', "", 0555}, {"d/f", "x"}});
    EXPECT_TRUE(SucceedsInChild([&] { return GiveUpPrivileges() && UnpackBytes(archive); }));
    EXPECT_EQ(fs::perms(0555), fs::status(folder_.PathOf("work/d")).permissions());
    EXPECT_EQ("x", folder_.Read("work/d/f"));
}

}  // namespace
