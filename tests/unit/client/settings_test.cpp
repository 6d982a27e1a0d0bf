// The options for all commands: which of their sources counts, and what is said of a wrong one.
#include "fakeappliance.h"

#include <gtest/gtest.h>

namespace {

const std::string kSettingsFile = ".config/camvora/camvoractl.conf";

struct SettingCase {
    const char* name;
    std::string file;
    std::string environment;
    std::string line;
    int status;
    std::string shown;  // on one of the two outputs; "@" stands for the settings file
};

const SettingCase kSettingCases[] = {
    {"default", "", "", "settings", 0, "timeout     -      -\n"},
    {"file", "# mine\n\n timeout = \"30\" \n", "", "settings", 0, "timeout     30     @:3\n"},
    {"environment_before_the_file", "timeout=30\n", "CAMVORA_TIMEOUT=40", "settings", 0,
     "timeout     40     CAMVORA_TIMEOUT in the environment\n"},
    {"command_line_before_both", "timeout=30\n", "CAMVORA_TIMEOUT=40", "settings --timeout 50", 0,
     "timeout     50     the command line\n"},
    {"what_is_not_in_force_may_be_wrong", "timeout=x\n", "", "settings --timeout 50", 0, "timeout     50 "},
    {"flag_from_the_file", "json=yes\n", "", "settings", 0, R"({"file":")"},
    {"flag_switched_off_again", "json=yes\n", "", "settings --json=no", 0,
     "json        no     the command line\n"},
    {"errors_as_the_environment_wants_them", "", "CAMVORA_JSON=1", "lst", 2, R"({"error":{)"},
    {"empty_variable", "", "CAMVORA_TIMEOUT=", "settings", 0, "timeout     -      -\n"},

    {"unknown_key", "quiet=no\nhots=x\n", "", "settings", 2,
     "camvoractl: @:2: \"hots=x\" is no setting; those are host, dir, token-file, server, timeout, json, "
     "quiet\n"},
    {"no_key", "\x1b[31m\n", "", "settings", 2, "@:1: \"\\x1B[31m\" is no setting"},
    {"key_twice", "dir=a\ndir=b\n", "", "settings", 2, "@:2: \"dir\" stands there twice\n"},
    {"wrong_value", "timeout=0\n", "", "settings", 2,
     "camvoractl: @:1: \"0\" is no number of seconds from 1 to 86400\n"},
    {"wrong_address", "host=x\n", "", "list", 2,
     "@:1: \"x\" is not an address of the form http://HOST:PORT\n"},
    {"wrong_flag", "quiet=maybe\n", "", "list", 2, "@:1: \"maybe\" is neither \"yes\" nor \"no\"\n"},
    {"wrong_variable", "", "CAMVORA_SERVER=../x", "list", 2,
     "CAMVORA_SERVER in the environment: \"../x\" cannot be the name of a server\n"},
    {"help_in_spite_of_it", "timeout=0\n", "", "--help", 0, "Usage: camvoractl "},

    {"near_folder_hides_far_host", "host=http://127.0.0.1:1\ntoken-file=/no\n", "", "list --dir /no/such", 6,
     "There is no appliance in /no/such: it is not a folder\n"},
    {"near_host", "dir=/no/such\ntoken-file=/no/such\n", "", "list --host http://127.0.0.1:1", 7, "/no/such"},
};

class SettingsTest : public testing::TestWithParam<SettingCase> {};

TEST_P(SettingsTest, CountAsTheyRank) {
    const TemporaryFolder home;
    home.Write(kSettingsFile, GetParam().file);
    const Outcome outcome =
        StartClient(GetParam().line, {"HOME=" + home.Path(), GetParam().environment}).Wait();
    EXPECT_EQ(GetParam().status, outcome.status);
    std::string shown = GetParam().shown;
    if (const std::size_t place = shown.find('@'); place != std::string::npos) {
        shown.replace(place, 1, home.PathOf(kSettingsFile));
    }
    EXPECT_NE(std::string::npos, (outcome.out + outcome.err).find(shown)) << outcome.out << outcome.err;
}

INSTANTIATE_TEST_SUITE_P(All, SettingsTest, testing::ValuesIn(kSettingCases),
                         [](const auto& c) { return std::string(c.param.name); });

TEST(SettingsFileTest, LiesWhereTheEnvironmentSays) {
    const TemporaryFolder folder;
    folder.Write("camvora/camvoractl.conf", "server=r\n");
    EXPECT_NE(
        std::string::npos,
        StartClient("settings", {"XDG_CONFIG_HOME=" + folder.Path()}).Wait().out.find("server      r "));
}

}  // namespace
