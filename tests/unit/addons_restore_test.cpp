// "Restore".
#include "fake/journal.h"
#include "fake/script.h"
#include "fake/session.h"
#include "fake/steps.h"
#include "fake/webapi.h"
#include "webapi/apitable.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using fake::Steps;
using fake::operator+;

const std::string kTarget = "/var/packages/Camvora/target";
const Steps kDevicePackCopy = {"IsExistDir " + kTarget + "/device_pack.default"};
const Steps kLocalDisplayCopy = {"IsExistDir " + kTarget + "/local_display.default"};
const Steps kScript = {"PLIBCExec " + kTarget + "/scripts/ctl_local_display.sh Restore"};

struct RestoreCase {
    const char* name;
    const char* service;
    bool hasCopy;
    bool isRunning;
    Steps steps;
};

const RestoreCase kRestoreCases[] = {
    {"device_pack", "1", true, true,
     kDevicePackCopy + Steps{"PLIBCExec " + kTarget + "/scripts/S82camvora.sh stop",
                             "PLIBCExec " + kTarget + "/device_pack/script/restore",
                             "PLIBCExec " + kTarget + "/scripts/S82camvora.sh start"}},
    {"device_pack_without_copy", "1", false, true, kDevicePackCopy},
    {"local_display_running", "6", true, true,
     kLocalDisplayCopy + Steps{"IsServiceRunning 6", "ChangeServiceStatus 6 0", "DaemonCtrl::Kill 11"} +
         kScript + Steps{"DaemonCtrl::Run 11", "ChangeServiceStatus 6 1"}},
    {"local_display_stopped", "6", true, false, kLocalDisplayCopy + Steps{"IsServiceRunning 6"} + kScript},
    {"local_display_without_copy", "6", false, true, kLocalDisplayCopy},
    {"other_service",
     "3",
     true,
     true,
     {R"(CVPrintf 0 null null addons HandleRestore 'Invalid service type\n')"}},
    {"no_service",
     "0",
     true,
     true,
     {R"(CVPrintf 0 null null addons HandleRestore 'Invalid service type\n')"}},
};

class Restore : public testing::TestWithParam<RestoreCase> {
    fake::Session session_;
};

// No result is looked at.
TEST_P(Restore, RunsTheAddOnsScriptAndAlwaysSucceeds) {
    const RestoreCase& row = GetParam();
    fake::Answer("IsExistDir", row.hasCopy);
    fake::Answer("IsServiceRunning", row.isRunning);
    for (const char* call : {"PLIBCExec", "DaemonCtrl::Kill", "DaemonCtrl::Run", "ChangeServiceStatus"}) {
        fake::Answer(call, -1);
    }
    const std::string params =
        R"({"serviceName":"name","description":"why","service":)" + std::string(row.service) + "}";
    fake::Serve(Process, fake::Authorized("Restore", params));
    EXPECT_EQ(
        fake::Lines(fake::Admission() +
                    Steps{"GetParam service 0", R"(GetParam serviceName "")", R"(GetParam description "")"} +
                    row.steps +
                    Steps{"CVClientNotify::Notify 24 " + std::string(row.service) + " 2 ''",
                          "CVLog 321913013 0 name why ''", "SetSuccess null"}),
        fake::Journal());
}

INSTANTIATE_TEST_SUITE_P(, Restore, testing::ValuesIn(kRestoreCases),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
