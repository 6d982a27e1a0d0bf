// Packages that try to reach beyond their work directory.
#include "e2e/inspection.h"
#include "e2e/processes.h"
#include "support/packages.h"
#include "support/tararchive.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <ostream>
#include <string>
#include <vector>

namespace e2e {
namespace {

namespace fs = std::filesystem;

using Members = std::vector<TarMember>;

// A limit within reach of a test, and a folder with a good part for each link that is not to be followed.
constexpr char kLimits[] = "unpack_size_limit_mib=8\n";
const std::string kOutside = "/var/packages/Camvora/target/outside";

struct HostileCase {
    const char* name;
    AddOn addOn;
    Members package;  // a good INFO and package.tgz follow, as far as they are not here
    Members tree;     // that package.tgz holds; a good one where it is empty
    bool isTaken;
};

std::ostream& operator<<(std::ostream& out, const HostileCase& row) {
    return out << row.name;
}

const TarMember kConf = {"device_pack/conf", kGoodConf};

const HostileCase kHostileCases[] = {
    {"dots_in_the_tree", kDevicePack, {}, {kConf, {"device_pack/../../outside/new", "x"}}, false},
    {"link_for_the_tree", kDevicePack, {{"device_pack", "", '2', kOutside}}, {}, true},
    {"link_for_the_display", kLocalDisplay, {{"local_display", "", '2', kOutside}}, {}, true},
    {"file_for_the_display", kLocalDisplay, {{"local_display", "x"}}, {}, true},
    {"files_for_the_tree", kDevicePack, {{"device_pack/script/postinst", "x"}}, {}, true},
    {"tree_beside_a_damaged_one", kDevicePack, {kConf, {"package.tgz", "x"}}, {}, false},
    {"link_for_a_folder_within",
     kDevicePack,
     {{"device_pack/lib", "", '2', kOutside}},
     {kConf, {"device_pack/lib/secret", "x"}},
     true},
    {"link_for_info", kDevicePack, {{"INFO", "", '2', kOutside + "/INFO"}}, {}, false},
    {"link_for_conf_of_the_display", kLocalDisplay, {}, {{"conf", "", '2', kOutside + "/conf"}}, false},
    {"link_for_package_tgz", kDevicePack, {{"package.tgz", "", '2', kOutside + "/package.tgz"}}, {}, false},
    {"folder_for_package_tgz", kDevicePack, {{"package.tgz", "", '5'}}, {}, false},
    {"set_id_bits", kDevicePack, {{"x", "x", '0', "", 06755}}, {}, true},
    {"compressed_bomb", kDevicePack, {}, {kConf, {"device_pack/zeros", std::string(9 << 20, '\0')}}, false},
    {"control_characters", kDevicePack, {}, {kConf, {"device_pack/\r\x1b]0;x\a", "x"}}, true},
    {"control_characters_in_a_failure", kDevicePack, {{"../\n\x1b[2J\x7f", "x"}}, {}, false},
    {"link_that_nobody_follows", kDevicePack, {}, {kConf, {"device_pack/l", "", '2', kOutside}}, true},
};

Members GoodTree(const AddOn& addOn) {
    return {{addOn.service == kDevicePack.service ? "device_pack/conf" : "conf", kGoodConf}};
}

std::string Pack(const AddOn& addOn, Members package, const Members& tree) {
    for (const TarMember& good : {TarMember{"INFO", addOn.info},
                                  {"package.tgz", Gzip(TarOf(tree.empty() ? GoodTree(addOn) : tree))}}) {
        if (std::none_of(package.begin(), package.end(),
                         [&good](const TarMember& member) { return member.name == good.name; })) {
            package.push_back(good);
        }
    }
    return TarOf(package);
}

class HostilePackage : public ApplianceTest, public testing::WithParamInterface<HostileCase> {
protected:
    static void SetUpTestSuite() {
        Start();
        Put("etc/programs.conf", kLimits);
        fs::create_directory(appliance_->PackagePath("target/outside"));
        Put("outside/INFO", kDevicePack.info);
        Put("outside/conf", kGoodConf);
        Put("outside/package.tgz", Gzip(TarOf(GoodTree(kDevicePack))));
        Put("outside/secret", "untouched");
    }

    static void Put(const std::string& name, const std::string& content) {
        std::ofstream(appliance_->PackagePath("target/" + name), std::ios::binary) << content;
    }

    void ExpectVerdict(bool isTaken, const AddOn& addOn, const std::string& package) {
        const Answer answer = Inspect(*appliance_, owner_, addOn, package);
        EXPECT_EQ(isTaken, answer.Succeeded()) << answer.body.toStyledString();
        EXPECT_EQ("", FaultOf(*appliance_, answer, addOn, package));
    }
};

bool IsPrintable(const std::string& text) {
    return std::none_of(text.begin(), text.end(),
                        [](unsigned char c) { return (c < ' ' && c != '\n') || c == 0x7f; });
}

// The next package is inspected as if nothing had been.
TEST_P(HostilePackage, ChangesNothingOutside) {
    const auto& [name, addOn, package, tree, isTaken] = GetParam();
    const Listing before = ListingOutside(*appliance_);
    ExpectVerdict(isTaken, addOn, Pack(addOn, package, tree));
    ExpectVerdict(true, addOn, Pack(addOn, {}, {}));
    EXPECT_EQ(std::vector<std::string>(), ChangedPaths(before, ListingOutside(*appliance_)));
    EXPECT_TRUE(IsPrintable(appliance_->Log()));
    EXPECT_TRUE(IsPrintable(ReadFile(appliance_->PackagePath("target/@CVData/log/programs.log"))));
}

INSTANTIATE_TEST_SUITE_P(All, HostilePackage, testing::ValuesIn(kHostileCases),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace e2e
