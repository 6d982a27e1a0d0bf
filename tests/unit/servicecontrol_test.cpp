// The ways of control, and which service has which.
#include "addons/servicecontrol.h"

#include "fake/journal.h"
#include "fake/script.h"
#include "fake/session.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace {

using Steps = std::vector<std::string>;

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

std::unique_ptr<ServiceControl> Nothing() {
    return std::make_unique<ServiceControl>();
}

template <ADDON_SERVICE service>
std::unique_ptr<ServiceControl> Daemon() {
    return std::make_unique<DaemonControl>(service);
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

constexpr auto kUnused = static_cast<CONTROL_ACTION>(3);

const StrategyCase kStrategyCases[] = {
    {"nothing_to_start", Nothing, CONTROL_ACTION_START, "{}", 0, {}},
    {"nothing_to_stop", Nothing, CONTROL_ACTION_STOP, "{}", 0, {}},

    {"service3_start", Daemon<ADDON_SERVICE_3>, CONTROL_ACTION_START, "{}", 0, {"DaemonCtrl::Run 1"}},
    {"service3_stop", Daemon<ADDON_SERVICE_3>, CONTROL_ACTION_STOP, "{}", 0, {"DaemonCtrl::Kill 1"}},
    {"service3_update", Daemon<ADDON_SERVICE_3>, CONTROL_ACTION_UPDATE, "{}", 0, {}},
    {"service3_unused", Daemon<ADDON_SERVICE_3>, kUnused, "{}", 0, {}},
    {"service3_in_progress", Daemon<ADDON_SERVICE_3>, CONTROL_ACTION_IN_PROGRESS, "{}", 0, {}},
    {"service5_start", Daemon<ADDON_SERVICE_5>, CONTROL_ACTION_START, "{}", 0, {"DaemonCtrl::Run 6"}},
    {"service5_stop", Daemon<ADDON_SERVICE_5>, CONTROL_ACTION_STOP, "{}", 0, {"DaemonCtrl::Kill 6"}},
    {"display_start",
     Daemon<ADDON_SERVICE_LOCAL_DISPLAY>,
     CONTROL_ACTION_START,
     "{}",
     0,
     {"DaemonCtrl::Run 11"}},
    {"display_stop",
     Daemon<ADDON_SERVICE_LOCAL_DISPLAY>,
     CONTROL_ACTION_STOP,
     "{}",
     0,
     {"DaemonCtrl::Kill 11"}},
    {"failed_run_counts_as_done",
     Daemon<ADDON_SERVICE_3>,
     CONTROL_ACTION_START,
     R"({"DaemonCtrl::Run":-1})",
     0,
     {"DaemonCtrl::Run 1"}},
    {"failed_kill_counts_as_done",
     Daemon<ADDON_SERVICE_3>,
     CONTROL_ACTION_STOP,
     R"({"DaemonCtrl::Kill":-1})",
     0,
     {"DaemonCtrl::Kill 1"}},

    {"cms_start", Cms, CONTROL_ACTION_START, "{}", 0, Option("true")},
    {"cms_stop", Cms, CONTROL_ACTION_STOP, "{}", 0, Option("false")},
    {"cms_start_fails", Cms, CONTROL_ACTION_START, R"({"WebUIOptions::Apply":5})", 5, Option("true")},
    {"cms_in_progress", Cms, CONTROL_ACTION_IN_PROGRESS, "{}", 0, {}},
};

class Strategy : public testing::TestWithParam<StrategyCase> {
    fake::Session session_;
};

TEST_P(Strategy, DoesTheAction) {
    fake::AnswerEach(GetParam().answers);
    EXPECT_EQ(GetParam().result, GetParam().make()->RunActionControl(GetParam().action));
    EXPECT_EQ(fake::Lines(GetParam().steps), fake::Journal());
}

INSTANTIATE_TEST_SUITE_P(, Strategy, testing::ValuesIn(kStrategyCases),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(ServiceControl, DoesNothingWhateverItsTableHolds) {
    const fake::Session session;
    ServiceControl control;
    control.SetActionControl(CONTROL_ACTION_START, DaemonControl::RunDaemon);
    EXPECT_EQ(0, control.RunActionControl(CONTROL_ACTION_START));
    EXPECT_EQ("", fake::Journal());
}

}  // namespace
