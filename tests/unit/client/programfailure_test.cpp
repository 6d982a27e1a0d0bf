// The whole program when something is wrong: nothing on standard output, words on standard error, and the
// exit status; with --json the error as a document on standard output.
#include "fakeappliance.h"

#include <gtest/gtest.h>

namespace {

struct FailureCase {
    const char* name;
    const char* line;
    const char* request;
    FakeReply reply;
    int status;
    const char* err;  // after "camvoractl: "
};

const FakeReply kHtml{200, "<html>"};

const FailureCase kFailureCases[] = {
    {"not_admitted_and_without_a_log", "list", "List", Error(200, R"({"code":105,"data":null})"), 7,
     "List failed (error 105): the appliance does not accept the token, or there was none\n"
     "The request was r1\n"},
    {"stream_refused", "events", "GET /events", Error(401, R"({"code":1005,"data":{"text":"No token."}})"), 7,
     "The stream of events failed (error 1005): No token.\nThe request was r1\n"},
    {"stream_that_is_none", "events", "GET /events", kHtml, 1,
     "The stream of events failed: the reply is not an appliance's\n"},
    {"no_list", "list", "List", Success(R"({"list":{"a":1}})"), 1, "List failed: the answer holds no list\n"},
    {"no_description", "status 1", "GetInfo", Success("[]"), 1,
     "GetInfo failed: the answer describes no service\n"},
    {"no_applications", "apps", "GetAppsStatus", Success(R"({"appsStatus":"none"})"), 1,
     "GetAppsStatus failed: the answer describes no applications\n"},
    {"no_methods", "methods", "GET /api", Success("null"), 1,
     "The list of methods failed: the answer holds no APIs\n"},
    {"no_log_lines", "log r1", kLog, Success("1"), 1, "The log failed: the answer holds no lines\n"},
    {"nothing_logged", "log r1", kLog, Success(R"({"lines":[]})"), 3,
     "The appliance has logged nothing for request r1\n"},
    {"unknown_name", "stop cns", "List", Success(R"({"list":[{"service":2,"info":{"shortName":"cms"}}]})"), 3,
     "There is no service \"cns\". Did you mean \"cms\"?\n"},
    {"unknown_number", "start 7", "List", Success(R"({"list":[]})"), 3,
     "There is no service 7. \"camvoractl list\" shows all\n"},
    {"unreachable", "list --host http://127.0.0.1:1", "", FakeReply(), 6,
     "No appliance answers at http://127.0.0.1:1\n"},
    {"huge_service", "status 99999999999", "", FakeReply(), 2,
     "99999999999 is beyond the numbers a service can have\n"},
    {"method_that_is_a_path", "call ../x", "", FakeReply(), 2, "\"../x\" cannot be the name of a method\n"},
    {"server_that_is_a_path", "list --server ../x", "", FakeReply(), 2,
     "--server: \"../x\" cannot be the name of a server. See camvoractl --help\n"},
    {"pair_of_nobody", "pair remove r", "DELETE /pairs?name=r",
     Error(404, R"({"code":1016,"data":{"text":"None."}})"), 3,
     "The removal failed (error 1016): None.\nThe request was r1\n"},
    {"own_address_for_a_far_host", "pair join http://far:1 X --own-url http://127.0.0.1:2", "GET /pairs",
     Success("{}"), 2, "The host cannot reach http://127.0.0.1:2. Give --own-url http://HOST:PORT\n"},
    {"superfluous_word", "list extra", "", FakeReply(), 2,
     "The following argument was not expected: extra. See camvoractl --help\n"},
    {"unknown_command", "lst", "", FakeReply(), 2, "There is no command \"lst\". See camvoractl --help\n"},
    {"unknown_option", "--foo lst", "", FakeReply(), 2,
     "There is no option \"--foo\". See camvoractl --help\n"},
};

class ProgramFailureTest : public testing::TestWithParam<FailureCase> {};

TEST_P(ProgramFailureTest, SaysWhy) {
    const FakeAppliance appliance({{GetParam().request, GetParam().reply}});
    const Outcome outcome = appliance.Run(GetParam().line);
    EXPECT_EQ(GetParam().status, outcome.status);
    EXPECT_EQ("", outcome.out);
    EXPECT_EQ("camvoractl: " + std::string(GetParam().err), outcome.err);
}

INSTANTIATE_TEST_SUITE_P(All, ProgramFailureTest, testing::ValuesIn(kFailureCases),
                         [](const auto& c) { return std::string(c.param.name); });

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

TEST(ProgramErrorTest, HoldsDetailsAndLogInWordsAndAsJson) {
    const FakeAppliance appliance(
        {{"Restart", Error(200, R"({"code":400,"data":{"errinfo":{"key":"bad\u0007"}}})")},
         {kLog, Success(R"({"lines":[{"text":"Failed [\u001b]","line":9,"source":"a"},5]})")}});
    const Outcome words = appliance.Run("call Restart");
    EXPECT_EQ(1, words.status);
    EXPECT_EQ(
        "camvoractl: Restart failed (error 400): the appliance could not do it\n"
        "errinfo.key  bad\\x07\n"
        "The request was r1\n"
        "The appliance logged:\n"
        "-  a:9  -  Failed [\\x1B]\n"
        "-  -    -  -\n",
        words.err);
    const Outcome json = appliance.Run("call Restart --json");
    EXPECT_EQ(1, json.status);
    EXPECT_EQ("", json.err);
    EXPECT_EQ(R"x({"error":{"code":400,"data":{"errinfo":{"key":"bad\u0007"}},)x"
              R"x("log":[{"line":9,"source":"a","text":"Failed [\u001b]"},5],"request":"r1","status":1,)x"
              R"x("text":"Restart failed (error 400): the appliance could not do it"}})x"
              "\n",
              json.out);
}

TEST(ProgramErrorTest, IsJsonForWrongUsageToo) {
    const Outcome outcome = StartClient("--json --timeout 0 list").Wait();
    EXPECT_EQ(2, outcome.status);
    EXPECT_EQ("", outcome.err);
    EXPECT_EQ(R"({"error":{"code":0,"data":null,"log":[],"request":"","status":2,)"
              R"("text":"--timeout: \"0\" is no number of seconds from 1 to 86400. See camvoractl --help"}})"
              "\n",
              outcome.out);
}

TEST(ProgramErrorTest, NamesTheFolderOfAnApplianceThatWasKilled) {
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
