// Starting and stopping services: real processes, real locks, the notification and the log that follow.
#include "e2e/appliance.h"
#include "e2e/processes.h"
#include "support/program.h"

#include <SQLiteCpp/SQLiteCpp.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <future>
#include <map>
#include <thread>
#include <utility>

namespace e2e {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;
using Pids = std::vector<pid_t>;

constexpr auto kAtOnce = 1500ms;  // far below the two seconds that ending a stopped daemon takes

// The recorded status of a service, and whether it runs.
constexpr char kRuns[] = "1 true";
constexpr char kDied[] = "1 false";
constexpr char kStopped[] = "0 false";

bool IsDaemon(pid_t pid) {
    return NameOf(pid) == "camvora-daemon";
}

bool IsDaemonOfType(pid_t pid, int type) {
    const std::string line = ReadFile("/proc/" + std::to_string(pid) + "/cmdline");
    const std::string first = '\0' + std::to_string(type) + '\0';
    return IsDaemon(pid) && line.compare(std::min(line.find('\0'), line.size()), first.size(), first) == 0;
}

class ControlTest : public ApplianceTest {
protected:
    static void SetUpTestSuite() {
        Start();
        supervisor_ = appliance_->Supervisor();
        ASSERT_EQ(200, appliance_->Owner().Get("/health").status);
        ASSERT_TRUE(WaitUntil([] { return Descendants(supervisor_).size() == 3; }));  // the scheduler, too
        servers_ = Descendants(supervisor_);
    }

    void TearDown() override { EXPECT_TRUE(IsQuiet()); }

    // Sends "Enable" and its like, and expects the success that says nothing. Returns the request's id.
    static std::string Act(const std::string& method, int service) {
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
        return answer.requestId;
    }

    // Waits for the end too, and expects that it is told and logged.
    static void ActAndWait(const std::string& method, int service) {
        const std::size_t before = Notifications().size();
        const std::string requestId = Act(method, service);
        ASSERT_TRUE(WaitUntil([&] { return Notifications().size() > before; })) << method << " " << service;
        EXPECT_TRUE(IsQuiet());
        const std::string number = std::to_string(service);
        EXPECT_EQ("24 " + number + (method == "Enable" ? " 1 0" : " 0 0"), Notifications().back());
        EXPECT_EQ(std::vector<std::string>{"321913013 0 name " + number + " " + method},
                  OperationLog("?request=" + requestId));
    }

    std::string State(int service) {
        const Json::Value info = owner_.AddOns("GetInfo", Param("service", service)).Data();
        return info["status"].asString() + " " + info["blRunning"].asString();
    }
    bool IsDone(int service) {
        return owner_.AddOns("CheckEnableDone", Param("service", service)).Data()["blDone"].asBool();
    }

    static std::vector<std::string> Notifications() {
        SQLite::Database database(appliance_->PackagePath("target/@CVData/camvora.db"), SQLite::OPEN_READONLY,
                                  5000);
        SQLite::Statement statement(
            database, "SELECT type || ' ' || text1 || ' ' || text2 || ' ' || text3 FROM notifications");
        std::vector<std::string> rows;
        while (statement.executeStep()) {
            rows.push_back(statement.getColumn(0).getString());
        }
        return rows;
    }
    static std::vector<std::string> OperationLog(const std::string& query = "") {
        const Answer answer = appliance_->Owner().Get("/operationlog" + query);
        std::vector<std::string> entries;
        for (const Json::Value& entry : answer.Data()["entries"]) {
            const Json::Value& texts = entry["texts"];
            entries.push_back(entry["event"].asString() + " " + entry["number"].asString() + " " +
                              texts[0].asString() + " " + texts[1].asString() + texts[2].asString());
        }
        return entries;
    }

    // Actions that have come to nothing; the log has a line for each.
    static std::size_t FailedActions() {
        const std::string log = appliance_->Log();
        const std::string line = "Failed to execute service control.";
        std::size_t count = 0;
        for (std::size_t at = 0; (at = log.find(line, at)) != std::string::npos; at += line.size()) {
            ++count;
        }
        return count;
    }

    // Lock files and their like.
    static bool IsAnyFileLeft() {
        const fs::directory_iterator files(appliance_->TemporaryPath());
        return std::any_of(begin(files), end(files), [](const fs::directory_entry& file) {
            return file.path().filename().string().rfind("cv_", 0) == 0;
        });
    }

    static Pids Daemons(int type) {
        return Descendants(supervisor_, [type](pid_t pid) { return IsDaemonOfType(pid, type); });
    }
    static pid_t Daemon(int type) {
        const Pids daemons = Daemons(type);
        EXPECT_EQ(1U, daemons.size());
        return daemons.at(0);  // throws: some take a number for "all"
    }

    // Processes of requests and actions, and dead ones of any kind that nobody reaped.
    static Pids Workers() {
        return Descendants(supervisor_, [](pid_t pid) {
            const bool isServer = std::find(servers_.begin(), servers_.end(), pid) != servers_.end();
            return !isServer && !(IsDaemon(pid) && IsAlive(pid));
        });
    }
    static bool IsQuiet() {
        const auto isIdle = [] { return Workers().empty() && !IsAnyFileLeft(); };
        if (!WaitUntil(isIdle)) {
            return false;
        }
        std::this_thread::sleep_for(20ms);  // an orphan can be overseen while it moves to the supervisor
        return WaitUntil(isIdle);
    }

    // Starts service 3, then makes its next action take the two seconds of a daemon that does not end.
    // Returns the detached child and the action process of that action.
    Pids BeginSlowAction() {
        ActAndWait("Enable", 3);
        EXPECT_EQ(0, kill(Daemon(1), SIGSTOP));
        Act("Enable", 3);
        EXPECT_TRUE(WaitUntil([this] { return State(3)[0] == '4'; }));
        EXPECT_TRUE(WaitUntil([] { return Workers().size() == 2; }));
        return Workers();
    }

    inline static pid_t supervisor_ = -1;
    inline static Pids servers_;
};

struct ServiceCase {
    int service;
    std::vector<int> daemons;  // one of each of these types
};

TEST_F(ControlTest, ServicesStartRestartAndStop) {
    for (const auto& [service, types] : {ServiceCase{1, {}}, ServiceCase{2, {}}, ServiceCase{3, {1}},
                                         ServiceCase{5, {6}}, ServiceCase{6, {11, 12}}}) {
        SCOPED_TRACE(service);
        ActAndWait("Enable", service);
        EXPECT_EQ(kRuns, State(service));
        EXPECT_TRUE(IsDone(service));
        std::map<int, pid_t> replaced;
        for (const int type : types) {
            replaced[type] = Daemon(type);
        }

        const std::size_t told = Notifications().size() + OperationLog().size();
        Act("Restart", service);
        EXPECT_EQ(told, Notifications().size() + OperationLog().size());
        EXPECT_EQ(kRuns, State(service));
        for (const int type : types) {
            EXPECT_NE(replaced[type], Daemon(type));
        }

        ActAndWait("Disable", service);
        EXPECT_EQ(kStopped, State(service));
        EXPECT_TRUE(Descendants(supervisor_, IsDaemon).empty());
    }
}

TEST_F(ControlTest, DisableFollowsTheEnableThatIsAtWork) {
    const std::size_t failed = FailedActions();
    BeginSlowAction();
    Act("Disable", 3);
    EXPECT_TRUE(IsQuiet());
    EXPECT_EQ(failed, FailedActions());
    const std::vector<std::string> told = Notifications();
    ASSERT_LE(2U, told.size());
    EXPECT_EQ("24 3 1 0", told[told.size() - 2]);
    EXPECT_EQ("24 3 0 0", told.back());
    EXPECT_EQ(kStopped, State(3));
}

TEST_F(ControlTest, EnableAnswersWhileTheActionRuns) {
    BeginSlowAction();
    const pid_t replaced = Daemon(1);
    EXPECT_TRUE(IsAnyFileLeft());
    EXPECT_NE(kRuns, State(3));
    EXPECT_TRUE(IsDone(3));  // waits for it
    EXPECT_EQ(kRuns, State(3));
    EXPECT_NE(replaced, Daemon(1));
}

TEST_F(ControlTest, ADaemonThatDiesIsSeenAndReaped) {
    ActAndWait("Enable", 3);
    const pid_t daemon = Daemon(1);
    kill(daemon, SIGKILL);
    EXPECT_TRUE(WaitUntil([daemon] { return !fs::exists("/proc/" + std::to_string(daemon)); }));
    EXPECT_EQ(kDied, State(3));
    EXPECT_TRUE(Daemons(1).empty());
    ActAndWait("Enable", 3);
    EXPECT_EQ(kRuns, State(3));
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

// Wherever an action was: before its lock, in it, or past it.
TEST_F(ControlTest, TheNextEnableWorksAtWhateverStepTheLastWasKilled) {
    for (const int delayMs : {0, 1, 2, 4, 6, 8, 12, 16, 24, 32}) {
        SCOPED_TRACE(delayMs);
        for (const char* method : {"Enable", "Restart"}) {
            const auto call = std::async(std::launch::async, [method] {
                return appliance_->Owner().AddOns(method, Param("service", 3));
            });
            std::this_thread::sleep_for(std::chrono::milliseconds(delayMs));
            for (const pid_t worker : Workers()) {
                kill(worker, SIGKILL);
            }
            call.wait();
            EXPECT_TRUE(IsQuiet());
            ActAndWait("Enable", 3);
            EXPECT_EQ(kRuns, State(3));
            EXPECT_TRUE(IsAlive(Daemon(1)));
        }
    }
}

// Nobody else comes: what the dead have left must not stand for an action under way.
TEST_F(ControlTest, NothingSeemsUnderWayAfterwards) {
    using Killed = std::vector<std::size_t>;  // the detached child, the action process or both
    for (const Killed& killed : {Killed{0}, Killed{1}, Killed{0, 1}}) {
        const Pids workers = BeginSlowAction();
        for (const std::size_t which : killed) {
            EXPECT_EQ(0, kill(workers.at(which), SIGKILL)) << which;
        }
        EXPECT_TRUE(IsQuiet());
        const auto begin = Clock::now();
        EXPECT_TRUE(IsDone(3));
        EXPECT_LT(Clock::now() - begin, kAtOnce);
        ActAndWait("Enable", 3);
        EXPECT_EQ(kRuns, State(3));
        EXPECT_TRUE(IsAlive(Daemon(1)));
    }
}

TEST_F(ControlTest, ManyAtOnceAreAnsweredAtOnceAndRunOneAfterTheOther) {
    constexpr std::size_t kRequests = 50;
    const std::size_t before = Notifications().size() + FailedActions();
    std::vector<std::future<std::string>> calls;
    for (std::size_t i = 0; i < kRequests; ++i) {
        calls.push_back(std::async(std::launch::async, Act, i % 2 == 0 ? "Enable" : "Disable", 3));
    }
    calls.clear();  // waits for them
    EXPECT_TRUE(IsQuiet());
    EXPECT_EQ(before + kRequests, Notifications().size() + FailedActions());
    const bool isStarted = Notifications().back() == "24 3 1 0";
    EXPECT_EQ(isStarted ? kRuns : kStopped, State(3));
    EXPECT_EQ(isStarted ? 1U : 0U, Daemons(1).size());
}

TEST_F(ControlTest, NumbersThatAreNoServiceDoNothingAndAreTold) {
    for (const int number : {7, -1, 2147483647}) {
        ActAndWait("Enable", number);
        Act("Restart", number);
    }
}

// Else an action that was killed would bring a daemon up after a stop that could not see it.
TEST(DaemonProgram, ComesUpOnlyBesideItsStarter) {
    constexpr int kLivedOn = 124;  // says timeout
    constexpr char kRun[] = "exec timeout 1 /var/packages/Camvora/target/bin/camvora-daemon 1 ";
    Appliance appliance;
    appliance.Stop();
    for (const auto& [starter, status] : {std::pair{"$$", kLivedOn}, std::pair{"0", 1}}) {
        const Program daemon({appliance.PathOf("launch"), "--run", "sh", "-c", std::string(kRun) + starter},
                             {"PATH=/usr/bin:/bin"});
        EXPECT_EQ(status, daemon.Wait().status) << starter << daemon.Errors();
    }
}

}  // namespace
}  // namespace e2e
