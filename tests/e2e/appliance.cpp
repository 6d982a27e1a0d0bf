#include "e2e/appliance.h"

#include "e2e/processes.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <stdexcept>

namespace e2e {

namespace {

namespace fs = std::filesystem;

constexpr char kPackage[] = "var/packages/Camvora";
constexpr char kTestModule[] = "target/webapi/TestModule.so";
constexpr char kAddress[] = "target/@CVData/run/address";
constexpr std::chrono::seconds kStartLimit{20};
constexpr std::chrono::seconds kStopLimit{20};

std::vector<std::string> Environment() {
    return {std::string("PATH=") + std::getenv("PATH")};
}

std::string FirstLine(const std::string& text) {
    return text.substr(0, text.find('\n'));
}

bool IsOfHost(pid_t pid) {
    return NameOf(pid) == "camvora-host";
}

pid_t FirstOf(const std::vector<pid_t>& processes) {
    return processes.empty() ? -1 : processes.front();
}

}  // namespace

Appliance::Appliance(const std::vector<std::string>& hostOptions) {
    LayOut();
    Launch(hostOptions);
}

void Appliance::Launch(const std::vector<std::string>& hostOptions) {
    fs::remove(PackagePath(kAddress));  // of a run that was killed
    std::vector<std::string> command = {folder_.PathOf("launch"), "--port", "0"};
    command.insert(command.end(), hostOptions.begin(), hostOptions.end());
    launcher_ = std::make_unique<Program>(command, Environment());
    WaitUntilServing();
}

Appliance::~Appliance() {
    if (launcher_ != nullptr) {
        Stop();
    }
    if (testing::Test::HasFailure()) {
        std::cerr << "Diagnostic log:\n" << Log() << "Errors of the launcher:\n" << errors_;
    }
}

std::vector<std::string> Appliance::WithTestModule(std::vector<std::string> hostOptions) {
    hostOptions.insert(hostOptions.end(), {"--module", std::string("/") + kPackage + "/" + kTestModule});
    return hostOptions;
}

void Appliance::LayOut() const {
    const Outcome outcome =
        Program({CAMVORA_LAY_OUT, CAMVORA_BUILD_FOLDER, folder_.Path()}, Environment()).Wait();
    if (outcome.status != 0) {
        throw std::runtime_error("cannot lay the appliance out:\n" + outcome.err);
    }
    fs::copy_file(CAMVORA_TEST_MODULE, PackagePath(kTestModule));
}

void Appliance::WaitUntilServing() {
    const fs::path address = PackagePath(kAddress);
    WaitUntil([&] { return fs::exists(address) || !IsRunning(); }, kStartLimit);
    url_ = FirstLine(ReadFile(address));
    token_ = FirstLine(folder_.Read("token"));
    if (url_.empty()) {
        kill(launcher_->Pid(), SIGTERM);
        (void)WaitForEnd();
        throw std::runtime_error("the appliance does not start:\n" + errors_);
    }
}

void Appliance::Stop() {
    const std::vector<pid_t> processes = Descendants(launcher_->Pid());
    kill(launcher_->Pid(), SIGTERM);
    EXPECT_TRUE(WaitUntil([this] { return !IsRunning(); }, kStopLimit)) << "the launcher still runs";
    EXPECT_EQ(0, WaitForEnd());
    for (const pid_t pid : processes) {
        EXPECT_FALSE(IsAlive(pid)) << "process " << pid << " (" << NameOf(pid) << ") is left";
    }
    EXPECT_FALSE(fs::exists(PackagePath(kAddress)));
}

void Appliance::Kill() {
    std::vector<pid_t> processes = Descendants(launcher_->Pid());
    processes.insert(processes.begin(), launcher_->Pid());
    for (const pid_t pid : processes) {
        kill(pid, SIGKILL);
    }
    (void)WaitForEnd();
    EXPECT_TRUE(WaitUntil([&] { return std::none_of(processes.begin(), processes.end(), IsAlive); }));
}

int Appliance::WaitForEnd() {
    const Outcome outcome = launcher_->Wait();
    launcher_.reset();
    errors_ = outcome.err;
    return outcome.status;
}

bool Appliance::IsRunning() const {
    return IsAlive(launcher_->Pid());
}

fs::path Appliance::TemporaryPath() const {
    return "/proc/" + std::to_string(Supervisor()) + "/root/tmp";
}

fs::path Appliance::PackagePath(const std::string& path) const {
    return fs::path(folder_.PathOf(kPackage)) / path;
}

std::string Appliance::Log() const {
    return ReadFile(PackagePath("target/@CVData/log/camvora.log"));
}

bool Appliance::WaitForRequests(std::size_t count) const {
    return WaitUntil([&] { return Descendants(RequestServer()).size() == count; });
}

pid_t Appliance::Supervisor() const {
    return FirstOf(Descendants(launcher_->Pid(), IsOfHost));
}

pid_t Appliance::RequestServer() const {
    return FirstOf(
        Descendants(Supervisor(), [](pid_t pid) { return IsOfHost(pid) && ThreadCount(pid) == 1; }));
}

pid_t Appliance::HttpProcess() const {
    return FirstOf(
        Descendants(Supervisor(), [](pid_t pid) { return IsOfHost(pid) && ThreadCount(pid) > 1; }));
}

std::vector<pid_t> Appliance::Workers() const {
    return Descendants(Supervisor(), [this](pid_t pid) {
        return IsOfHost(pid) && pid != RequestServer() && pid != HttpProcess() && IsAlive(pid);
    });
}

std::vector<pid_t> Appliance::Daemons() const {
    return Descendants(Supervisor(),
                       [](pid_t pid) { return NameOf(pid) == "camvora-daemon" && IsAlive(pid); });
}

}  // namespace e2e
