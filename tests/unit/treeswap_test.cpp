// Replacing a tree in a real folder: "place/old" is installed, "work/tree/new1" and "new2" are unpacked.
// Shell commands stand for the programs, and for what a power cut leaves.
#include "addons/treeswap.h"

#include "platform/files.h"
#include "support/temporaryfolder.h"

#include "cases.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

constexpr char kOld[] = "place place/old ";
constexpr char kNew[] = "place place/new1 place/new2 ";
constexpr char kUnpacked[] = "work work/tree work/tree/new1 work/tree/new2 ";
constexpr char kNotUnpacked[] = "work ";

class Trees : public testing::Test {
protected:
    Trees() { Run("mkdir -p place work/tree && touch place/old work/tree/new1 work/tree/new2"); }

    void Run(const std::string& commands) const {
        ASSERT_EQ(0, std::system(("cd '" + folder_.Path() + "' && " + commands).c_str())) << commands;
    }

    TreeSwap Swap() const { return {folder_.PathOf("place"), folder_.PathOf("work/tree")}; }

    bool Recover() const {
        return RecoverTree(folder_.PathOf("place"), [this] {
            return CVRm(folder_.PathOf("work/tree")) == 0 && CVRm(folder_.PathOf("work_host/tree")) == 0;
        });
    }

    std::string List() const {
        std::vector<std::string> names;
        for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder_.Path())) {
            names.push_back(entry.path().lexically_relative(folder_.Path()).string() + " ");
        }
        std::sort(names.begin(), names.end());
        std::string list;
        for (const std::string& name : names) {
            list += name;
        }
        return list;
    }

    TemporaryFolder folder_;
};

struct SwapCase {
    const char* name;
    const char* before;
    const char* move;
    bool isReplaced;
    const char* left;  // in the place
    const char* unpacked;
};

const SwapCase kSwapCases[] = {
    {"renamed", "true", "mv work/tree place", true, kNew, kNotUnpacked},
    {"copied", "true", "cp -r work/tree place && rm -r work/tree", true, kNew, kNotUnpacked},
    {"first_one", "rm -r place", "mv work/tree place", true, kNew, kNotUnpacked},
    {"link_replaced", "mv place other && ln -s other place && rm -r other", "mv work/tree place", true, kNew,
     kNotUnpacked},
    {"not_moved", "true", "true", false, kOld, kUnpacked},
    {"cut_copy", "true", "mkdir place && touch place/new1", false, kOld, kUnpacked},
    {"copy_without_removal", "true", "cp -r work/tree place", false, kOld, kUnpacked},
    {"copy_with_half_a_removal", "true", "cp -r work/tree place && rm work/tree/new1", false, kOld,
     kNotUnpacked},
    {"moved_elsewhere", "true", "mv work/tree place2 && rm -r place2", false, kOld, kNotUnpacked},
    {"file_arrived", "true", "touch place && rm -r work/tree", false, kOld, kNotUnpacked},
    {"first_one_not_moved", "rm -r place", "mkdir place && touch place/new1", false, "", kUnpacked},
};

class Swapping : public Trees, public testing::WithParamInterface<SwapCase> {};

TEST_P(Swapping, LeavesTheNewTreeOrTheOldOne) {
    Run(GetParam().before);
    TreeSwap swap = Swap();
    ASSERT_TRUE(swap.Prepare());
    ASSERT_TRUE(swap.SetAside());
    ASSERT_TRUE(swap.IsPlaceFree());
    Run(GetParam().move);
    const bool isReplaced = swap.Seal();
    if (!isReplaced) {
        swap.PutBack();
    }
    swap.Drop();
    EXPECT_EQ(GetParam().isReplaced, isReplaced);
    EXPECT_EQ(std::string(GetParam().left) + GetParam().unpacked, List());
}

INSTANTIATE_TEST_SUITE_P(, Swapping, testing::ValuesIn(kSwapCases), CaseName<SwapCase>);

TEST_F(Trees, AreNotReplacedByWhatIsNoTree) {
    for (const char* commands :
         {"rm -r work/tree", "touch work/tree", "rm work/tree && ln -s ../place work/tree"}) {
        Run(commands);
        EXPECT_FALSE(Swap().Prepare()) << commands;
    }
}

struct CutCase {
    const char* name;
    const char* commands;
    const char* left;  // in the place
    const char* unpacked;
};

const CutCase kCutCases[] = {
    {"before", "true", kOld, kUnpacked},
    {"set_aside", "mv place place.aside", kOld, kNotUnpacked},
    {"copying", "mv place place.aside && mkdir place && touch place/new1", kOld, kNotUnpacked},
    {"removing_what_was_copied", "mv place place.aside && cp -r work/tree place && rm work/tree/new1", kOld,
     kNotUnpacked},
    {"moved_but_not_on_the_disk", "mv place place.aside && mv work/tree place", kOld, kNotUnpacked},
    {"sealed", "mv place place.dropped && mv work/tree place", kNew, kNotUnpacked},
    {"dropping", "mv place place.dropped && rm place.dropped/old && mv work/tree place", kNew, kNotUnpacked},
    {"putting_back", "mv place place.aside && mkdir place.dropped && touch place.dropped/new2", kOld,
     kNotUnpacked},
    {"first_one", "rm -r place && mkdir place.aside && mv work/tree place", "", kNotUnpacked},
    {"first_one_put_back", "rm -r place/old", "place ", kUnpacked},
    {"from_the_host", "mv place place.aside && mkdir work_host && mv work/tree work_host", kOld,
     "work work_host "},
};

// The disk does not tell whether a tree was set aside: the file's name is too long for that.
TEST_F(Trees, AreLeftAloneWhenNothingIsKnown) {
    const std::string place = folder_.PathOf(std::string(250, 'x'));
    ASSERT_TRUE(fs::create_directory(place));
    bool isDropped = false;
    EXPECT_FALSE(RecoverTree(place, [&isDropped] { return isDropped = true; }));
    EXPECT_FALSE(isDropped);
    EXPECT_TRUE(fs::is_directory(place));
    EXPECT_TRUE(fs::is_directory(folder_.PathOf("work/tree")));
}

class Cut : public Trees, public testing::WithParamInterface<CutCase> {};

TEST_P(Cut, LeavesAWholeTreeToBeFound) {
    Run(GetParam().commands);
    for (int time = 0; time < 2; ++time) {
        EXPECT_TRUE(Recover());
        EXPECT_EQ(std::string(GetParam().left) + GetParam().unpacked, List());
    }
}

INSTANTIATE_TEST_SUITE_P(, Cut, testing::ValuesIn(kCutCases), CaseName<CutCase>);

}  // namespace
