// Each rule with a package that breaks it, and what is not to be taken for a fault.
#include "client/packagerules.h"

#include "client/plainfile.h"
#include "support/packages.h"
#include "support/temporaryfolder.h"

#include <gtest/gtest.h>

#include <map>

namespace client {
namespace {

constexpr ScanLimits kLimits{1 << 20, 8};

// Of an appliance that takes the package of packages.h.
ApplianceFacts Facts() {
    ApplianceFacts facts;
    facts.arch = "plat0";
    facts.version = "3.2";
    facts.devicePackMinVersion = "2.0";
    facts.localDisplayMinVersion = "1.0";
    facts.platform = "plat1";
    facts.freeBytes = 1 << 20;
    return facts;
}

std::string Broken(const std::string& package, const std::string& fileName = "x.spk",
                   const std::optional<ApplianceFacts>& facts = Facts()) {
    const TemporaryFolder folder;
    folder.Write("package", package);
    const PlainFile file(folder.PathOf("package"));
    return BrokenRules(JudgePackage(fileName, file.SizeBytes(), ScanPackage(file, kLimits), facts));
}

const std::string kPlainTree = TarOf({{"device_pack/conf", kGoodConf}});
const std::string kTree = Gzip(kPlainTree);
const TarMember kInfoEntry{"INFO", kDevicePackInfo};
const TarMember kTreeEntry{"package.tgz", kTree};

std::string WithTree(const std::string& archive) {
    return TarOf({kInfoEntry, {"package.tgz", archive}});
}

std::string Display(const std::string& conf) {
    return MakePackage(kLocalDisplayInfo, {{"conf", conf}});
}

constexpr char kLinks[] = "links and special files";

struct PackageCase {
    const char* name;
    std::string package;
    std::string broken;
};

const PackageCase kPackageCases[] = {
    {"whole", MakeDevicePack(), ""},
    {"local_display", Display(kGoodConf), ""},
    {"dots_in_front",
     TarOf({{"./", "", '5'},
            {"./INFO", kDevicePackInfo},
            {"./package.tgz", Gzip(TarOf({{"./device_pack/conf", kGoodConf}}))}}),
     ""},
    {"tree_not_compressed", WithTree(kPlainTree), ""},
    {"more_members", TarOf({kTreeEntry, {"LICENSE", "x"}, kInfoEntry}), ""},
    {"links_within_the_tree",
     MakeDevicePack(
         {{"device_pack/a", "", '2', "script/../b"}, {"device_pack/c", "", '1', "device_pack/conf"}}),
     ""},
    {"other_character_set",
     MakeDevicePack({{"next", "23 path=device_pack/\u00e4\n", 'x'}, {"device_pack/a", "x"}}), ""},

    {"no_archive", std::string(2000, 'x'), "archive, members, INFO"},
    {"tree_no_archive", WithTree("x"), "archive, tree"},
    {"tree_cut", WithTree(kTree.substr(0, kTree.size() - 9)), "archive, tree"},
    {"tree_not_compressed_and_cut", WithTree(kPlainTree.substr(0, 1024)), "archive"},
    {"no_end", TarOf({kInfoEntry, kTreeEntry}).substr(0, 2048), "archive"},

    {"info_missing", TarOf({kTreeEntry}), "members, INFO"},
    {"info_twice", TarOf({kInfoEntry, kInfoEntry, kTreeEntry}), "members"},
    {"info_behind_an_end", TarOf({kInfoEntry, kTreeEntry}) + TarOf({kInfoEntry}), ""},
    {"tree_twice", TarOf({kInfoEntry, kTreeEntry, {"package.tgz", "x"}}), "members"},
    {"tree_missing", TarOf({kInfoEntry}), "members, tree"},
    {"info_in_a_folder", TarOf({{"a/INFO", kDevicePackInfo}, kTreeEntry}), "members, INFO"},

    {"outer_name_leads_out", TarOf({kInfoEntry, kTreeEntry, {"../x", ""}}), "names"},
    {"outer_name_absolute", TarOf({kInfoEntry, kTreeEntry, {"/x", ""}}), "names"},
    {"tree_name_leads_out", MakeDevicePack({{"device_pack/../../x", ""}}), "names, tree"},

    {"info_is_a_link", TarOf({{"INFO", "", '2', "/etc/passwd"}, kTreeEntry}),
     "members, links and special files, INFO"},
    {"tree_is_a_pipe", TarOf({kInfoEntry, {"package.tgz", "", '6'}}),
     "members, links and special files, tree"},
    {"outer_hard_link", TarOf({kInfoEntry, {"x", "", '1', "INFO"}, kTreeEntry}), kLinks},
    {"link_leads_out", MakeDevicePack({{"device_pack/a/b", "", '2', "../../../x"}}), kLinks},
    {"link_to_beside_the_tree", MakeDevicePack({{"device_pack/a", "", '2', "../INFO"}}), kLinks},
    {"hard_link_leads_out", MakeDevicePack({{"device_pack/a", "", '1', "../../etc/passwd"}}), kLinks},
    {"pipe", MakeDevicePack({{"device_pack/a", "", '6'}}), kLinks},
    {"conf_is_a_link", MakeDevicePack({{"device_pack/conf", "", '2', "a"}}), kLinks},
    {"top_is_a_link", MakeDevicePack({{"device_pack", "", '2', "device_pack/a"}}), kLinks},
    {"scripts_are_a_link", MakeDevicePack({{"device_pack/script", "", '2', "a"}}), kLinks},
    {"script_is_a_link", MakeDevicePack({{"device_pack/script/preinst", "", '2', "postinst"}}), kLinks},
    {"script_is_a_folder", MakeDevicePack({{"device_pack/script/postupgrade/", "", '5'}}), kLinks},
    {"local_display_conf_is_a_link",
     MakePackage(kLocalDisplayInfo, {{"a", kGoodConf}, {"conf", "", '2', "a"}}),
     "links and special files, tree"},

    {"info_of_another", MakePackage("package=\"device_pack\"\narch=\"plat1\"", {{"conf", kGoodConf}}),
     "INFO"},
    {"info_without_arch", MakePackage("package=\"CamvoraLocalDisplay\"", {{"conf", kGoodConf}}), "INFO"},
    {"tree_of_the_other", MakePackage(kDevicePackInfo, {{"conf", kGoodConf}}), "tree"},
    {"tree_besides_device_pack", MakeDevicePack({{"INFO", kLocalDisplayInfo}}), "tree"},
    {"conf_without_maintainer", Display("version=\"2.2\"\ncv_min_ver=\"3.0\"\n"), "conf"},
    {"conf_without_version", Display("maintainer=a\ncv_min_ver=3.0"), "conf"},
    {"needs_newer_camvora", Display("version=2\nmaintainer=a\ncv_min_ver=3.2-1"), "version of Camvora"},
    {"too_old", Display("version=0.9\nmaintainer=a\ncv_min_ver=3"), "version of the add-on"},

    {"too_many_entries",
     MakeDevicePack(std::vector<TarMember>(kLimits.entries - 1, TarMember{"device_pack/a", ""})), "sizes"},
    {"tree_too_large", MakeDevicePack({{"device_pack/a", std::string(kLimits.sizeBytes, 'x')}}), "sizes"},
    {"tree_of_zeros_without_end", WithTree(Gzip(kPlainTree + std::string(4 * kLimits.sizeBytes, '\0'))),
     "archive"},
    {"tree_compressed_twice", WithTree(Gzip(kTree)), "archive, tree"},
    {"outer_too_large", TarOf({kInfoEntry, kTreeEntry, {"x", std::string(kLimits.sizeBytes, 'x')}}),
     "sizes, free space"},
};

TEST(PackageRulesTest, FindsWhatIsBroken) {
    for (const PackageCase& row : kPackageCases) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(row.broken, Broken(row.package));
    }
}

TEST(PackageExtensionTest, IsWhatFollowsTheLastDot) {
    for (const char* taken : {"x.tar.spk", "spk"}) {
        EXPECT_EQ("", Broken(MakeDevicePack(), taken));
    }
    for (const char* refused : {"x.SPK", "x.spk.gz", "xspk"}) {
        EXPECT_EQ("extension", Broken(MakeDevicePack(), refused));
    }
}

struct FactsCase {
    const char* name;
    void (*change)(ApplianceFacts& facts);
    const char* broken;
};

const FactsCase kFactsCases[] = {
    {"platform_of_the_whole_text", [](ApplianceFacts& f) { f.arch = "plat1  plat2", f.platform = ""; }, ""},
    {"platform_is_no_whole_element", [](ApplianceFacts& f) { f.platform = "plat"; }, "platform"},
    {"platform_unknown", [](ApplianceFacts& f) { f.platform = ""; }, "platform"},
    {"arch_unknown", [](ApplianceFacts& f) { f.arch.reset(); }, "platform"},
    {"version_unknown", [](ApplianceFacts& f) { f.version.reset(); }, "version of Camvora"},
    {"version_reached_exactly", [](ApplianceFacts& f) { f.devicePackMinVersion = "2.2-1"; }, ""},
    {"minimum_of_the_other_add_on", [](ApplianceFacts& f) { f.localDisplayMinVersion = "9"; }, ""},
    {"minimum_not_reached", [](ApplianceFacts& f) { f.devicePackMinVersion = "2.2-2"; },
     "version of the add-on"},
    {"minimum_unknown", [](ApplianceFacts& f) { f.devicePackMinVersion.reset(); }, "version of the add-on"},
    {"no_room", [](ApplianceFacts& f) { f.freeBytes = 1024; }, "free space"},
};

TEST(ApplianceRulesTest, CompareWithTheAppliance) {
    for (const FactsCase& row : kFactsCases) {
        SCOPED_TRACE(row.name);
        ApplianceFacts facts = Facts();
        row.change(facts);
        EXPECT_EQ(row.broken, Broken(MakeDevicePack(), "x.spk", facts));
    }
}

TEST(PackageDamageTest, IsFoundWhereverThePackageIsCut) {
    const std::string package = MakeDevicePack();
    for (std::size_t length = 0; length < package.size() - 1024; length += 7) {
        EXPECT_NE("", Broken(package.substr(0, length))) << length;
    }
}

TEST(PackageDamageTest, NeitherCrashesNorHangs) {
    const std::string package = MakeDevicePack({{"device_pack/a", "", '2', "script"}});
    for (std::size_t at = 0; at < package.size(); at += 5) {
        std::string damaged = package;
        damaged[at] = static_cast<char>(damaged[at] ^ static_cast<char>(1U << at % 8));
        (void)Broken(damaged);
    }
}

TEST(ApplianceFactsTest, AreReadFromItsFolder) {
    const TemporaryFolder folder;
    EXPECT_FALSE(ReadApplianceFacts(folder.Path()));
    folder.Write("var/packages/Camvora/INFO",
                 " arch = \"a b\" \r\n# version=\"0\"\nversion=1.2 \r\nversion=3\n");
    folder.Write("var/packages/Camvora/target/etc/cv.conf", "dp_min_ver=\"2\"\n");
    folder.Write("var/packages/Camvora/target/etc/programs.conf", "unpack_entries_limit=\"7\"\n");
    const ApplianceFacts facts = ReadApplianceFacts(folder.Path()).value_or(ApplianceFacts());
    EXPECT_EQ("a b", facts.arch);
    EXPECT_EQ("1.2", facts.version);
    EXPECT_EQ("2", facts.devicePackMinVersion);
    EXPECT_FALSE(facts.localDisplayMinVersion);
    EXPECT_GT(facts.freeBytes.value_or(0), 0U);
    EXPECT_EQ(7U, ReadScanLimits(folder.Path()).entries);
    EXPECT_EQ(2048U << 20U, ReadScanLimits(folder.Path()).sizeBytes);
    const std::map<std::string, std::string> platforms = {
        {"aaa_bbb_ccc", "bbb"}, {"a_b_c_d", "b_c"}, {"a_b", ""}, {"ab", ""}, {"a__b", ""}};
    for (const auto& [unique, platform] : platforms) {
        folder.Write("etc.defaults/orvainfo.conf", "unique=\"" + unique + "\"\n");
        EXPECT_EQ(platform, ReadApplianceFacts(folder.Path())->platform) << unique;
    }
}

}  // namespace
}  // namespace client
