// The ways of control.
#include "addons/servicecontrol.h"

#include "fake/script.h"

#include "cases.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace {

struct DaemonTypeCase {
    int service;
    int type;
};

const DaemonTypeCase kDaemonTypeCases[] = {
    {-1, -1}, {0, -1}, {1, -1}, {2, 4}, {3, 1}, {4, -1}, {5, 6}, {6, 11}, {7, -1}, {2147483647, -1},
};

TEST(DaemonType, IsOfTheService) {
    for (const DaemonTypeCase& row : kDaemonTypeCases) {
        EXPECT_EQ(row.type, DaemonControl::GetDaemonType(static_cast<ADDON_SERVICE>(row.service)))
            << "service " << row.service;
    }
}

// Does nothing, whatever its table holds.
std::unique_ptr<ServiceControl> Nothing() {
    auto control = std::make_unique<ServiceControl>();
    control->SetActionControl(CONTROL_ACTION_START, DaemonControl::RunDaemon);
    return control;
}

std::unique_ptr<ServiceControl> Daemon() {
    return std::make_unique<DaemonControl>(ADDON_SERVICE_3);
}

std::unique_ptr<ServiceControl> Cms() {
    return std::make_unique<CMSControl>();
}

Steps Option(const std::string& value) {
    return {"WebUIOptions", "WebUIOptions::SetOption 0 " + value, "WebUIOptions::Apply", "~WebUIOptions"};
}

struct StrategyCase {
    const char* name;
    std::unique_ptr<ServiceControl> (*make)();
    CONTROL_ACTION action;
    const char* answers;
    int result;
    Steps steps;
};

const Steps kRun = {"DaemonCtrl::Run 1"};
const Steps kKill = {"DaemonCtrl::Kill 1"};
constexpr auto kUnused = static_cast<CONTROL_ACTION>(3);

const StrategyCase kStrategyCases[] = {
    {"nothing_to_start", Nothing, CONTROL_ACTION_START, "{}", 0, {}},
    {"daemon_update", Daemon, CONTROL_ACTION_UPDATE, "{}", 0, {}},
    {"daemon_unused", Daemon, kUnused, "{}", 0, {}},
    {"daemon_in_progress", Daemon, CONTROL_ACTION_IN_PROGRESS, "{}", 0, {}},
    {"failed_run_is_done", Daemon, CONTROL_ACTION_START, R"({"DaemonCtrl::Run":-1})", 0, kRun},
    {"failed_kill_is_done", Daemon, CONTROL_ACTION_STOP, R"({"DaemonCtrl::Kill":-1})", 0, kKill},
    {"cms_stop", Cms, CONTROL_ACTION_STOP, "{}", 0, Option("false")},
    {"cms_start_fails", Cms, CONTROL_ACTION_START, R"({"WebUIOptions::Apply":5})", 5, Option("true")},
    {"cms_in_progress", Cms, CONTROL_ACTION_IN_PROGRESS, "{}", 0, {}},
};

using Strategy = TableTest<StrategyCase>;

TEST_P(Strategy, DoesTheAction) {
    fake::AnswerEach(GetParam().answers);
    EXPECT_EQ(GetParam().result, GetParam().make()->RunActionControl(GetParam().action));
    EXPECT_EQ(fake::Lines(GetParam().steps), fake::Journal());
}

INSTANTIATE_TEST_SUITE_P(, Strategy, testing::ValuesIn(kStrategyCases), CaseName<StrategyCase>);

}  // namespace
