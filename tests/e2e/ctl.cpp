#include "e2e/ctl.h"

namespace e2e {

Program StartCtl(const Appliance& appliance, const std::vector<std::string>& arguments) {
    std::vector<std::string> command = {appliance.PathOf("camvoractl")};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return Program(command, {"PATH=/usr/bin:/bin"});
}

Json::Value Ctl(const Appliance& appliance, const std::vector<std::string>& arguments) {
    std::vector<std::string> forPrograms = {"--json"};
    forPrograms.insert(forPrograms.end(), arguments.begin(), arguments.end());
    const Outcome outcome = StartCtl(appliance, forPrograms).Wait();
    EXPECT_EQ(0, outcome.status) << outcome.out;
    return ParseJson(outcome.out);
}

std::string NewCode(const Appliance& host) {
    return Ctl(host, {"pair", "code", "recorder"})["code"].asString();
}

void Pair(const Appliance& host, const Appliance& recorder) {
    Ctl(recorder, {"pair", "join", host.Url(), NewCode(host)});
}

}  // namespace e2e
