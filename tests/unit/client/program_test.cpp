// The whole program: what it asks the host, what it writes where, and its exit status.
#include "commandcase.h"

#include <sstream>

namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

FakeReplies Answers(const std::string& request, const FakeReply& reply) {
    return {{request, reply}};
}

const FakeReplies kNobody;
const FakeReply kHtml{200, "<html>"};

const CommandCase kProgramCases[] = {
    {"list", "list",
     Answers("List", Success(R"({"list":[{"service":2,"info":{"service":2,"name":"C\u001b[2JMS","status":7,)"
                             R"("statusName":"7","blRunning":"?","blHasPackages":true,"blFactoryCopy":false,)"
                             R"("blAutoUpdate":true}}]})")),
     0,
     "Name        Short name  Number  Running  Status  Version  Packages  Factory copy  Automatic update\n"
     "C\\x1B[2JMS  -           2       ?        7       -        yes       no            on\n",
     ""},
    {"status", "status 1",
     Answers("GetInfo", Success(R"({"pid":812,"since":"2026-03-01","options":{"0":"yes"}})")), 0,
     EndsWith("Process           812\nRunning since     2026-03-01\nOptions           {\"0\":\"yes\"}\n"),
     ""},
    {"status_of_a_number_below_zero", "status -1 --json", Answers("GetInfo", Success(R"({"status":0})")), 0,
     "{\"status\":0}\n", ""},
    {"apps", "apps --lang de",
     Answers("GetAppsStatus",
             Success(R"({"appsStatus":{"live":{"title":"Live\nBild","blEnabled":true},"odd":[1]}})")),
     0,
     "Application  Title       Path  Enabled\n"
     "live         Live\\nBild  -     yes\n"
     "odd          -           -     -\n",
     ""},
    {"methods", "methods",
     Answers(
         "GET /api",
         Success(
             R"({"apis":[{"api":"ORVA.Camvora.AddOns","version":1,"methods":["Update","\u001b"]},{"methods":"x"},2]})")),
     0,
     "Method  What it does                                                Parameters\n"
     "Update  Install the add-on that was unpacked, or the last download  [service=] [filePath=]\n"
     "\\x1B    -                                                           -\n",
     ""},
    {"method", "methods SetAutoUpdate",
     Answers("GET /api",
             Success(R"({"apis":[{"api":"ORVA.Camvora.AddOns","version":1,"methods":["SetAutoUpdate"]}]})")),
     0, HasSubstr("Parameter          blEnable, boolean: Whether it is to be on\n"), ""},
    {"method_of_a_later_appliance", "methods New",
     Answers("GET /api", Success(R"({"apis":[{"api":"A.B","version":1,"methods":["New"]}]})")), 0,
     "Method       New\nAPI          A.B, version 1\nDescription  this program knows none\n", ""},
    {"call_shows_every_value", "call List",
     Answers("List", Success(R"({"a":[{"b":"x"},2],"c":{},"d":true})")), 0,
     "a[0].b  x\na[1]    2\nc       {}\nd       true\n", ""},
    {"call_with_parameters", "call X a=1 b=x=y c=\u00e4\" d=[true]", kNobody, 0, "",
     "Done. The appliance had nothing to report.\n",
     ElementsAre(R"(X Bearer secret {"a":1,"b":"x=y","c":"\u00e4\"","d":[true]})")},
    {"call_on_a_paired_server", "call X --server r-1 --json",
     Answers("POST /servers/r-1/api/ORVA.Camvora.AddOns/v1/X", Success(R"({"a":1})")), 0, "{\"a\":1}\n", ""},
    {"log", "log r1",
     Answers(
         kLog,
         Success(R"({"lines":[{"time":"T","source":"addons","line":9,"function":"F","text":"a\u001b"},3]})")),
     0,
     "Time  Source    Function  Text\n"
     "T     addons:9  F         a\\x1B\n"
     "-     -         -         -\n",
     ""},
    {"pairs", "pair list",
     Answers("GET /pairs", Success(R"({"pairs":[{"name":"a\u001b","role":"server"},2]})")), 0,
     "Name   Role    Address\na\\x1B  server  -\n-      -       -\n", ""},

    {"stream_refused", "events",
     Answers("GET /events", Error(401, R"({"code":1005,"data":{"text":"No token."}})")), 7, "",
     "camvoractl: The stream of events failed (error 1005): No token.\nThe request was r1\n"},
    {"stream_that_is_none", "events", Answers("GET /events", kHtml), 1, "",
     "camvoractl: The stream of events failed: the reply is not an appliance's\n"},
    {"no_list", "list", Answers("List", Success(R"({"list":{"a":1}})")), 1, "",
     "camvoractl: List failed: the answer holds no list\n"},
    {"no_description", "status 1", Answers("GetInfo", Success("[]")), 1, "",
     "camvoractl: GetInfo failed: the answer describes no service\n"},
    {"no_applications", "apps", Answers("GetAppsStatus", Success(R"({"appsStatus":"none"})")), 1, "",
     "camvoractl: GetAppsStatus failed: the answer describes no applications\n"},
    {"no_methods", "methods", Answers("GET /api", Success("null")), 1, "",
     "camvoractl: The list of methods failed: the answer holds no APIs\n"},
    {"no_log_lines", "log r1", Answers(kLog, Success("1")), 1, "",
     "camvoractl: The log failed: the answer holds no lines\n"},
    {"nothing_logged", "log r1", Answers(kLog, Success(R"({"lines":[]})")), 3, "",
     "camvoractl: The appliance has logged nothing for request r1\n"},
    {"failed_with_details", "call Restart",
     Answers("Restart", Error(200, R"({"code":400,"data":{"errinfo":{"key":"bad\u0007"}}})")), 1, "",
     "camvoractl: Restart failed (error 400): the appliance could not do it\n"
     "errinfo.key  bad\\x07\n"
     "The request was r1\n"},
    {"reply_without_end", "list --timeout 1", Answers("List", {200, "<p>", "", true}), 8, "",
     HasSubstr("within 1 s. The appliance may still be at work")},
    {"huge_reply", "list", Answers("List", {200, std::string(9 << 20, 'x'), "", true}), 1, "",
     HasSubstr(" is too large\n")},
    {"failure_for_programs", "call Restart --json",
     Usual({{"Restart", Error(200, R"({"code":400,"data":{"errinfo":{"key":"bad\u0007"}}})")}}), 1,
     R"x({"error":{"code":400,"data":{"errinfo":{"key":"bad\u0007"}},)x"
     R"x("log":[{"function":"F","line":9,"source":"s","text":"why","time":"T"}],"request":"r1","status":1,)x"
     R"x("text":"Restart failed (error 400): the appliance could not do it"}})x"
     "\n",
     ""},
    {"broken_rules_for_programs", "check " SCHEMAS "/list.json --json", kNobody, 4,
     StartsWith(R"({"error":{"code":0,"data":{"rules":[{"kept":false,"rule":"extension")"), ""},
    {"unknown_number", "start 7", Answers("List", Success(R"({"list":[]})")), 3, "",
     "camvoractl: There is no service 7. \"camvoractl list\" shows all\n"},
    {"unreachable", "list --host http://127.0.0.1:1", kNobody, 6, "",
     "camvoractl: No appliance answers at http://127.0.0.1:1\n"},
    {"huge_service", "status 99999999999", kNobody, 2, "",
     "camvoractl: 99999999999 is beyond the numbers a service can have\n"},
    {"method_that_is_a_path", "call ../x", kNobody, 2, "",
     "camvoractl: \"../x\" cannot be the name of a method\n"},
    {"own_address_for_a_far_host", "pair join http://far:1 X --own-url http://127.0.0.1:2", kNobody, 2, "",
     "camvoractl: The host cannot reach http://127.0.0.1:2. Give --own-url http://HOST:PORT\n"},
    {"unknown_command", "lst", kNobody, 2, "",
     "camvoractl: There is no command \"lst\". See camvoractl --help\n"},
    {"unknown_option", "--foo lst", kNobody, 2, "",
     "camvoractl: There is no option \"--foo\". See camvoractl --help\n"},
};

INSTANTIATE_TEST_SUITE_P(Program, CommandTest, testing::ValuesIn(kProgramCases), NameOf);

// Nobody serves there: examples get as far as that, or to a file that is not there.
TEST(ProgramHelpTest, ShowsExamplesOfEachCommandThatAreUnderstood) {
    const TemporaryFolder folder;
    const std::string nobody = " --host http://127.0.0.1:1 --timeout 1 --dir " + folder.Path();
    for (const std::string& command : AllCommands()) {
        std::istringstream help(StartClient(command + " --help").Wait().out);
        std::size_t examples = 0;
        for (std::string line; std::getline(help, line);) {
            if (line.rfind("  camvoractl " + command, 0) != 0) {
                continue;
            }
            ++examples;
            if (command.rfind("feed ", 0) != 0) {  // as that would make files
                const std::string example = line.substr(13, line.find_first_of("|>", 13) - 13);
                EXPECT_THAT(StartClient(example + nobody).Wait().err,
                            Not(HasSubstr("See camvoractl --help")));
            }
        }
        EXPECT_LT(0U, examples) << command;
    }
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
