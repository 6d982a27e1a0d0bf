// Unpacking: the steps for each kind of service.
#include "addons/pkgcontrol.h"

#include "fake/journal.h"
#include "fake/script.h"
#include "fake/session.h"
#include "fake/steps.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <regex>
#include <string>
#include <vector>

namespace {

using fake::Steps;
using fake::operator+;

// Without the looks at the tree.
std::string CallsButLooks() {
    return std::regex_replace(fake::Journal(), std::regex("lstat .*\n"), "");
}

struct ExtractCase {
    const char* name;
    int service;
    bool fromHost;
    const char* dir;
    Steps steps;  // between the look at the first run's work and the removal of the file
};

const ExtractCase kExtractCases[] = {
    {"device_pack",
     1,
     false,
     "/var/packages/Camvora/target/cv_addOns_name1/",
     {"PLIBCExec /bin/tar -C /var/packages/Camvora/target/cv_addOns_name1/ -xvf "
      "/var/packages/Camvora/target/cv_addOns_name1/package.tgz"}},
    {"local_display",
     6,
     true,
     "/var/packages/Camvora/target/cv_addOns_name6_host/",
     {"CreateFullDirPath /var/packages/Camvora/target/cv_addOns_name6_host//local_display",
      "PLIBCExec /bin/tar -C /var/packages/Camvora/target/cv_addOns_name6_host//local_display -xvf "
      "/var/packages/Camvora/target/cv_addOns_name6_host/package.tgz"}},
    {"service_without_packages", 3, true, "/var/packages/Camvora/target/cv_addOns_name3_host/", {}},
};

class Extract : public testing::TestWithParam<ExtractCase> {
protected:
    // `afterFirstRun` and `afterLastRun` are what a refused package adds.
    void ExpectSteps(const Steps& afterFirstRun, const Steps& afterLastRun) const {
        std::string file = "/up/1";
        ExtractPkg(file, GetParam().fromHost, static_cast<ADDON_SERVICE>(GetParam().service));
        const std::string dir = GetParam().dir;
        EXPECT_EQ(dir, file);
        const std::string mark = dir.substr(0, dir.size() - 1) + ".partial";
        const Steps begin = {"GetServiceStr " + std::to_string(GetParam().service),
                             "mkdir " + mark,
                             "CVRm " + dir,
                             "CreateFullDirPath " + dir,
                             "PLIBCExec /bin/tar -C " + dir + " -xvf /up/1",
                             "nftw " + dir.substr(0, dir.size() - 1)};
        EXPECT_EQ(fake::Lines(begin) + fake::Lines(afterFirstRun) + fake::Lines(GetParam().steps) +
                      fake::Lines(afterLastRun) + fake::Lines({"rmdir " + mark, "CVRm /up/1"}),
                  CallsButLooks());
    }

    static Steps Refused(const char* reason) {
        const std::string dir = GetParam().dir;
        return {"CVPrintf 0 null null addonsservice ExtractPkg 'Removed [" + dir + "]: " + reason + R"(\n')",
                "CVRm " + dir};
    }

    static bool HasTree() { return !GetParam().steps.empty(); }

    static Steps ClearPlace() {
        const std::string tree = GetParam().service == 1 ? "device_pack" : "local_display";
        return HasTree() ? Steps{"CVRm " + (GetParam().dir + tree)} : Steps{};
    }

private:
    fake::Session session_;
};

TEST_P(Extract, EmptiesUnpacksAndRemovesTheFile) {
    ExpectSteps({}, {});
}

// The second run then finds nothing.
TEST_P(Extract, RemovesWhatCannotBeLookedThrough) {
    fake::Answer("nftw", EACCES);
    ExpectSteps(Refused("cannot be looked through"), {});
}

TEST_P(Extract, RemovesATreeThatIsNotSound) {
    fake::Answer("lstat", EACCES);
    ExpectSteps(ClearPlace(), HasTree() ? Refused("links or special files") : Steps{});
}

TEST_P(Extract, RefusesATreePlaceThatCannotBeCleared) {
    fake::AnswerOnce("lstat", EACCES);
    fake::AnswerOnce("CVRm", 0);
    fake::AnswerOnce("CVRm", -1);
    ExpectSteps(HasTree() ? ClearPlace() + Refused("cannot be looked through") : Steps{}, {});
}

// The mark stays with it.
TEST_P(Extract, MarksWhatItCannotRemove) {
    fake::Answer("nftw", EACCES);
    fake::AnswerOnce("CVRm", 0);
    fake::Answer("CVRm", -1);
    std::string file = "/up/1";
    ExtractPkg(file, GetParam().fromHost, static_cast<ADDON_SERVICE>(GetParam().service));
    EXPECT_EQ(std::string::npos, CallsButLooks().find("rmdir"));
}

TEST_P(Extract, UnpacksNothingWithoutAMark) {
    fake::Answer("mkdir", ENOSPC);
    std::string file = "/up/1";
    ExtractPkg(file, GetParam().fromHost, static_cast<ADDON_SERVICE>(GetParam().service));
    const std::string dir = GetParam().dir;
    const std::string workDir = dir.substr(0, dir.size() - 1);
    const Steps begin = {
        "GetServiceStr " + std::to_string(GetParam().service), "mkdir " + workDir + ".partial",
        "CVPrintf 0 null null addonsservice ExtractPkg 'Failed to mark [" + workDir + R"(]\n')"};
    const Steps description = HasTree() ? Steps{ClearPlace().front() + "/conf"} : Steps{};
    EXPECT_EQ(
        fake::Lines(begin + description + Steps{"CVRm " + dir, "CreateFullDirPath " + dir, "CVRm /up/1"}),
        CallsButLooks());
}

INSTANTIATE_TEST_SUITE_P(, Extract, testing::ValuesIn(kExtractCases),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
