// "pkg build" and "check": whole packages and whole programs.
#include "support/packages.h"

#include "fakeappliance.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <map>

namespace {

namespace fs = std::filesystem;

constexpr char kSettings[] =
    "package=\"CamvoraDevicePack\"\nversion=\"2.2-1\"\narch=\"plat1 plat2\"\nmaintainer=\"Me\"\n"
    "cv_min_ver=\"3.0\"\n";

class PkgBuildTest : public testing::Test {
protected:
    PkgBuildTest() {
        dir_.Write("in/package.conf", kSettings);
        dir_.Write("in/tree/script/preinst", "#!/bin/sh\n");
        dir_.Write("in/tree/\u00e4", "x");
        fs::permissions(dir_.PathOf("in/tree/script/preinst"), fs::perms::owner_all);
        fs::create_symlink("script/preinst", dir_.PathOf("in/tree/link"));
        fs::create_directory(dir_.PathOf("out"));
    }

    Outcome Build() const { return StartClient("pkg build " + in_ + " -o " + out_).Wait(); }

    std::string Listing(const std::string& archive) const {
        return Program({"/bin/tar", "-tvf", archive, "--quoting-style=literal"}, {"TZ=UTC", "PATH=/bin"})
            .Wait()
            .out;
    }

    TemporaryFolder dir_;
    const std::string in_ = dir_.PathOf("in");
    const std::string out_ = dir_.PathOf("out/x.spk");
};

TEST_F(PkgBuildTest, PacksTreeAndSettings) {
    const Outcome outcome = Build();
    EXPECT_EQ(out_ + " holds CamvoraDevicePack 2.2-1, 5 files and folders\n", outcome.out) << outcome.err;
    EXPECT_EQ("-rw-r--r-- 0/0              79 2020-01-01 00:00 INFO\n",
              Listing(out_).substr(0, Listing(out_).find('\n') + 1));
    Program({"/bin/tar", "-xf", out_, "-C", in_}, {}).Wait();
    EXPECT_EQ("package=\"CamvoraDevicePack\"\nversion=\"2.2-1\"\narch=\"plat1 plat2\"\nmaintainer=\"Me\"\n",
              dir_.Read("in/INFO"));
    EXPECT_EQ(
        "drwxr-xr-x 0/0               0 2020-01-01 00:00 device_pack/\n"
        "-rw-r--r-- 0/0              49 2020-01-01 00:00 device_pack/conf\n"
        "lrwxrwxrwx 0/0               0 2020-01-01 00:00 device_pack/link -> script/preinst\n"
        "drwxr-xr-x 0/0               0 2020-01-01 00:00 device_pack/script/\n"
        "-rwxr-xr-x 0/0              10 2020-01-01 00:00 device_pack/script/preinst\n"
        "-rw-r--r-- 0/0               1 2020-01-01 00:00 device_pack/\u00e4\n",
        Listing(in_ + "/package.tgz"));
    EXPECT_EQ(std::string(4, '\0'), dir_.Read("in/package.tgz").substr(4, 4)) << "time of compression";
}

TEST_F(PkgBuildTest, GivesTheSameBytesAgain) {
    Build();
    const std::string first = dir_.Read("out/x.spk");
    fs::last_write_time(in_ + "/tree/script", fs::file_time_type::clock::now() + std::chrono::hours(1));
    fs::permissions(in_ + "/tree/script", fs::perms::owner_all);
    Build();
    EXPECT_EQ(first, dir_.Read("out/x.spk"));
}

struct RefusalCase {
    const char* name;
    const char* spoil;  // in a shell
    int status;
    const char* words;
};

const RefusalCase kRefusalCases[] = {
    {"no_folder", "rm -r in", 3, "package.conf: No such"},
    {"no_tree", "rm -r in/tree", 3, "tree: No such"},
    {"no_version", "echo package=CamvoraDevicePack >in/package.conf", 2, "\"version\" in "},
    {"no_add_on", "echo package=DevicePack >in/package.conf", 2,
     "is neither CamvoraDevicePack nor CamvoraLocalDisplay"},
    {"value_too_long", "sed -i s/Me/$(printf %0300d 0)/ in/package.conf", 2, "\"maintainer\" in "},
    {"conf_in_the_tree", "touch in/tree/conf", 1, "has a conf of its own"},
    {"link_that_leads_out", "ln -s ../../x in/tree/script/x", 4,
     "would not keep the rules: links and special files\n"},
    {"pipe", "mkfifo in/tree/pipe", 1, "it is no plain file"},
};

class PkgRefusalTest : public PkgBuildTest, public testing::WithParamInterface<RefusalCase> {};

TEST_P(PkgRefusalTest, LeavesWhatWasThere) {
    dir_.Write("out/x.spk", "old");
    const std::string inFolder = "cd " + dir_.Path() + " && ";
    Program({"/bin/sh", "-c", inFolder + GetParam().spoil}, {"PATH=/usr/bin:/bin"}).Wait();
    const Outcome outcome = Build();
    EXPECT_EQ(GetParam().status, outcome.status);
    EXPECT_NE(std::string::npos, outcome.err.find(GetParam().words)) << outcome.err;
    EXPECT_EQ("old", dir_.Read("out/x.spk"));
    EXPECT_EQ(1, std::distance(fs::directory_iterator(dir_.PathOf("out")), {}));
}

INSTANTIATE_TEST_SUITE_P(All, PkgRefusalTest, testing::ValuesIn(kRefusalCases),
                         [](const auto& c) { return std::string(c.param.name); });

TEST(CheckTest, ShowsEveryRuleAndEscapesNames) {
    const TemporaryFolder dir;
    dir.Write("x.spk", MakeDevicePack({{"device_pack/a\x1b[2J", "", '2', "/etc"}}));
    const Outcome outcome = StartClient("check " + dir.PathOf("x.spk")).Wait();
    EXPECT_EQ(4, outcome.status);
    EXPECT_EQ("camvoractl: " + dir.PathOf("x.spk") + " does not keep the rules: links and special files\n",
              outcome.err);
    for (const char* row : {"\nlinks and special files  no           device_pack/a\\x1B[2J",
                            "\nplatform                 not checked  \"plat1  plat2\""}) {
        EXPECT_NE(std::string::npos, outcome.out.find(row)) << outcome.out;
    }
}

TEST(CheckTest, NeedsAPlainFile) {
    const TemporaryFolder dir;
    const std::string pipe = dir.PathOf("pipe");
    mkfifo(pipe.c_str(), 0600);
    EXPECT_EQ("camvoractl: Cannot read " + pipe + ": it is no plain file\n",
              StartClient("check " + pipe).Wait().err);
}

// The rule that each breaks, on the appliance as it leaves the factory.
TEST(SamplesTest, AreTakenOrRefusedAsTheirNamesSay) {
    const std::map<std::string, std::string> samples = {{"2.0.4-0118", ""},
                                                        {"2.2.0-0140", ""},
                                                        {"2.2.1-0141-failing", ""},
                                                        {"2.2.2-0142-hanging", ""},
                                                        {"2.3.0-0152", ""},
                                                        {"too-old", "version of the add-on"},
                                                        {"other-platform", "platform"},
                                                        {"needs-newer-camvora", "version of Camvora"}};
    for (const auto& [name, rule] : samples) {
        const std::string path = SAMPLES "/device_pack-" + name + ".spk";
        const Outcome outcome = StartClient("check --dir " FACTORY " " + path).Wait();
        EXPECT_EQ(rule.empty() ? "" : "camvoractl: " + path + " does not keep the rules: " + rule + "\n",
                  outcome.err);
    }
}

}  // namespace
