// The whole program when all goes well: what it asks the host, and what it writes where.
#include "fakeappliance.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

namespace {

const std::string kDevicePack =
    R"({"service":1,"name":"Device Pack","shortName":"device_pack","status":1,"statusName":"started",)"
    R"("blRunning":true,"version":"3.2-12","blHasPackages":true,"blFactoryCopy":false,"blAutoUpdate":true,)"
    R"("pid":812,"since":"2026-03-01T12:03:07.000Z","options":{"0":"yes"}})";

const std::string kServices =
    R"({"list":[{"service":1,"info":)" + kDevicePack + R"(},{"service":2,"info":)" +
    R"({"service":2,"name":"C\u001b[2JMS","shortName":"cms","status":7,"statusName":"7","blRunning":"?"}}]})";

struct ProgramCase {
    const char* name;
    const char* line;
    const char* request;
    std::string data;
    const char* out;
    const char* err = "";
};

const ProgramCase kProgramCases[] = {
    {"list", "list", "List", kServices,
     "Name         Short name   Number  Running  Status   Version  Packages  Factory copy  Automatic update\n"
     "Device Pack  device_pack  1       yes      started  3.2-12   yes       no            on\n"
     "C\\x1B[2JMS   cms          2       ?        7        -        -         -             -\n"},
    {"status", "status 1", "GetInfo", kDevicePack,
     "Name              Device Pack\n"
     "Short name        device_pack\n"
     "Number            1\n"
     "Running           yes\n"
     "Status            started\n"
     "Version           3.2-12\n"
     "Packages          yes\n"
     "Factory copy      no\n"
     "Automatic update  on\n"
     "Process           812\n"
     "Running since     2026-03-01T12:03:07.000Z\n"
     "Options           {\"0\":\"yes\"}\n"},
    {"status_of_a_number_below_zero", "status -1 --json", "GetInfo", R"({"status":0})", "{\"status\":0}\n"},
    {"apps", "apps --lang de", "GetAppsStatus",
     R"({"appsStatus":{"live":{"title":"Live\nBild","path":"live/","blEnabled":true},"odd":[1]}})",
     "Application  Title       Path   Enabled\n"
     "live         Live\\nBild  live/  yes\n"
     "odd          -           -      -\n"},
    {"methods", "methods", "GET /api",
     R"({"apis":[{"api":"ORVA.Camvora.AddOns","version":1,"methods":["Update","\u001b"]},{"methods":"x"},2]})",
     "Method  What it does                                                Parameters\n"
     "Update  Install the add-on that was unpacked, or the last download  [service=] [filePath=]\n"
     "\\x1B    -                                                           -\n"},
    {"method", "methods SetAutoUpdate", "GET /api",
     R"({"apis":[{"api":"ORVA.Camvora.AddOns","version":1,"methods":["SetAutoUpdate"]}]})",
     "Method             SetAutoUpdate\n"
     "API                ORVA.Camvora.AddOns, version 1\n"
     "What it does       Switch the automatic update of an add-on\n"
     "Changes something  yes\n"
     "Parameter          service, integer: Number of the add-on, 1 or 6. Default: 0\n"
     "Parameter          blEnable, boolean: Whether it is to be on\n"
     "Answers            Nothing\n"},
    {"method_of_a_later_appliance", "methods New", "GET /api",
     R"({"apis":[{"api":"A.B","version":1,"methods":["New"]}]})",
     "Method       New\n"
     "API          A.B, version 1\n"
     "Description  this program knows none\n"},
    {"call_shows_every_value", "call List", "List", R"({"a":[{"b":"x"},2],"c":{},"d":true})",
     "a[0].b  x\n"
     "a[1]    2\n"
     "c       {}\n"
     "d       true\n"},
    {"call_with_nothing_to_report", "call Restart service=1", "Restart", "null", "",
     "Done. The appliance had nothing to report.\n"},
    {"log", "log r1", kLog,
     R"({"lines":[{"time":"T","source":"addons","line":9,"function":"F","text":"a\u001b"},3]})",
     "Time  Source    Function  Text\n"
     "T     addons:9  F         a\\x1B\n"
     "-     -         -         -\n"},
    {"call_on_a_paired_server", "call X --server r-1 --json",
     "POST /servers/r-1/api/ORVA.Camvora.AddOns/v1/X", R"({"a":1})", "{\"a\":1}\n"},
    {"pairs", "pair list", "GET /pairs",
     R"({"pairs":[{"name":"a\u001b","role":"server","address":"http://r:1"},2]})",
     "Name   Role    Address\n"
     "a\\x1B  server  http://r:1\n"
     "-      -       -\n"},
    {"pairing_code", "pair code r --json", "POST /pairing/codes", R"({"code":"A-B","validS":600})",
     "{\"code\":\"A-B\",\"validS\":600}\n"},
    {"pair_removed", "pair remove r", "DELETE /pairs?name=r", "null", "",
     "r is no longer paired with this appliance. The other side still keeps the pair.\n"},
    {"log_for_programs", "log r1 --json", kLog, R"({"lines":[{"text":"a"}]})", "[{\"text\":\"a\"}]\n"},
};

class ProgramTest : public testing::TestWithParam<ProgramCase> {};

TEST_P(ProgramTest, WritesTheOutcome) {
    const FakeAppliance appliance({{GetParam().request, Success(GetParam().data)}});
    const Outcome outcome = appliance.Run(GetParam().line);
    EXPECT_EQ(0, outcome.status);
    EXPECT_EQ(GetParam().out, outcome.out);
    EXPECT_EQ(GetParam().err, outcome.err);
}

INSTANTIATE_TEST_SUITE_P(All, ProgramTest, testing::ValuesIn(kProgramCases),
                         [](const auto& c) { return std::string(c.param.name); });

TEST(ProgramRequestTest, CarriesTokenAndParameters) {
    FakeAppliance appliance({});
    appliance.Run("call Restart a=1 b=x=y c=\u00e4\" d=[true]");
    ASSERT_EQ(1U, appliance.Requests().size());
    EXPECT_EQ(R"(Restart Bearer secret {"a":1,"b":"x=y","c":"\u00e4\"","d":[true]})",
              appliance.Requests()[0]);
}

TEST(ProgramRequestTest, AsksForTheServiceThatWasNamed) {
    FakeAppliance appliance({{"List", Success(kServices)}, {"GetInfo", Success("{}")}});
    EXPECT_EQ("{}\n", appliance.Run("status cms --json").out);
    ASSERT_EQ(2U, appliance.Requests().size());
    EXPECT_EQ(R"(GetInfo Bearer secret {"service":2})", appliance.Requests()[1]);
}

// What stands in the help behind "camvoractl", without what other programs do with it.
std::vector<std::string> ExamplesIn(const std::string& help) {
    std::vector<std::string> examples;
    std::istringstream lines(help.substr(std::min(help.find("\nExamples:\n"), help.size())));
    for (std::string line; std::getline(lines, line);) {
        if (line.rfind("  camvoractl ", 0) == 0) {
            examples.push_back(line.substr(13, line.find_first_of("|>", 13) - 13));
        }
    }
    return examples;
}

// Nobody serves there: examples get as far as that, or to a file that is not there.
TEST(ProgramHelpTest, ShowsExamplesOfEachCommandThatAreUnderstood) {
    const TemporaryFolder folder;
    const std::string nobody = " --host http://127.0.0.1:1 --timeout 1 --dir " + folder.Path();
    for (const std::string& command : AllCommands()) {
        const auto examples = ExamplesIn(StartClient(command + " --help").Wait().out);
        EXPECT_FALSE(examples.empty()) << command;
        for (const std::string& example : examples) {
            EXPECT_EQ(0U, (example + " ").rfind(command + " ", 0)) << example;
            if (command.rfind("feed ", 0) != 0) {  // as that would make files
                const Outcome outcome = StartClient(example + nobody).Wait();
                EXPECT_EQ(std::string::npos, outcome.err.find("See camvoractl --help")) << outcome.err;
            }
        }
    }
}

TEST(ProgramHelpTest, ListsCommandsAndExitStatuses) {
    const Outcome outcome = StartClient("--help").Wait();
    EXPECT_EQ(0, outcome.status);
    for (const char* line : {"\n  status ", "\n    9  finished, but the outcome", "\n  130  interrupted\n"}) {
        EXPECT_NE(std::string::npos, outcome.out.find(line)) << line;
    }
}

}  // namespace
