// The whole program: what it asks the host, what it writes where, and its exit status.
#include "fakeappliance.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

namespace {

struct ProgramCase {
    const char* name;
    const char* line;
    const char* request;
    FakeReply reply;
    int status;
    const char* out;
    const char* err;
};

const FakeReply kHtml{200, "<html>"};

const ProgramCase kProgramCases[] = {
    {"list", "list", "List",
     Success(
         R"({"list":[{"service":2,"info":{"service":2,"name":"C\u001b[2JMS","status":7,"blRunning":"?"}}]})"),
     0,
     "Name        Short name  Number  Running  Status  Version  Packages  Factory copy  Automatic update\n"
     "C\\x1B[2JMS  -           2       ?        -       -        -         -             -\n",
     ""},
    {"status_of_a_number_below_zero", "status -1 --json", "GetInfo", Success(R"({"status":0})"), 0,
     "{\"status\":0}\n", ""},
    {"apps", "apps --lang de", "GetAppsStatus",
     Success(R"({"appsStatus":{"live":{"title":"Live\nBild","blEnabled":true},"odd":[1]}})"), 0,
     "Application  Title       Path  Enabled\n"
     "live         Live\\nBild  -     yes\n"
     "odd          -           -     -\n",
     ""},
    {"methods", "methods", "GET /api",
     Success(
         R"({"apis":[{"api":"ORVA.Camvora.AddOns","version":1,"methods":["Update","\u001b"]},{"methods":"x"},2]})"),
     0,
     "Method  What it does                                                Parameters\n"
     "Update  Install the add-on that was unpacked, or the last download  [service=] [filePath=]\n"
     "\\x1B    -                                                           -\n",
     ""},
    {"method_of_a_later_appliance", "methods New", "GET /api",
     Success(R"({"apis":[{"api":"A.B","version":1,"methods":["New"]}]})"), 0,
     "Method       New\nAPI          A.B, version 1\nDescription  this program knows none\n", ""},
    {"call_shows_every_value", "call List", "List", Success(R"({"a":[{"b":"x"},2],"c":{},"d":true})"), 0,
     "a[0].b  x\na[1]    2\nc       {}\nd       true\n", ""},
    {"call_with_nothing_to_report", "call Restart service=1", "Restart", Success("null"), 0, "",
     "Done. The appliance had nothing to report.\n"},
    {"call_on_a_paired_server", "call X --server r-1 --json",
     "POST /servers/r-1/api/ORVA.Camvora.AddOns/v1/X", Success(R"({"a":1})"), 0, "{\"a\":1}\n", ""},
    {"log", "log r1", kLog,
     Success(R"({"lines":[{"time":"T","source":"addons","line":9,"function":"F","text":"a\u001b"},3]})"), 0,
     "Time  Source    Function  Text\n"
     "T     addons:9  F         a\\x1B\n"
     "-     -         -         -\n",
     ""},
    {"pairs", "pair list", "GET /pairs", Success(R"({"pairs":[{"name":"a\u001b","role":"server"},2]})"), 0,
     "Name   Role    Address\na\\x1B  server  -\n-      -       -\n", ""},

    {"stream_refused", "events", "GET /events", Error(401, R"({"code":1005,"data":{"text":"No token."}})"), 7,
     "", "camvoractl: The stream of events failed (error 1005): No token.\nThe request was r1\n"},
    {"stream_that_is_none", "events", "GET /events", kHtml, 1, "",
     "camvoractl: The stream of events failed: the reply is not an appliance's\n"},
    {"no_list", "list", "List", Success(R"({"list":{"a":1}})"), 1, "",
     "camvoractl: List failed: the answer holds no list\n"},
    {"no_description", "status 1", "GetInfo", Success("[]"), 1, "",
     "camvoractl: GetInfo failed: the answer describes no service\n"},
    {"no_applications", "apps", "GetAppsStatus", Success(R"({"appsStatus":"none"})"), 1, "",
     "camvoractl: GetAppsStatus failed: the answer describes no applications\n"},
    {"no_methods", "methods", "GET /api", Success("null"), 1, "",
     "camvoractl: The list of methods failed: the answer holds no APIs\n"},
    {"no_log_lines", "log r1", kLog, Success("1"), 1, "",
     "camvoractl: The log failed: the answer holds no lines\n"},
    {"nothing_logged", "log r1", kLog, Success(R"({"lines":[]})"), 3, "",
     "camvoractl: The appliance has logged nothing for request r1\n"},
    {"failed_with_details", "call Restart", "Restart",
     Error(200, R"({"code":400,"data":{"errinfo":{"key":"bad\u0007"}}})"), 1, "",
     "camvoractl: Restart failed (error 400): the appliance could not do it\n"
     "errinfo.key  bad\\x07\n"
     "The request was r1\n"},
    {"unknown_number", "start 7", "List", Success(R"({"list":[]})"), 3, "",
     "camvoractl: There is no service 7. \"camvoractl list\" shows all\n"},
    {"unreachable",
     "list --host http://127.0.0.1:1",
     "",
     {},
     6,
     "",
     "camvoractl: No appliance answers at http://127.0.0.1:1\n"},
    {"huge_service",
     "status 99999999999",
     "",
     {},
     2,
     "",
     "camvoractl: 99999999999 is beyond the numbers a service can have\n"},
    {"method_that_is_a_path",
     "call ../x",
     "",
     {},
     2,
     "",
     "camvoractl: \"../x\" cannot be the name of a method\n"},
    {"own_address_for_a_far_host",
     "pair join http://far:1 X --own-url http://127.0.0.1:2",
     "",
     {},
     2,
     "",
     "camvoractl: The host cannot reach http://127.0.0.1:2. Give --own-url http://HOST:PORT\n"},
    {"unknown_command",
     "lst",
     "",
     {},
     2,
     "",
     "camvoractl: There is no command \"lst\". See camvoractl --help\n"},
    {"unknown_option",
     "--foo lst",
     "",
     {},
     2,
     "",
     "camvoractl: There is no option \"--foo\". See camvoractl --help\n"},
};

class ProgramTest : public testing::TestWithParam<ProgramCase> {};

TEST_P(ProgramTest, WritesTheOutcomeOrSaysWhyThereIsNone) {
    const FakeAppliance appliance({{GetParam().request, GetParam().reply}});
    const Outcome outcome = appliance.Run(GetParam().line);
    EXPECT_EQ(GetParam().status, outcome.status);
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

TEST(ProgramReplyTest, HasALimitOfTime) {
    const FakeAppliance appliance({{"List", {200, "<p>", "", true}}});
    const Outcome outcome = appliance.Run("--timeout 1 list");
    EXPECT_EQ(8, outcome.status);
    EXPECT_NE(std::string::npos, outcome.err.find("within 1 s. The appliance may still be at work"));
}

TEST(ProgramReplyTest, HasALimitOfSize) {
    const FakeAppliance appliance({{"List", {200, std::string(9 << 20, 'x'), "", true}}});
    const Outcome outcome = appliance.Run("list");
    EXPECT_EQ(1, outcome.status);
    EXPECT_NE(std::string::npos, outcome.err.find(" is too large\n")) << outcome.err;
}

TEST(ProgramReplyTest, NamesTheFolderOfAnApplianceThatWasKilled) {
    const TemporaryFolder dir;
    dir.Write("token", "secret\n");
    dir.Write(kAddressFile, "http://127.0.0.1:1\n");
    const Outcome outcome = StartClient("list --dir " + dir.Path(), {"CAMVORA_DIR=/no/such"}).Wait();
    EXPECT_EQ(6, outcome.status);
    EXPECT_EQ(
        "camvoractl: No appliance answers at http://127.0.0.1:1; start it with " + dir.Path() + "/launch\n",
        outcome.err);
}

}  // namespace
