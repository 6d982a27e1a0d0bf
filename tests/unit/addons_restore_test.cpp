// "Restore".
#include "fake/script.h"

#include "cases.h"

#include <gtest/gtest.h>

#include <string>

namespace {

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
};

using Restore = TableTest<RestoreCase>;

// No result is looked at.
TEST_P(Restore, RunsTheAddOnsScriptAndAlwaysSucceeds) {
    const RestoreCase& row = GetParam();
    fake::Answer("IsExistDir", row.hasCopy);
    fake::Answer("IsServiceRunning", row.isRunning);
    for (const char* call : {"PLIBCExec", "DaemonCtrl::Kill", "DaemonCtrl::Run", "ChangeServiceStatus"}) {
        fake::Answer(call, -1);
    }
    const std::string service = row.service;
    ExpectCalls(fake::Authorized("Restore",
                                 R"({"serviceName":"name","description":"why","service":)" + service + "}"),
                Steps{"GetParam service 0", R"(GetParam serviceName "")", R"(GetParam description "")"} +
                    row.steps +
                    Steps{"CVClientNotify::Notify 24 " + service + " 2 ''", "CVLog 321913013 0 name why ''",
                          "SetSuccess null"});
}

INSTANTIATE_TEST_SUITE_P(, Restore, testing::ValuesIn(kRestoreCases), CaseName<RestoreCase>);

}  // namespace
