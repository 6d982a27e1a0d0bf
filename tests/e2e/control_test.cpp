// Starting and stopping services: real processes, real locks, the notification and the log that follow.
#include "e2e/appliance.h"
#include "e2e/processes.h"
#include "e2e/rawconnection.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <gtest/gtest.h>
#include <json/reader.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <fstream>
#include <future>
#include <memory>
#include <sstream>
#include <vector>

namespace e2e {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;
using Pids = std::vector<pid_t>;

constexpr auto kAtOnce = 1500ms;  // far below the two seconds that ending a stopped daemon takes
constexpr int kStopped = 0;
constexpr int kStarted = 1;
constexpr int kInProgress = 4;

class ControlTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        appliance_ = std::make_unique<Appliance>();
        supervisor_ = appliance_->Supervisor();
        ASSERT_EQ(200, appliance_->Owner().Get("/health").status);
        ASSERT_TRUE(WaitUntil([] { return Descendants(supervisor_).size() == 2; }));
        servers_ = Descendants(supervisor_);
    }
    static void TearDownTestSuite() { appliance_.reset(); }

    void TearDown() override { EXPECT_TRUE(IsQuiet()); }

    // Sends "Enable" and its like, and expects the success that says nothing.
    void Act(const std::string& method, int service) {
        Json::Value params = Param("service", service);
        params["serviceName"] = "name " + std::to_string(service);
        params["description"] = method;
        const auto begin = Clock::now();
        const Answer answer = appliance_->Owner().AddOns(method, params);
        EXPECT_TRUE(answer.Succeeded()) << method << " " << service;
        EXPECT_TRUE(answer.body["data"].isNull());
        if (method != "Restart") {
            EXPECT_LT(Clock::now() - begin, kAtOnce) << method << " " << service;
        }
    }

    void ActAndWait(const std::string& method, int service) {
        const std::size_t before = Notifications().size();
        Act(method, service);
        EXPECT_TRUE(WaitUntil([&] { return Notifications().size() > before; })) << method << " " << service;
        EXPECT_TRUE(IsQuiet());
    }

    Json::Value Info(int service) { return owner_.AddOns("GetInfo", Param("service", service)).Data(); }
    int Status(int service) { return Info(service)["status"].asInt(); }
    bool IsRunning(int service) { return Info(service)["blRunning"].asBool(); }
    bool IsDone(int service) {
        return owner_.AddOns("CheckEnableDone", Param("service", service)).Data()["blDone"].asBool();
    }

    static std::vector<std::string> Rows(const std::string& query) {
        const fs::path path = appliance_->PackagePath("target/@CVData/camvora.db");
        SQLite::Database database(path.string(), SQLite::OPEN_READONLY, 5000);
        SQLite::Statement statement(database, query);
        std::vector<std::string> rows;
        while (statement.executeStep()) {
            rows.push_back(statement.getColumn(0).getString());
        }
        return rows;
    }
    static std::vector<std::string> Notifications() {
        return Rows("SELECT type || ' ' || text1 || ' ' || text2 || ' ' || text3 FROM notifications");
    }
    static std::vector<std::string> OperationLog() {
        return Rows(
            "SELECT event || ' ' || number || ' ' || text1 || ' ' || text2 || text3 FROM operation_log");
    }

    // The appliance's own /tmp, wherever it is.
    static fs::path LockFile(int service) {
        return "/proc/" + std::to_string(supervisor_) + "/root/tmp/cv_service" + std::to_string(service) +
               ".lock";
    }
    static bool IsAnyFileLeft() {
        const fs::directory_iterator files(LockFile(0).parent_path());
        return std::any_of(begin(files), end(files), [](const fs::directory_entry& file) {
            return file.path().filename().string().rfind("cv_", 0) == 0;
        });
    }

    static Pids Daemons(int type) {
        Pids daemons = Descendants(supervisor_);
        daemons.erase(std::remove_if(daemons.begin(), daemons.end(),
                                     [type](pid_t pid) {
                                         const std::string file = "/proc/" + std::to_string(pid) + "/cmdline";
                                         const std::string end = '\0' + std::to_string(type) + '\0';
                                         const std::string line = ReadFile(file);
                                         return NameOf(pid) != "camvora-daemon" || line.size() < end.size() ||
                                                line.substr(line.size() - end.size()) != end;
                                     }),
                      daemons.end());
        return daemons;
    }
    static pid_t Daemon(int type) {
        const Pids daemons = Daemons(type);
        EXPECT_EQ(1U, daemons.size());
        return daemons.empty() ? -1 : daemons.front();
    }

    // Processes of requests and actions, parents before their children; dead ones that nobody reaped too.
    static Pids Workers() {
        Pids workers = Descendants(supervisor_);
        workers.erase(std::remove_if(workers.begin(), workers.end(),
                                     [](pid_t pid) {
                                         const bool isServer = std::find(servers_.begin(), servers_.end(),
                                                                         pid) != servers_.end();
                                         return isServer || (NameOf(pid) == "camvora-daemon" && IsAlive(pid));
                                     }),
                      workers.end());
        return workers;
    }
    static testing::AssertionResult IsQuiet() {
        if (WaitUntil([] { return Workers().empty() && !IsAnyFileLeft(); })) {
            return testing::AssertionSuccess();
        }
        testing::AssertionResult failure = testing::AssertionFailure();
        for (const pid_t pid : Workers()) {
            failure << "process " << pid << " " << NameOf(pid) << (IsAlive(pid) ? "\n" : " (dead)\n");
        }
        return failure << (IsAnyFileLeft() ? "a file is left" : "");
    }

    // Starts service 3, then makes its next action take the two seconds of a daemon that does not end.
    // Returns the detached child and the action process of that action.
    Pids BeginSlowAction() {
        ActAndWait("Enable", 3);
        EXPECT_EQ(0, kill(Daemon(1), SIGSTOP));
        Act("Enable", 3);
        EXPECT_TRUE(WaitUntil([this] { return Status(3) == kInProgress; }));
        Pids workers;
        EXPECT_TRUE(WaitUntil([&workers] { return (workers = Workers()).size() == 2; }));
        return workers;
    }

    static std::unique_ptr<Appliance> appliance_;
    static pid_t supervisor_;
    static Pids servers_;
    HttpCalls owner_ = appliance_->Owner();
};

std::unique_ptr<Appliance> ControlTest::appliance_;
pid_t ControlTest::supervisor_;
Pids ControlTest::servers_;

struct ServiceCase {
    int service;
    std::vector<int> daemons;
};

const ServiceCase kServiceCases[] = {{1, {}}, {2, {}}, {3, {1}}, {5, {6}}, {6, {11, 12}}};

class ServiceTest : public ControlTest, public testing::WithParamInterface<ServiceCase> {
protected:
    Pids AllDaemons() const {
        Pids all;
        for (const int type : GetParam().daemons) {
            const Pids daemons = Daemons(type);
            all.insert(all.end(), daemons.begin(), daemons.end());
        }
        return all;
    }
};

TEST_P(ServiceTest, StartsRestartsAndStops) {
    const int service = GetParam().service;
    const std::string number = std::to_string(service);
    ActAndWait("Enable", service);
    EXPECT_EQ("24 " + number + " 1 0", Notifications().back());
    EXPECT_EQ("321913013 0 name " + number + " Enable", OperationLog().back());
    EXPECT_EQ(kStarted, Status(service));
    EXPECT_TRUE(IsRunning(service));
    EXPECT_TRUE(IsDone(service));
    const Pids first = AllDaemons();
    EXPECT_EQ(GetParam().daemons.size(), first.size());

    const std::size_t notified = Notifications().size();
    const std::size_t logged = OperationLog().size();
    Act("Restart", service);
    EXPECT_EQ(notified, Notifications().size());
    EXPECT_EQ(logged, OperationLog().size());
    EXPECT_EQ(kStarted, Status(service));
    EXPECT_TRUE(IsRunning(service));
    const Pids second = AllDaemons();
    EXPECT_EQ(first.size(), second.size());
    for (const pid_t pid : second) {
        EXPECT_EQ(0, std::count(first.begin(), first.end(), pid));
    }

    ActAndWait("Disable", service);
    EXPECT_EQ("24 " + number + " 0 0", Notifications().back());
    EXPECT_EQ("321913013 0 name " + number + " Disable", OperationLog().back());
    EXPECT_EQ(kStopped, Status(service));
    EXPECT_FALSE(IsRunning(service));
    EXPECT_EQ(0U, AllDaemons().size());
}

INSTANTIATE_TEST_SUITE_P(, ServiceTest, testing::ValuesIn(kServiceCases),
                         [](const auto& row) { return "service" + std::to_string(row.param.service); });

TEST_F(ControlTest, ClientsAreToldAtOnce) {
    RawConnection stream(appliance_->Url());
    stream.Send("GET /events HTTP/1.1\r\nAuthorization: Bearer " + appliance_->Token() + "\r\n\r\n");
    stream.ReceiveUntil("event: snapshot");
    Act("Enable", 1);
    const std::string event = stream.ReceiveUntil(R"(["1","1","0"])");
    EXPECT_NE(std::string::npos, event.find(R"("texts":["1","1","0"])")) << event;
}

TEST_F(ControlTest, EnableAnswersWhileTheActionRuns) {
    const pid_t replaced = (BeginSlowAction(), Daemon(1));
    EXPECT_TRUE(fs::exists(LockFile(3)));
    EXPECT_FALSE(IsRunning(3) && Status(3) == kStarted);
    EXPECT_TRUE(IsDone(3));  // waits for it
    EXPECT_EQ(kStarted, Status(3));
    EXPECT_NE(replaced, Daemon(1));
}

TEST_F(ControlTest, EnableAndDisableAtOnceAreBothDone) {
    for (int round = 0; round < 5; ++round) {
        const std::size_t before = Notifications().size();
        Act("Enable", 3);
        Act("Disable", 3);
        EXPECT_TRUE(WaitUntil([&] { return Notifications().size() == before + 2; }));
        EXPECT_TRUE(IsQuiet());
        const int last = Notifications().back() == "24 3 1 0" ? kStarted : kStopped;
        EXPECT_EQ(last, Status(3));
        EXPECT_EQ(last == kStarted, IsRunning(3));
        EXPECT_EQ(last == kStarted ? 1U : 0U, Daemons(1).size());
    }
}

TEST_F(ControlTest, RestartOfTheLocalDisplayLogsOutAndLeavesOneDaemonOfEach) {
    ActAndWait("Enable", 6);
    const pid_t display = Daemon(11);
    const pid_t helper = Daemon(12);
    const fs::path login = appliance_->PackagePath("target/@CVData/preference/local_display_login/status");
    fs::create_directories(login.parent_path());
    std::ofstream(login) << "somebody";
    Act("Restart", 6);
    EXPECT_FALSE(fs::exists(login));
    EXPECT_NE(display, Daemon(11));
    EXPECT_NE(helper, Daemon(12));
    EXPECT_TRUE(fs::exists(appliance_->PackagePath("target/@CVData/run/localdisplayd.pid")));
    EXPECT_TRUE(IsRunning(6));
}

TEST_F(ControlTest, ADaemonThatDiesIsSeenAndReaped) {
    ActAndWait("Enable", 3);
    const pid_t daemon = Daemon(1);
    kill(daemon, SIGKILL);
    EXPECT_TRUE(WaitUntil([daemon] { return !fs::exists("/proc/" + std::to_string(daemon)); }));
    EXPECT_FALSE(IsRunning(3));
    EXPECT_EQ(kStarted, Status(3));
    EXPECT_EQ(0U, Daemons(1).size());
    ActAndWait("Enable", 3);
    EXPECT_TRUE(IsRunning(3));
}

TEST_F(ControlTest, ADaemonHasNothingButItsLock) {
    ActAndWait("Enable", 3);
    std::vector<std::string> open;
    for (const auto& entry : fs::directory_iterator("/proc/" + std::to_string(Daemon(1)) + "/fd")) {
        open.push_back(fs::read_symlink(entry.path()).filename());
    }
    std::sort(open.begin(), open.end());
    EXPECT_EQ((std::vector<std::string>{"daemon-1.lock", "null", "null", "null"}), open);
    EXPECT_NE("", ReadFile(appliance_->PackagePath("target/@CVData/run/service3d.status")));
}

struct KillCase {
    const char* name;
    bool child;
    bool action;
};

const KillCase kKillCases[] = {
    {"action_process", false, true}, {"detached_child", true, false}, {"both", true, true}};

class KillTest : public ControlTest, public testing::WithParamInterface<KillCase> {
protected:
    void BeginSlowActionAndKill() {
        const Pids workers = BeginSlowAction();
        ASSERT_EQ(2U, workers.size());
        if (GetParam().child) {
            kill(workers[0], SIGKILL);
        }
        if (GetParam().action) {
            kill(workers[1], SIGKILL);
        }
    }
};

TEST_P(KillTest, TheNextEnableWorks) {
    BeginSlowActionAndKill();
    ActAndWait("Enable", 3);
    EXPECT_EQ("24 3 1 0", Notifications().back());
    EXPECT_EQ(kStarted, Status(3));
    EXPECT_TRUE(IsRunning(3));
    EXPECT_TRUE(IsAlive(Daemon(1)));
}

// Nobody else comes: what the dead have left must not stand for an action under way.
TEST_P(KillTest, NothingSeemsUnderWayAfterwards) {
    BeginSlowActionAndKill();
    EXPECT_TRUE(IsQuiet());
    const auto begin = Clock::now();
    EXPECT_TRUE(IsDone(3));
    EXPECT_LT(Clock::now() - begin, kAtOnce);
    ActAndWait("Disable", 3);
    EXPECT_EQ(0U, Daemons(1).size());
}

INSTANTIATE_TEST_SUITE_P(, KillTest, testing::ValuesIn(kKillCases),
                         [](const auto& row) { return std::string(row.param.name); });

std::size_t CountOf(const std::string& text, const std::string& part) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
        ++count;
    }
    return count;
}

TEST_F(ControlTest, ManyAtOnceAreAnsweredAtOnceAndRunOneAfterTheOther) {
    constexpr std::size_t kRequests = 20;
    const std::string failed = "Failed to execute service control.";
    const std::size_t before = Notifications().size() + CountOf(appliance_->Log(), failed);
    std::vector<std::future<void>> calls;
    for (std::size_t i = 0; i < kRequests; ++i) {
        calls.push_back(std::async(std::launch::async, [this] { Act("Enable", 3); }));
    }
    for (auto& call : calls) {
        call.get();
    }
    EXPECT_TRUE(IsQuiet());
    EXPECT_EQ(before + kRequests, Notifications().size() + CountOf(appliance_->Log(), failed));
    EXPECT_TRUE(IsRunning(3));
    EXPECT_TRUE(IsAlive(Daemon(1)));
}

TEST_F(ControlTest, NumbersThatAreNoServiceDoNothingAndAreTold) {
    for (const char* number : {"7", "-1", "2147483647"}) {
        ActAndWait("Enable", std::stoi(number));
        EXPECT_EQ(std::string("24 ") + number + " 1 0", Notifications().back());
        Act("Restart", std::stoi(number));
    }
}

TEST_F(ControlTest, AServiceThatIsNoNumberChangesNothing) {
    const std::size_t before = Notifications().size();
    for (const char* method : {"Enable", "Disable", "Restart", "CheckEnableDone"}) {
        const Answer answer = owner_.AddOns(method, Param("service", "3"));
        EXPECT_EQ(500, answer.status) << method;
        EXPECT_EQ(1011, answer.Code()) << method;
    }
    EXPECT_TRUE(IsQuiet());
    EXPECT_EQ(before, Notifications().size());
}

bool ReadJson(const std::string& line, Json::Value& value) {
    std::istringstream text(line);
    return Json::parseFromStream(Json::CharReaderBuilder(), text, &value, nullptr);
}

TEST_F(ControlTest, TextsOfTheCallerForgeNoLine) {
    const std::string hostile = "a\r\n{\"text\":\"forged\"}\n\x1b[31m\x7f";
    Json::Value params = Param("service", 1);
    for (const std::string& text : {hostile, std::string(1'000'000, 'x')}) {
        params["serviceName"] = text;
        params["description"] = text;
        const std::size_t before = OperationLog().size();
        EXPECT_TRUE(owner_.AddOns("Enable", params).Succeeded());
        EXPECT_TRUE(WaitUntil([&] { return OperationLog().size() == before + 1; }));
    }
    std::istringstream log(appliance_->Log());
    for (std::string line; std::getline(log, line);) {
        Json::Value parsed;
        EXPECT_TRUE(ReadJson(line, parsed) && parsed.isObject()) << line;
        EXPECT_NE("forged", parsed["text"].asString());
    }
}

}  // namespace
}  // namespace e2e
