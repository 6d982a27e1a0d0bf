// "Update": what it runs and calls, in which order, and what it does when something fails.
#include "fake/journal.h"
#include "fake/script.h"
#include "fake/session.h"
#include "fake/steps.h"
#include "fake/webapi.h"
#include "webapi/apitable.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <regex>
#include <string>
#include <vector>

namespace {

using fake::Steps;
using fake::operator+;

const std::string kTarget = "/var/packages/Camvora/target";
const std::string kStartScript = "PLIBCExec " + kTarget + "/scripts/S82camvora.sh ";

// Besides the looks at the tree and the names of the services.
std::string Calls() {
    return std::regex_replace(fake::Journal(), std::regex("(GetServiceStr|lstat) .*\n"), "");
}

std::string Log(const std::string& function, const std::string& text) {
    return "CVPrintf 0 null null addonsservice " + function + " '" + text + "\\n'";
}

// An add-on, its folders, and the steps of its update.
struct AddOn {
    std::string number;
    std::string place;
    std::string workDir;
    std::string fresh;

    AddOn(const std::string& service, const std::string& tree)
        : number(service),
          place(kTarget + "/" + tree),
          workDir(kTarget + "/cv_addOns_name" + service + "/"),
          fresh(workDir + tree) {}

    std::string Lock(const std::string& name) const {
        return "/tmp/cv_AddOns_" + name + "_name" + number + ".lock";
    }

    Steps Request() const {
        return {"GetParam relayedCmd false",
                "IsCmsHost",
                "IsAuthorized",
                "GetAPIMethod",
                "GetParam service 0",
                R"(GetParam filePath "")",
                "AddonsUpdate " + number};
    }
    Steps Lock() const {
        return {"BeginCriticalSection " + Lock("Update") + " 3000",
                "BeginCriticalSection " + Lock("Package") + " 3000"};
    }
    Steps Prepare() const { return {"sync"}; }
    Steps SetAside() const { return {"rename " + place + " " + place + ".aside", "open " + kTarget}; }
    Steps Move() const {
        return {"PLIBCExec /bin/rm -rf " + place, "PLIBCExec /bin/mv -f " + fresh + " " + place};
    }
    Steps Seal() const {
        return {"open " + kTarget, "rename " + place + ".aside " + place + ".dropped", "open " + kTarget};
    }
    Steps RemoveWorkDir() const { return {"PLIBCExec /bin/rm -rf " + workDir}; }
    Steps Drop() const { return {"CVRm " + place + ".dropped"}; }
    Steps Replace() const { return SetAside() + Move() + Seal() + RemoveWorkDir(); }
    // Nothing was set aside that is there: the fake's own folders stay empty.
    Steps NotReplaced() const { return {Log("DoInstallPkg", "Failed to replace [" + place + "].")}; }
    Steps UnlockPackage() const { return {"EndCriticalSection 0", "RemoveFileIfExist " + Lock("Package")}; }
    Steps Notify() const { return {"CVClientNotify::Notify 24 " + number + " 2 0"}; }
    Steps Unlock() const {
        return {"EndCriticalSection 0", "unlink " + Lock("Update"), "~AddonsUpdate " + number};
    }
};

const Steps kFailed = {"SetError 400 null"};
const AddOn kDevicePack("1", "device_pack");
const AddOn kLocalDisplay("6", "local_display");

const Steps kScripts = {kStartScript + "stop", "PLIBCExec " + kTarget + "/device_pack/script/preupgrade",
                        "PLIBCExec " + kTarget + "/device_pack/script/preinst"};
const Steps kPostScripts = {"PLIBCExec " + kTarget + "/device_pack/script/postinst",
                            "PLIBCExec " + kTarget + "/device_pack/script/postupgrade"};
const Steps kStart = {kStartScript + "start"};
const Steps kStopDisplay = {"ChangeServiceStatus 6 0", "DaemonCtrl::Kill 11"};
const Steps kStartDisplay = {"DaemonCtrl::Run 11", "ChangeServiceStatus 6 1"};

class Update : public testing::Test {
protected:
    Update() {
        Arrive(kDevicePack);
        Arrive(kLocalDisplay);
    }

    // The looks at the trees while all goes well.
    static void Arrive(const AddOn& addOn, const char* as = "folder") {
        for (const Json::Value& look : {Json::Value("folder"), Json::Value(ENOENT), Json::Value(as)}) {
            fake::AnswerOnce("lstat " + addOn.place, look);
        }
        fake::AnswerOnce("lstat " + addOn.fresh, "folder");
        fake::Answer("lstat " + addOn.fresh + "/conf", "file");
    }

    // The same, after the looks of the unpacking.
    static void ArriveUnpacked(const AddOn& addOn) {
        fake::ClearScript();
        fake::AnswerOnce("lstat " + addOn.fresh, ENOENT);
        fake::AnswerOnce("lstat " + addOn.fresh, "folder");
        Arrive(addOn);
    }

    static std::string Serve(const std::string& service, const std::string& path) {
        Json::Value params;
        params["service"] = std::stoi(service);
        params["filePath"] = path;
        return fake::Serve(Process, {true, "Update", params, {}});
    }

    static void ExpectUpdate(const AddOn& addOn, const std::string& path, const Steps& steps) {
        (void)Serve(addOn.number, path);
        EXPECT_EQ(fake::Lines(addOn.Request() + steps), Calls());
    }

    fake::Session session_;
};

TEST_F(Update, InstallsTheDevicePackBetweenStopAndStart) {
    const AddOn& addOn = kDevicePack;
    ExpectUpdate(addOn, addOn.workDir,
                 addOn.Lock() + addOn.Prepare() + kScripts + addOn.Replace() + kPostScripts + kStart +
                     addOn.Drop() + addOn.UnlockPackage() + addOn.Notify() + addOn.Unlock() +
                     Steps{"SetSuccess null"});
}

TEST_F(Update, StopsTheLocalDisplayOnlyWhereItRuns) {
    const AddOn& addOn = kLocalDisplay;
    const Steps end =
        addOn.Drop() + addOn.UnlockPackage() + addOn.Notify() + addOn.Unlock() + Steps{"SetSuccess null"};
    const Steps begin = addOn.Lock() + addOn.Prepare() + Steps{"IsServiceRunning 6"};
    ExpectUpdate(addOn, addOn.workDir, begin + addOn.Replace() + end);
    const std::string before = fake::Lines(addOn.Request() + begin + addOn.Replace() + end);
    Arrive(addOn);
    fake::Answer("IsServiceRunning", true);
    (void)Serve(addOn.number, addOn.workDir);
    EXPECT_EQ(
        before + fake::Lines(addOn.Request() + begin + kStopDisplay + addOn.Replace() + kStartDisplay + end),
        Calls());
}

TEST_F(Update, WritesOutATreeThatWasCopied) {
    const AddOn& addOn = kLocalDisplay;
    fake::ClearScript();
    Arrive(addOn, "copy");
    ExpectUpdate(addOn, addOn.workDir,
                 addOn.Lock() + addOn.Prepare() + Steps{"IsServiceRunning 6"} + addOn.SetAside() +
                     addOn.Move() + Steps{"sync", addOn.Seal()[1], addOn.Seal()[2]} + addOn.RemoveWorkDir() +
                     addOn.Drop() + addOn.UnlockPackage() + addOn.Notify() + addOn.Unlock() +
                     Steps{"SetSuccess null"});
}

TEST_F(Update, UnpacksADownloadAndForgetsIt) {
    const AddOn& addOn = kDevicePack;
    ArriveUnpacked(addOn);
    fake::Answer("AddonsUpdate::ReadDownloadInfoFile", "/down/1");
    (void)Serve(addOn.number, "");
    const std::string mark = kTarget + "/cv_addOns_name1.partial";
    const std::string begin =
        fake::Lines(addOn.Request() + addOn.Lock() +
                    Steps{"AddonsUpdate 1", "AddonsUpdate::ReadDownloadInfoFile '' '' ''", "~AddonsUpdate 1",
                          "mkdir " + mark, "CVRm " + addOn.workDir, "CreateFullDirPath " + addOn.workDir,
                          "PLIBCExec /bin/tar -C " + addOn.workDir + " -xvf /down/1"});
    const std::string end = fake::Lines(Steps{"rmdir " + mark, "CVRm /down/1"} + addOn.Prepare() + kScripts +
                                        addOn.Replace() + kPostScripts + kStart + addOn.Drop() +
                                        addOn.UnlockPackage() + Steps{"AddonsUpdate::CleanDownloadResult"} +
                                        addOn.Notify() + addOn.Unlock() + Steps{"SetSuccess null"});
    const std::string calls = Calls();
    EXPECT_EQ(begin, calls.substr(0, begin.size()));
    EXPECT_EQ(end, calls.substr(calls.size() - std::min(calls.size(), end.size())));
}

struct FailureCase {
    const char* name;
    const AddOn& addOn;
    bool isDownload;
    std::string call;
    std::vector<Json::Value> answers;  // one call each
    Steps steps;                       // between the locks, or all of them where there is no lock
};

Steps NothingToInstall(const AddOn& addOn) {
    return {Log("DoInstallPkg", "Nothing to install in [" + addOn.workDir + "].")};
}

const Steps kNoDownload = {"AddonsUpdate 1", "AddonsUpdate::ReadDownloadInfoFile '' '' ''", "~AddonsUpdate 1",
                           Log("ExecuteUpdate", "Failed to decompress auto update package patch.")};
const Json::Value kFolder = "folder";

const FailureCase kFailureCases[] = {
    {"download_not_readable", kDevicePack, true, "AddonsUpdate::ReadDownloadInfoFile", {-1}, kNoDownload},
    {"download_not_ready", kDevicePack, true, "AddonsUpdate::ReadDownloadInfoFile", {""}, kNoDownload},
    {"nothing_unpacked",
     kDevicePack,
     false,
     "lstat " + kDevicePack.fresh,
     {ENOENT},
     NothingToInstall(kDevicePack)},
    {"cut_unpacking",
     kDevicePack,
     false,
     "lstat " + kTarget + "/cv_addOns_name1.partial",
     {kFolder},
     NothingToInstall(kDevicePack)},
    {"empty_folder_unpacked",
     kLocalDisplay,
     false,
     "lstat " + kLocalDisplay.fresh + "/conf",
     {ENOENT},
     NothingToInstall(kLocalDisplay)},
    {"file_unpacked",
     kLocalDisplay,
     false,
     "lstat " + kLocalDisplay.fresh,
     {"file"},
     NothingToInstall(kLocalDisplay)},
    {"not_set_aside",
     kDevicePack,
     false,
     "rename",
     {EBUSY},
     kDevicePack.Prepare() + kScripts + Steps{kDevicePack.SetAside()[0]} + kDevicePack.NotReplaced() +
         kStart + kDevicePack.Drop()},
    {"place_taken_again",
     kDevicePack,
     false,
     "lstat " + kDevicePack.place,
     {kFolder, kFolder},
     kDevicePack.Prepare() + kScripts + kDevicePack.SetAside() + Steps{kDevicePack.Move()[0]} +
         kDevicePack.NotReplaced() + kStart + kDevicePack.Drop()},
    {"did_not_arrive",
     kDevicePack,
     false,
     "lstat " + kDevicePack.place,
     {kFolder, ENOENT, ENOENT},
     kDevicePack.Prepare() + kScripts + kDevicePack.SetAside() + kDevicePack.Move() +
         kDevicePack.NotReplaced() + kStart + kDevicePack.Drop()},
    {"left_where_it_was",
     kLocalDisplay,
     false,
     "lstat " + kLocalDisplay.fresh,
     {kFolder, kFolder},
     kLocalDisplay.Prepare() + Steps{"IsServiceRunning 6"} + kLocalDisplay.SetAside() + kLocalDisplay.Move() +
         kLocalDisplay.NotReplaced() + kLocalDisplay.Drop()},
};

class FailedUpdate : public Update, public testing::WithParamInterface<FailureCase> {};

TEST_P(FailedUpdate, StartsWhatItHasStoppedAndAnswers400) {
    const auto& [name, addOn, isDownload, call, answers, steps] = GetParam();
    fake::ClearScript();
    for (const Json::Value& answer : answers) {
        fake::AnswerOnce(call, answer);
    }
    Arrive(addOn);
    ExpectUpdate(addOn, isDownload ? "" : addOn.workDir,
                 addOn.Lock() + steps + addOn.UnlockPackage() + addOn.Unlock() + kFailed);
}

INSTANTIATE_TEST_SUITE_P(, FailedUpdate, testing::ValuesIn(kFailureCases),
                         [](const auto& row) { return std::string(row.param.name); });

// The lock file is left to its holder.
TEST_F(Update, FailsWithoutItsLocks) {
    const AddOn& addOn = kDevicePack;
    fake::AnswerOnce("BeginCriticalSection", -1);
    ExpectUpdate(addOn, addOn.workDir, Steps{addOn.Lock()[0], "~AddonsUpdate 1"} + kFailed);
    const std::string before = Calls();
    fake::AnswerOnce("BeginCriticalSection", 5);
    fake::AnswerOnce("BeginCriticalSection", -1);
    (void)Serve("1", addOn.workDir);
    EXPECT_EQ(
        before +
            fake::Lines(addOn.Request() + addOn.Lock() +
                        Steps{Log("ExecuteUpdate", "Failed to lock [" + addOn.Lock("Package") + "]."),
                              "EndCriticalSection 5", "unlink " + addOn.Lock("Update"), "~AddonsUpdate 1"} +
                        kFailed),
        Calls());
}

TEST_F(Update, IsNoneForAServiceWithoutPackages) {
    EXPECT_EQ(kFailed[0], Serve("3", ""));
    EXPECT_NE(std::string::npos, Calls().find(Log("DoInstallPkg", "Invalid service type")));
    EXPECT_EQ(std::string::npos, Calls().find("ReadDownloadInfoFile"));
    EXPECT_EQ(std::string::npos, Calls().find("Notify"));
}

// The new tree stays, and nobody hears of it.
TEST_F(Update, FailsWhenADownloadIsNotForgotten) {
    ArriveUnpacked(kDevicePack);
    fake::Answer("AddonsUpdate::ReadDownloadInfoFile", "/down/1");
    fake::Answer("AddonsUpdate::CleanDownloadResult", -1);
    EXPECT_EQ(kFailed[0], Serve("1", ""));
    EXPECT_NE(std::string::npos, Calls().find(kPostScripts[1]));
    EXPECT_EQ(std::string::npos, Calls().find("Notify"));
}

TEST_F(Update, TakesNoOtherFolderThanItsOwn) {
    const std::string dir = kDevicePack.workDir;
    for (const std::string& path :
         {std::string("/"), std::string("/etc/"), std::string("../"), dir.substr(0, dir.size() - 1),
          dir + "/", dir + "..", kLocalDisplay.workDir, dir + "\n", dir + std::string(1, '\0'),
          std::string("\0", 1)}) {
        EXPECT_EQ(kFailed[0], Serve("1", path)) << path;
    }
    EXPECT_EQ(std::string::npos, Calls().find("PLIBCExec"));
    EXPECT_EQ(std::string::npos, Calls().find("BeginCriticalSection"));
    Arrive(kDevicePack);
}

}  // namespace
