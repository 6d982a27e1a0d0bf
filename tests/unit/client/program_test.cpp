// The whole program when all goes well: what it asks the host, and what it writes where.
#include "fakeappliance.h"

#include <gtest/gtest.h>

namespace {

const std::string kDevicePack =
    R"({"service":1,"name":"Device Pack","shortName":"device_pack","status":1,"statusName":"started","blRunning":true,)"
    R"("version":"3.2-12","blHasPackages":true,"blFactoryCopy":false,"blAutoUpdate":true,"new":{}})";

const std::string kListData =
    R"({"list":[{"service":1,"info":)" + kDevicePack + R"(},{"service":2,"info":)" +
    R"({"service":2,"name":"C\u001b[2JMS","shortName":"cms","status":7,"statusName":"7","blRunning":"?","version":""}}]})";

const std::string kAppsData =
    R"({"appsStatus":{"live":{"title":"Live\nBild","path":"live/","blEnabled":true},"odd":[1],)"
    R"("poor":{"blEnabled":0}}})";

struct ProgramCase {
    const char* name;
    const char* line;
    std::map<std::string, FakeReply> replies;
    std::string out;
    std::string err;
};

const std::vector<ProgramCase> kProgramCases = {
    {"list",
     "list",
     {{kList, Success(kListData)}},
     "Name         Short name   Number  Running  Status   Version  Packages  Factory copy  Automatic update\n"
     "Device Pack  device_pack  1       yes      started  3.2-12   yes       no            on\n"
     "C\\x1B[2JMS   cms          2       ?        7        -        -         -             -\n",
     ""},
    {"list_for_programs", "--json list", {{kList, Success(R"({"list":[]})")}}, "{\"list\":[]}\n", ""},
    {"status_by_number",
     "status 1",
     {{kGetInfo, Success(kDevicePack)}},
     "Name              Device Pack\n"
     "Short name        device_pack\n"
     "Number            1\n"
     "Running           yes\n"
     "Status            started\n"
     "Version           3.2-12\n"
     "Packages          yes\n"
     "Factory copy      no\n"
     "Automatic update  on\n",
     ""},
    {"status_by_name",
     "status cms --json",
     {{kList, Success(kListData)}, {kGetInfo, Success(R"({"status":4})")}},
     "{\"status\":4}\n",
     ""},
    {"status_with_what_only_some_have",
     "status 1",
     {{kGetInfo,
       Success(R"({"name":"x","pid":812,"since":"2026-03-01T12:03:07.000Z","options":{"0":"yes"}})")}},
     "Name              x\n"
     "Short name        -\n"
     "Number            -\n"
     "Running           -\n"
     "Status            -\n"
     "Version           -\n"
     "Packages          -\n"
     "Factory copy      -\n"
     "Automatic update  -\n"
     "Process           812\n"
     "Running since     2026-03-01T12:03:07.000Z\n"
     "Options           {\"0\":\"yes\"}\n",
     ""},
    {"status_of_a_number_below_zero",
     "status -1 --json",
     {{kGetInfo, Success(R"({"status":0})")}},
     "{\"status\":0}\n",
     ""},
    {"apps",
     "apps --lang de",
     {{kGetApps, Success(kAppsData)}},
     "Application  Title       Path   Enabled\n"
     "live         Live\\nBild  live/  yes\n"
     "odd          -           -      -\n"
     "poor         -           -      0\n",
     ""},
    {"methods",
     "methods",
     {{kMethods,
       Success(R"({"apis":[{"api":"A.B","version":1,"methods":["List","Stop"]},{"methods":"x"},2]})")}},
     "API  Version  Method\n"
     "A.B  1        List\n"
     "A.B  1        Stop\n",
     ""},
    {"call_shows_every_value",
     "call List",
     {{kList, Success(R"({"a":[{"b":"x"},2],"c":{},"d":true})")}},
     "a[0].b  x\n"
     "a[1]    2\n"
     "c       {}\n"
     "d       true\n",
     ""},
    {"log",
     "log r1",
     {{kLog,
       Success(R"({"lines":[{"time":"T","source":"addons","line":9,"function":"F","text":"a\u001b"},3]})")}},
     "Time  Source    Function  Text\n"
     "T     addons:9  F         a\\x1B\n"
     "-     -         -         -\n",
     ""},
    {"log_for_programs",
     "log r1 --json",
     {{kLog, Success(R"({"lines":[{"text":"a"}]})")}},
     "[{\"text\":\"a\"}]\n",
     ""},
    {"call_with_nothing_to_report",
     "call Restart service=1",
     {{kRestart, Success("null")}},
     "",
     "Done. The appliance had nothing to report.\n"},
    {"call_with_nothing_to_report_to_programs",
     "call Restart --json",
     {{kRestart, Success("null")}},
     "null\n",
     ""},
};

class ProgramTest : public testing::TestWithParam<ProgramCase> {};

TEST_P(ProgramTest, WritesTheOutcome) {
    const FakeAppliance appliance(GetParam().replies);
    const Outcome outcome = appliance.Run(GetParam().line);
    EXPECT_EQ(0, outcome.status);
    EXPECT_EQ(GetParam().out, outcome.out);
    EXPECT_EQ(GetParam().err, outcome.err);
}

INSTANTIATE_TEST_SUITE_P(All, ProgramTest, testing::ValuesIn(kProgramCases),
                         [](const auto& c) { return std::string(c.param.name); });

TEST(ProgramRequestTest, CarriesTokenAndParameters) {
    FakeAppliance appliance({{kRestart, Error(200, R"({"code":400,"data":null})")}});
    appliance.Run("call Restart a=1 b=x=y c=\u00e4\" d=[true]");
    const std::vector<std::string> expected = {
        kRestart + std::string(R"( Bearer secret {"a":1,"b":"x=y","c":"\u00e4\"","d":[true]})"),
        kLog + std::string(" Bearer secret ")};
    EXPECT_EQ(expected, appliance.Host().Requests());
}

TEST(ProgramRequestTest, AsksForTheServiceThatWasNamed) {
    FakeAppliance appliance({{kList, Success(kListData)}, {kGetInfo, Success("{}")}});
    appliance.Run("status cms");
    ASSERT_EQ(2U, appliance.Host().Requests().size());
    EXPECT_EQ(kGetInfo + std::string(R"( Bearer secret {"service":2})"), appliance.Host().Requests()[1]);
}

TEST(ProgramHelpTest, ListsCommandsAndExitStatuses) {
    const Outcome outcome = ProgramRun({"--help"}).Wait();
    EXPECT_EQ(0, outcome.status);
    EXPECT_EQ("", outcome.err);
    for (const char* line : {"\n  status ", "\n    9  finished, but the outcome", "\n  130  interrupted\n"}) {
        EXPECT_NE(std::string::npos, outcome.out.find(line)) << line;
    }
}

}  // namespace
