// "Update": what it runs and calls, in which order, and what it does when something fails.
#include "fake/script.h"

#include "cases.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <string>
#include <vector>

namespace {

const std::string kTarget = "/var/packages/Camvora/target";
const std::string kStartScript = "PLIBCExec " + kTarget + "/scripts/S82camvora.sh ";

// Besides the looks at the tree.
std::string Calls() {
    return fake::JournalWithout("lstat");
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
        return fake::Admission() +
               Steps{"GetParam service 0", R"(GetParam filePath "")", "AddonsUpdate " + number};
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
    const std::string mark = kTarget + "/cv_addOns_name1.partial";
    const std::string tar = "PLIBCExec /bin/tar -C " + addOn.workDir + " -xvf ";
    const Steps unpack = {"AddonsUpdate 1",
                          "AddonsUpdate::ReadDownloadInfoFile '' '' ''",
                          "~AddonsUpdate 1",
                          "mkdir " + mark,
                          "CVRm " + addOn.workDir,
                          "CreateFullDirPath " + addOn.workDir,
                          tar + "/down/1",
                          "nftw " + kTarget + "/cv_addOns_name1",
                          tar + addOn.workDir + "package.tgz",
                          "rmdir " + mark,
                          "CVRm /down/1"};
    ExpectUpdate(addOn, "",
                 addOn.Lock() + unpack + addOn.Prepare() + kScripts + addOn.Replace() + kPostScripts +
                     kStart + addOn.Drop() + addOn.UnlockPackage() +
                     Steps{"AddonsUpdate::CleanDownloadResult"} + addOn.Notify() + addOn.Unlock() +
                     Steps{"SetSuccess null"});
}

struct FailureCase {
    const char* name;
    bool isDownload;
    std::string call;
    std::vector<Json::Value> answers;  // one call each
    Steps steps;                       // between the locks
};

const Steps kNoDownload = {"AddonsUpdate 1", "AddonsUpdate::ReadDownloadInfoFile '' '' ''", "~AddonsUpdate 1",
                           Log("ExecuteUpdate", "Failed to decompress auto update package patch.")};
const Steps kNothing = {Log("DoInstallPkg", "Nothing to install in [" + kDevicePack.workDir + "].")};
const Steps kBegin = kDevicePack.Prepare() + kScripts;
const Steps kEnd = kDevicePack.NotReplaced() + kStart + kDevicePack.Drop();
const std::string kLookAtPlace = "lstat " + kDevicePack.place;
const std::string kLookAtFresh = "lstat " + kDevicePack.fresh;
const std::string kLookAtMark = "lstat " + kTarget + "/cv_addOns_name1.partial";
const Json::Value kFolder = "folder";

const FailureCase kFailureCases[] = {
    {"download_not_readable", true, "AddonsUpdate::ReadDownloadInfoFile", {-1}, kNoDownload},
    {"download_not_ready", true, "AddonsUpdate::ReadDownloadInfoFile", {""}, kNoDownload},
    {"nothing_unpacked", false, kLookAtFresh, {ENOENT}, kNothing},
    {"cut_unpacking", false, kLookAtMark, {kFolder}, kNothing},
    {"empty_folder_unpacked", false, kLookAtFresh + "/conf", {ENOENT}, kNothing},
    {"not_set_aside", false, "rename", {EBUSY}, kBegin + Steps{kDevicePack.SetAside()[0]} + kEnd},
    {"place_taken_again",
     false,
     kLookAtPlace,
     {kFolder, kFolder},
     kBegin + kDevicePack.SetAside() + Steps{kDevicePack.Move()[0]} + kEnd},
    {"did_not_arrive",
     false,
     kLookAtPlace,
     {kFolder, ENOENT, ENOENT},
     kBegin + kDevicePack.SetAside() + kDevicePack.Move() + kEnd},
};

class FailedUpdate : public Update, public testing::WithParamInterface<FailureCase> {};

TEST_P(FailedUpdate, StartsWhatItHasStoppedAndAnswers400) {
    const AddOn& addOn = kDevicePack;
    fake::ClearScript();
    for (const Json::Value& answer : GetParam().answers) {
        fake::AnswerOnce(GetParam().call, answer);
    }
    Arrive(addOn);
    ExpectUpdate(addOn, GetParam().isDownload ? "" : addOn.workDir,
                 addOn.Lock() + GetParam().steps + addOn.UnlockPackage() + addOn.Unlock() + kFailed);
}

INSTANTIATE_TEST_SUITE_P(, FailedUpdate, testing::ValuesIn(kFailureCases), CaseName<FailureCase>);

// The unpacked tree is where it was after the move.
TEST_F(Update, StartsTheLocalDisplayThatItDoesNotReplace) {
    const AddOn& addOn = kLocalDisplay;
    fake::AnswerOnce("lstat " + addOn.fresh, kFolder);
    fake::Answer("IsServiceRunning", true);
    ExpectUpdate(addOn, addOn.workDir,
                 addOn.Lock() + addOn.Prepare() + Steps{"IsServiceRunning 6"} + kStopDisplay +
                     addOn.SetAside() + addOn.Move() + addOn.NotReplaced() + kStartDisplay + addOn.Drop() +
                     addOn.UnlockPackage() + addOn.Unlock() + kFailed);
}

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
}

}  // namespace
