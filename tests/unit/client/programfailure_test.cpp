// The whole program when something is wrong: nothing on standard output, words on standard error, and the
// exit status; with --json the error as a document on standard output.
#include "fakeappliance.h"

#include <gtest/gtest.h>

namespace {

FakeReply Garbage(const std::string& body, bool isEndless) {
    return {200, body, "", isEndless};
}

const std::string kLogData =
    R"({"lines":[{"time":"12:00:01","pid":7,"request":"r1","source":"addons","line":9,)"
    R"("function":"HandleRestart","text":"Failed [\u001b]"},{"text":"more"},5]})";

struct FailureCase {
    const char* name;
    const char* line;
    std::map<std::string, FakeReply> replies;  // without one: 404
    int status;
    const char* err;  // after "camvoractl: "
};

const std::vector<FailureCase> kFailureCases = {
    {"failed_with_details_and_log",
     "call Restart",
     {{kRestart, Error(200, R"({"code":400,"data":{"errinfo":{"key":"bad\u0007"}}})")},
      {kLog, Success(kLogData)}},
     1,
     "Restart failed (error 400): the appliance could not do it\n"
     "errinfo.key  bad\\x07\n"
     "The request was r1\n"
     "The appliance logged:\n"
     "12:00:01  addons:9  HandleRestart  Failed [\\x1B]\n"
     "-         -         -              more\n"
     "-         -         -              -\n"},
    {"not_admitted",
     "list",
     {{kList, Error(200, R"({"code":105,"data":null})")}},
     7,
     "List failed (error 105): the appliance does not accept the token, or there was none\n"
     "The request was r1\n"},
    {"busy",
     "list",
     {{kList, Error(503, R"({"code":1008,"data":{"text":"Too many requests."}})")}},
     5,
     "List failed (error 1008): Too many requests.\n"
     "The request was r1\n"},
    {"log_is_garbage",
     "list",
     {{kList, Error(500, R"({"code":1010,"data":{"text":"Crashed."}})")}, {kLog, Garbage("<html>", false)}},
     1,
     "List failed (error 1010): Crashed.\nThe request was r1\n"},
    {"unknown_method", "call list", {}, 3, "list failed (error 1003): no such method\n"},
    {"unknown_service",
     "status cns",
     {{kList, Success(R"({"list":[{"service":2,"info":{"shortName":"cms"}}]})")}},
     3,
     "There is no service \"cns\". Did you mean \"cms\"?\n"},
    {"nothing_logged",
     "log r1",
     {{kLog, Success(R"({"lines":[]})")}},
     3,
     "The appliance has logged nothing for request r1\n"},
    {"no_log_lines", "log r1", {{kLog, Success("1")}}, 1, "The log failed: the answer holds no lines\n"},
    {"stream_refused",
     "events",
     {{kEvents, Error(401, R"({"code":1005,"data":{"text":"No token."}})")}},
     7,
     "The stream of events failed (error 1005): No token.\nThe request was r1\n"},
    {"stream_that_is_none",
     "events",
     {{kEvents, Garbage("<html>", false)}},
     1,
     "The stream of events failed: the reply is not an appliance's\n"},
    {"no_list",
     "list",
     {{kList, Success(R"({"list":{"a":1}})")}},
     1,
     "List failed: the answer holds no list\n"},
    {"no_list_of_names", "status cms", {{kList, Success("7")}}, 1, "List failed: the answer holds no list\n"},
    {"no_description",
     "status 1",
     {{kGetInfo, Success("[]")}},
     1,
     "GetInfo failed: the answer describes no service\n"},
    {"no_applications",
     "apps",
     {{kGetApps, Success(R"({"appsStatus":"none"})")}},
     1,
     "GetAppsStatus failed: the answer describes no applications\n"},
    {"no_methods",
     "methods",
     {{kMethods, Success("null")}},
     1,
     "The list of methods failed: the answer holds no APIs\n"},
    {"html",
     "list",
     {{kList, Garbage("<html>Hello</html>", false)}},
     1,
     "List failed: the reply is not an appliance's\n"},
    {"endless_reply",
     "--timeout 1 list",
     {{kList, Garbage("<p>", true)}},
     8,
     "No whole reply from URL within 1 s. The appliance may still be at work; --timeout waits longer\n"},
    {"reply_without_limit",
     "list",
     {{kList, Garbage(std::string(9 << 20, 'x'), true)}},
     1,
     "The reply from URL is too large\n"},
    {"unreachable", "list --url http://127.0.0.1:1", {}, 6, "No appliance answers at http://127.0.0.1:1\n"},
    {"not_running",
     "list --dir /proc",
     {},
     6,
     "The appliance in /proc is not running. Start it with /proc/launch\n"},
    {"huge_service", "status 99999999999", {}, 2, "99999999999 is beyond the numbers a service can have\n"},
    {"method_that_is_a_path", "call ../x", {}, 2, "\"../x\" cannot be the name of a method\n"},
    {"parameter_without_name", "call List =1", {}, 2, "\"=1\" is not of the form name=value\n"},
    {"superfluous_word",
     "list extra",
     {},
     2,
     "The following argument was not expected: extra. See camvoractl --help\n"},
};

class ProgramFailureTest : public testing::TestWithParam<FailureCase> {};

TEST_P(ProgramFailureTest, SaysWhy) {
    const FakeAppliance appliance(GetParam().replies);
    const Outcome outcome = appliance.Run(GetParam().line);
    EXPECT_EQ(GetParam().status, outcome.status);
    EXPECT_EQ("", outcome.out);
    EXPECT_EQ("camvoractl: " + std::string(GetParam().err), outcome.err);
}

INSTANTIATE_TEST_SUITE_P(All, ProgramFailureTest, testing::ValuesIn(kFailureCases),
                         [](const auto& c) { return std::string(c.param.name); });

TEST(ProgramFailureJsonTest, HoldsTheErrorAndItsLog) {
    const FakeAppliance appliance({{kRestart, Error(200, R"({"code":400,"data":null})")},
                                   {kLog, Success(R"({"lines":[{"text":"why"}]})")}});
    const Outcome outcome = appliance.Run("call Restart --json");
    EXPECT_EQ(1, outcome.status);
    EXPECT_EQ("", outcome.err);
    EXPECT_EQ(R"x({"error":{"code":400,"data":null,"log":[{"text":"why"}],"request":"r1","status":1,)x"
              R"x("text":"Restart failed (error 400): the appliance could not do it"}})x"
              "\n",
              outcome.out);
}

TEST(ProgramFailureJsonTest, CoversWrongUsage) {
    const Outcome outcome = ProgramRun({"--json", "--timeout", "0", "list"}).Wait();
    EXPECT_EQ(2, outcome.status);
    EXPECT_EQ("", outcome.err);
    EXPECT_EQ(R"({"error":{"code":0,"data":null,"log":[],"request":"","status":2,)"
              R"("text":"--timeout: Value 0 not in range 1 to 86400. See camvoractl --help"}})"
              "\n",
              outcome.out);
}

TEST(ProgramFailureTextTest, NamesTheFolderOfAnApplianceThatWasKilled) {
    const TemporaryFolder dir;
    dir.Write("token", "secret\n");
    dir.Write(kAddressFile, "http://127.0.0.1:1\n");
    const Outcome outcome = ProgramRun({"--dir", dir.Path(), "list"}, {"CAMVORA_DIR=/no/such"}).Wait();
    EXPECT_EQ(6, outcome.status);
    EXPECT_EQ(
        "camvoractl: No appliance answers at http://127.0.0.1:1; start it with " + dir.Path() + "/launch\n",
        outcome.err);
}

}  // namespace
