// What a terminal is shown: colours where there are any, and no line that is too long for it.
#include "fakeappliance.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <array>

namespace {

const std::string kOneService =
    R"({"list":[{"service":1,"info":{"service":1,"name":"Device Pack","shortName":"device_pack","status":1,)"
    R"("statusName":"started","blRunning":true,"version":"2.1.0-0130"}}]})";

// What "list" writes to a terminal of 70 columns.
std::string ShownList(const std::vector<std::string>& more) {
    const FakeAppliance appliance({{"List", Success(kOneService)}});
    const int terminal = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    EXPECT_EQ(0, grantpt(terminal) + unlockpt(terminal));
    const int output = open(ptsname(terminal), O_RDWR | O_NOCTTY | O_CLOEXEC);
    const struct winsize size = {25, 70, 0, 0};
    EXPECT_EQ(0, ioctl(output, TIOCSWINSZ, &size));
    std::vector<std::string> environment = more;
    environment.push_back("CAMVORA_DIR=" + appliance.Dir());
    const Outcome outcome = StartClient("list", environment, output).Wait();
    EXPECT_EQ(0, outcome.status);
    EXPECT_EQ("3 columns do not fit; --json has all\n", outcome.err);
    std::array<char, 4096> shown{};
    const ssize_t length = read(terminal, shown.data(), shown.size());
    close(output);
    close(terminal);
    return std::string(shown.data(), static_cast<std::size_t>(std::max<ssize_t>(length, 0)));
}

TEST(TerminalTest, ShowsLinesThatFit) {
    EXPECT_EQ(
        "Name         Short name   Number  Running  Status   Version\r\n"
        "Device Pack  device_pack  1       yes      started  2.1.0-0130\r\n",
        ShownList({"TERM=dumb"}));
}

TEST(TerminalTest, ShowsColoursWhereTheyAreWanted) {
    constexpr char kGreen[] = "\x1b[32m";
    EXPECT_NE(std::string::npos, ShownList({"TERM=xterm"}).find(kGreen));
    EXPECT_EQ(std::string::npos, ShownList({"TERM=xterm", "NO_COLOR=1"}).find(kGreen));
    EXPECT_EQ(std::string::npos, ShownList({"TERM=dumb"}).find(kGreen));
    EXPECT_EQ(std::string::npos, ShownList({}).find(kGreen));
}

}  // namespace
