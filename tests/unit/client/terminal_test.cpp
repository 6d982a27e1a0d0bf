// What a terminal is shown: colours where there are any, and no line that is too long for it.
#include "fakeappliance.h"

#include <gtest/gtest.h>

namespace {

const FakeReply kOneService = Success(
    R"({"list":[{"service":1,"info":{"service":1,"name":"Device Pack","shortName":"device_pack","status":1,)"
    R"("statusName":"started","blRunning":true,"version":"2.1.0-0130"}}]})");

std::string ShownList(const std::string& settings) {
    return FakeAppliance({{"List", kOneService}}).RunAtTerminal("list", "", settings).out;
}

TEST(TerminalTest, ShowsLinesThatFit) {
    EXPECT_EQ(
        "Name         Short name   Number  Running  Status   Version\r\n"
        "Device Pack  device_pack  1       yes      started  2.1.0-0130\r\n"
        "3 columns do not fit; --json has all\r\n",
        ShownList("TERM=dumb"));
}

TEST(TerminalTest, ShowsColoursWhereTheyAreWanted) {
    constexpr char kGreen[] = "  \x1b[32mstarted\x1b[0m  ";
    EXPECT_NE(std::string::npos, ShownList("TERM=xterm").find(kGreen));
    EXPECT_EQ(std::string::npos, ShownList("TERM=xterm NO_COLOR=1").find(kGreen));
    EXPECT_EQ(std::string::npos, ShownList("TERM=").find(kGreen));
}

}  // namespace
