// What shells are offered, and the scripts that ask for it.
#include "fakeappliance.h"

#include <gtest/gtest.h>

namespace {

using Offers = std::vector<std::string>;

const FakeReply kServicesByState = Success(
    R"({"list":[{"service":1,"info":{"shortName":"device_pack","blRunning":true,"blHasPackages":true}},)"
    R"({"service":2,"info":{"shortName":"cms","blRunning":false}},)"
    R"({"service":6,"info":{"shortName":"local_display","blRunning":false,"blHasPackages":true,)"
    R"("blFactoryCopy":true}}]})");

struct WordCase {
    const char* name;
    std::string line;
    std::string last;
    Offers words;
};

const WordCase kWordCases[] = {
    {"commands", "", "st", {"status", "start", "stop"}},
    {"commands_below", "pair", "", {"code", "join", "list", "remove"}},
    {"stopped_ones_to_start", "start", "", {"cms", "local_display"}},
    {"running_ones_to_stop", "stop", "", {"device_pack"}},
    {"running_ones_by_the_other_name", "disable", "", {"device_pack"}},
    {"add_ons", "download", "", {"device_pack", "local_display"}},
    {"add_ons_with_a_copy", "restore --yes", "", {"local_display"}},
    {"nothing_behind_the_last", "start cms", "", {}},
    {"on_or_off", "auto-update device_pack", "", {"on", "off"}},
    {"methods", "call", "Get", {"GetInfo", "GetAppsStatus", "GetPkgInfo", "GetUpdateInfo"}},
    {"parameters", "call SetAutoUpdate service=1", "", {"blEnable="}},
    {"value_of_a_truth", "call SetAutoUpdate", "blEnable=", {"blEnable=true", "blEnable=false"}},
    {"number_of_a_service", "call GetInfo", "service=", {"service=1", "service=2", "service=6"}},
    {"options", "start cms", "--no", {"--no-wait"}},
    {"options_of_all", "list", "--js", {"--json"}},
    {"value_of_an_option", "apps --lang", "", {"en", "de"}},
    {"files", "check", "", {":files"}},
    {"file_of_an_option", "--token-file", "x", {":files"}},
    {"running_operations", "wait", "", {"13"}},
    {"names_of_servers", "list --server", "", {"r"}},
    {"folder_that_was_typed", "--dir /no/such start", "", {}},
};

TEST(CompletionTest, OffersWhatFits) {
    const FakeAppliance appliance(
        {{"List", kServicesByState},
         {"GET /operations",
          Success(R"({"operations":[{"id":12,"outcome":"done"},{"id":13,"outcome":"running"}]})")},
         {"GET /pairs", Success(R"({"pairs":[{"name":"r","role":"server"}]})")}});
    for (const WordCase& row : kWordCases) {
        EXPECT_EQ(row.words, Offered(row.line, row.last, {"CAMVORA_DIR=" + appliance.Dir()})) << row.name;
    }
}

TEST(CompletionTest, IsTheSameForWhoWantsJson) {
    EXPECT_EQ(Offers({"list", "log"}), Offered("", "l", {"CAMVORA_JSON=yes"}));
}

TEST(CompletionTest, IsSilentWithoutAnAppliance) {
    const Outcome outcome = StartClient("complete-words -- start x", {"CAMVORA_DIR=/no/such"}).Wait();
    EXPECT_EQ(0, outcome.status);
    EXPECT_EQ("", outcome.out + outcome.err);
}

// What bash makes of the line, whose words it has split as it does.
std::string CompletedByBash(const FakeAppliance& appliance, const std::string& words) {
    const std::string script =
        "eval \"$(\"$1\" completion bash)\"; compopt() { echo \"option $*\"; }; COMP_WORDS=(" + words +
        "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _camvoractl \"$1\"; "
        "printf '%s\\n' \"${COMPREPLY[@]}\"";
    return Program({"/bin/bash", "-c", script, "bash", CAMVORACTL}, {"CAMVORA_DIR=" + appliance.Dir()})
        .Wait()
        .out;
}

TEST(CompletionScriptTest, WorksInBash) {
    const FakeAppliance appliance({{"List", kServicesByState}});
    EXPECT_EQ("cms\nlocal_display\n", CompletedByBash(appliance, "camvoractl start ''"));
    EXPECT_EQ("1\n2\n6\n", CompletedByBash(appliance, "camvoractl call GetInfo service ="));
    EXPECT_EQ("option -o nospace\nlang=\n", CompletedByBash(appliance, "camvoractl call GetAppsStatus l"));
    EXPECT_EQ("option -o default\n\n", CompletedByBash(appliance, "camvoractl check ''"));
}

TEST(ManualPageTest, NamesAllCommandsAndNothingActsOnRoff) {
    const Outcome page =
        Program({"/bin/sh", "-c", "\"$1\" man | groff -man -Tascii -ww -P-cbou", "sh", CAMVORACTL},
                {"PATH=/usr/bin:/bin"})
            .Wait();
    EXPECT_EQ("", page.err);
    for (const std::string& command : AllCommands()) {
        EXPECT_NE(std::string::npos, page.out.find("\n       " + command)) << command;
    }
}

}  // namespace
