#include "e2e/appliance.h"

#include "e2e/processes.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <utility>

namespace e2e {

namespace {

namespace fs = std::filesystem;

constexpr char kPackage[] = "var/packages/Camvora";
constexpr char kTestModule[] = "target/webapi/TestModule.so";
constexpr std::chrono::seconds kStartLimit{20};
constexpr std::chrono::seconds kStopLimit{20};

fs::path MakeTemporaryFolder() {
    std::string path = (fs::temp_directory_path() / "camvora-e2e-XXXXXX").string();
    if (mkdtemp(path.data()) == nullptr) {
        throw std::runtime_error("cannot make " + path);
    }
    return path;
}

// Runs a program with its output in a file. Returns its process.
pid_t Run(const std::vector<std::string>& command, const fs::path& output) {
    std::vector<char*> arguments;
    arguments.reserve(command.size() + 1);
    for (const std::string& argument : command) {
        arguments.push_back(const_cast<char*>(argument.c_str()));
    }
    arguments.push_back(nullptr);
    const pid_t pid = fork();
    if (pid == 0) {
        const int file = open(output.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
        dup2(file, STDOUT_FILENO);
        dup2(file, STDERR_FILENO);
        execv(arguments[0], arguments.data());
        _exit(127);
    }
    return pid;
}

int ExitStatusOf(pid_t pid) {
    int status = 0;
    return waitpid(pid, &status, 0) == pid && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

std::string FirstLine(const fs::path& path) {
    const std::string text = ReadFile(path);
    return text.substr(0, text.find('\n'));
}

}  // namespace

std::string ReadFile(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

Appliance::Appliance(const std::vector<std::string>& hostOptions) : folder_(MakeTemporaryFolder()) {
    LayOut();
    Start(hostOptions);
    WaitUntilServing();
}

Appliance::~Appliance() {
    if (launcher_ > 0) {
        Stop();
    }
    if (testing::Test::HasFailure()) {
        std::cerr << "Diagnostic log:\n" << Log() << "Output:\n" << ReadFile(folder_ / "output");
    }
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
}

std::vector<std::string> Appliance::WithTestModule(std::vector<std::string> hostOptions) {
    hostOptions.insert(hostOptions.end(), {"--module", std::string("/") + kPackage + "/" + kTestModule});
    return hostOptions;
}

void Appliance::LayOut() const {
    if (ExitStatusOf(Run({CAMVORA_LAY_OUT, CAMVORA_BUILD_FOLDER, folder_}, folder_ / "output")) != 0) {
        throw std::runtime_error("cannot lay the appliance out:\n" + ReadFile(folder_ / "output"));
    }
    fs::copy_file(CAMVORA_TEST_MODULE, PackagePath(kTestModule));
}

void Appliance::Start(const std::vector<std::string>& hostOptions) {
    std::vector<std::string> command = {folder_ / "launch", "--port", "0"};
    command.insert(command.end(), hostOptions.begin(), hostOptions.end());
    launcher_ = Run(command, folder_ / "output");
}

void Appliance::WaitUntilServing() {
    const fs::path address = PackagePath("target/@CVData/run/address");
    const bool serves = WaitUntil([&] { return fs::exists(address) || !IsAlive(launcher_); }, kStartLimit);
    url_ = FirstLine(address);
    token_ = FirstLine(folder_ / "token");
    if (!serves || url_.empty()) {
        kill(launcher_, SIGTERM);
        (void)ExitStatusOf(launcher_);
        throw std::runtime_error("the appliance does not start:\n" + ReadFile(folder_ / "output"));
    }
}

void Appliance::Stop() {
    const std::vector<pid_t> processes = Descendants(launcher_);
    kill(launcher_, SIGTERM);
    EXPECT_TRUE(WaitUntil([&] { return !IsAlive(launcher_); }, kStopLimit)) << "the launcher still runs";
    EXPECT_EQ(0, WaitForEnd());
    for (const pid_t pid : processes) {
        EXPECT_FALSE(IsAlive(pid)) << "process " << pid << " (" << NameOf(pid) << ") is left";
    }
    EXPECT_FALSE(fs::exists(PackagePath("target/@CVData/run/address")));
}

int Appliance::WaitForEnd() {
    return ExitStatusOf(std::exchange(launcher_, -1));
}

bool Appliance::IsRunning() const {
    return launcher_ > 0 && IsAlive(launcher_);
}

fs::path Appliance::PackagePath(const std::string& path) const {
    return folder_ / kPackage / path;
}

std::string Appliance::Log() const {
    return ReadFile(PackagePath("target/@CVData/log/camvora.log"));
}

bool Appliance::WaitForRequests(std::size_t count) const {
    return WaitUntil([&] { return Descendants(RequestServer()).size() == count; });
}

std::vector<pid_t> Appliance::HostProcesses() const {
    std::vector<pid_t> processes = Descendants(launcher_);
    processes.erase(std::remove_if(processes.begin(), processes.end(),
                                   [](pid_t pid) { return NameOf(pid) != "camvora-host"; }),
                    processes.end());
    return processes;
}

pid_t Appliance::Supervisor() const {
    return HostProcesses().at(0);
}

pid_t Appliance::RequestServer() const {
    const std::vector<pid_t> processes = HostProcesses();
    const auto afterSupervisor = processes.empty() ? processes.end() : processes.begin() + 1;
    const auto found =
        std::find_if(afterSupervisor, processes.end(), [](pid_t pid) { return ThreadCount(pid) == 1; });
    return found == processes.end() ? -1 : *found;
}

pid_t Appliance::HttpProcess() const {
    const std::vector<pid_t> processes = HostProcesses();
    const auto found =
        std::find_if(processes.begin(), processes.end(), [](pid_t pid) { return ThreadCount(pid) > 1; });
    return found == processes.end() ? -1 : *found;
}

}  // namespace e2e
