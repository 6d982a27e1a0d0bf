// Unpacking: the steps for each kind of service.
#include "addons/pkgcontrol.h"

#include "fake/script.h"

#include "cases.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <string>

namespace {

struct ExtractCase {
    const char* name;
    ADDON_SERVICE service;
    bool fromHost;
    std::string workDir;
    std::string tree;  // empty where there is none
    Steps steps;       // between the look at the first run's work and the removal of the file
};

const std::string kPrefix = "/var/packages/Camvora/target/cv_addOns_name";

const ExtractCase kExtractCases[] = {
    {"device_pack",
     ADDON_SERVICE_DEVICE_PACK,
     false,
     kPrefix + "1",
     "device_pack",
     {"PLIBCExec /bin/tar -C " + kPrefix + "1/ -xvf " + kPrefix + "1/package.tgz"}},
    {"local_display",
     ADDON_SERVICE_LOCAL_DISPLAY,
     true,
     kPrefix + "6_host",
     "local_display",
     {"CreateFullDirPath " + kPrefix + "6_host//local_display",
      "PLIBCExec /bin/tar -C " + kPrefix + "6_host//local_display -xvf " + kPrefix + "6_host/package.tgz"}},
    {"service_without_packages", ADDON_SERVICE_3, true, kPrefix + "3_host", "", {}},
};

class Extract : public TableTest<ExtractCase> {
protected:
    // Expects those steps, the looks at the tree left out, between the mark and the removal of the file.
    void ExpectSteps(const Steps& steps) const {
        std::string file = "/up/1";
        ExtractPkg(file, GetParam().fromHost, GetParam().service);
        EXPECT_EQ(dir_, file);
        EXPECT_EQ(fake::Lines(Steps{"mkdir " + mark_} + steps + Steps{"CVRm /up/1"}),
                  fake::JournalWithout("lstat"));
    }

    // Expects that the package is unpacked, with what a refused one adds after the runs of tar.
    void ExpectUnpacked(const Steps& afterFirstRun, const Steps& afterLastRun) const {
        ExpectSteps(clear_ +
                    Steps{"PLIBCExec /bin/tar -C " + dir_ + " -xvf /up/1", "nftw " + GetParam().workDir} +
                    afterFirstRun + GetParam().steps + afterLastRun + Steps{"rmdir " + mark_});
    }

    Steps Refused(const std::string& reason) const {
        return {"CVPrintf 0 null null addonsservice ExtractPkg 'Removed [" + dir_ + "]: " + reason + R"(\n')",
                "CVRm " + dir_};
    }

    bool HasTree() const { return !GetParam().tree.empty(); }

    Steps Remove(const std::string& file) const {
        return HasTree() ? Steps{"CVRm " + dir_ + GetParam().tree + file} : Steps{};
    }

    const std::string dir_ = GetParam().workDir + "/";
    const std::string mark_ = GetParam().workDir + ".partial";
    const Steps clear_ = {"CVRm " + dir_, "CreateFullDirPath " + dir_};
};

TEST_P(Extract, EmptiesUnpacksAndRemovesTheFile) {
    ExpectUnpacked({}, {});
}

// The second run then finds nothing.
TEST_P(Extract, RemovesWhatCannotBeLookedThrough) {
    fake::Answer("nftw", EACCES);
    ExpectUnpacked(Refused("cannot be looked through"), {});
}

TEST_P(Extract, RemovesATreeThatIsNotSound) {
    fake::Answer("lstat", EACCES);
    ExpectUnpacked(Remove(""), HasTree() ? Refused("links or special files") : Steps{});
}

TEST_P(Extract, RefusesATreePlaceThatCannotBeCleared) {
    fake::AnswerOnce("lstat", EACCES);
    fake::AnswerOnce("CVRm", 0);
    fake::AnswerOnce("CVRm", -1);
    ExpectUnpacked(HasTree() ? Remove("") + Refused("cannot be looked through") : Steps{}, {});
}

// The mark stays with it.
TEST_P(Extract, MarksWhatItCannotRemove) {
    fake::Answer("nftw", EACCES);
    fake::AnswerOnce("CVRm", 0);
    fake::Answer("CVRm", -1);
    std::string file = "/up/1";
    ExtractPkg(file, GetParam().fromHost, GetParam().service);
    EXPECT_EQ(std::string::npos, fake::Journal().find("rmdir"));
}

TEST_P(Extract, UnpacksNothingWithoutAMark) {
    fake::Answer("mkdir", ENOSPC);
    ExpectSteps(Steps{"CVPrintf 0 null null addonsservice ExtractPkg 'Failed to mark [" + GetParam().workDir +
                      R"(]\n')"} +
                Remove("/conf") + clear_);
}

INSTANTIATE_TEST_SUITE_P(, Extract, testing::ValuesIn(kExtractCases), CaseName<ExtractCase>);

}  // namespace
