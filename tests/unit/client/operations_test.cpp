// "operations", "wait" and "console".
#include "commandcase.h"

namespace {

std::string OperationThat(const std::string& outcome, const std::string& problem = "") {
    return R"({"id":12,"request":"336f563be6a9a2bd","who":"client","method":"Update","service":1,)"
           R"("fromVersion":"2.1-9","toVersion":"2.2-1","begin":"2026-03-01T12:03:07.900Z","durationMs":75400,)"
           R"("code":0,"outcome":")" +
           outcome + R"(","problem":")" + problem + "\"}";
}

FakeReply OperationList(const std::string& operations) {
    return Success(R"({"operations":[)" + operations + "]}");
}

FakeReplies RepliesWith(const FakeReply& one) {
    return {
        {"List", Success(R"({"list":[{"service":1,"info":{"shortName":"device_pack"}}]})")},
        {"GET /operations?id=12", one},
        {"GET /operations?id=13", OperationList("")},
        {"GET /operations?request=336f563be6a9a2bd", OperationList(OperationThat("failed", "no \\u001b"))},
        {"GET /log?request=336f563be6a9a2bd",
         Success(
             R"({"lines":[{"time":"2026-03-01T12:03:09.000Z","source":"a","line":1,"function":"F","text":"t"}]})")},
        {"GET /programs?request=336f563be6a9a2bd",
         Success(R"({"programs":[{"time":"2026-03-01T12:03:08.000Z","path":"/bin/mv","arguments":["-f"],)"
                 R"("exitStatus":0}]})")},
        {"GET /operationlog?request=336f563be6a9a2bd",
         Success(R"({"entries":[{"time":"2026-03-01T12:03:10.000Z","texts":["DP","by hand",""]}]})")},
    };
}

const std::string kWaitsForEnd = "Waiting for the end of Update device_pack\n";
const std::string kRequestLog =
    "The request was 336f563be6a9a2bd\nThe appliance logged:\n2026-03-01T12:03:09.000Z  a:1  F  t\n";

const CommandCase kOperationCases[] = {
    {"one", "operations 12", RepliesWith(OperationList(OperationThat("done"))), 0,
     testing::HasSubstr("12:03:07.900  begin    Update by client\n"
                        "12:03:08.000  program  /bin/mv -f ended with exit status 0\n"
                        "12:03:09.000  log      F: t\n"
                        "12:03:10.000  entry    DP: by hand\n"
                        "12:04:23.300  end      done after 1 min 15 s\n"),
     ""},
    {"unknown_number", "operations 13", RepliesWith(OperationList("")), 3, "",
     "camvoractl: There is no operation 13, or it is too old. \"camvoractl operations\" shows the newest\n"},
    {"wait", "wait 12",
     RepliesWith(InTurn({OperationList(OperationThat("running")), OperationList(OperationThat("done"))})), 0,
     "Update device_pack is done, after 1 min 15 s\n", kWaitsForEnd},
    {"wait_for_a_failure", "wait 336f563be6a9a2bd", RepliesWith(OperationList("")), 1, "",
     kWaitsForEnd + "camvoractl: Update device_pack failed: no \\x1B\n" + kRequestLog},
    {"wait_for_one_that_nobody_saw_end", "wait 12", RepliesWith(OperationList(OperationThat("lost"))), 9, "",
     kWaitsForEnd +
         "camvoractl: Nobody saw the end of Update device_pack: the appliance's HTTP process ended before\n" +
         kRequestLog},
    {"wait_too_long", "wait 12 --timeout 1", RepliesWith(OperationList(OperationThat("running"))), 8, "",
     kWaitsForEnd + "camvoractl: After 1 s, Update device_pack is still under way\n"},
};

INSTANTIATE_TEST_SUITE_P(Operations, CommandTest, testing::ValuesIn(kOperationCases), NameOf);

TEST(ConsoleTest, PrintsALinkWhoseCodeNoServerIsSent) {
    const FakeAppliance appliance({{"POST /session/codes", Success(R"({"code":"A-B","validS":600})")}});
    const Outcome outcome = appliance.Run("console");
    EXPECT_EQ(appliance.Url() + "/#code=A-B\n", outcome.out);
    EXPECT_EQ("The link signs one browser in, within 600 seconds\n", outcome.err);
}

}  // namespace
