#include "host/processes.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

namespace host {

namespace {

constexpr std::chrono::milliseconds kEndPoll{10};

void ResetSignals() {
    for (const int signal : {SIGCHLD, SIGPIPE, SIGINT, SIGTERM, SIGHUP}) {
        std::signal(signal, SIG_DFL);
    }
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
}

void DetachStandardStreams() {
    const int nowhere = open("/dev/null", O_RDWR | O_CLOEXEC);
    dup2(nowhere, STDIN_FILENO);
    dup2(nowhere, STDOUT_FILENO);
    close(nowhere);
}

std::vector<pid_t> Children() {
    const std::string self = std::to_string(getpid());
    std::ifstream children("/proc/" + self + "/task/" + self + "/children");
    return {std::istream_iterator<pid_t>(children), std::istream_iterator<pid_t>()};
}

void SignalChildren(int signal) {
    for (const pid_t child : Children()) {
        kill(child, signal);
    }
}

// True for a process that was forked and has not become another program, or that is just ending: its children
// come here next.
bool IsAtWork(pid_t pid) {
    struct stat own {};
    struct stat other {};
    if (stat(("/proc/" + std::to_string(pid) + "/exe").c_str(), &other) != 0) {
        return errno == ENOENT;
    }
    return stat("/proc/self/exe", &own) == 0 && own.st_dev == other.st_dev && own.st_ino == other.st_ino;
}

// An exception must not climb into the code of the process that forked.
[[noreturn]] void RunToEnd(const std::function<int()>& body) noexcept {
    _exit(body());
}

// Returns true when no child is left.
bool ReapAll() {
    pid_t pid = 0;
    while ((pid = waitpid(-1, nullptr, WNOHANG)) > 0) {
    }
    return pid < 0;
}

}  // namespace

void EndWithParent(pid_t parent) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent) {
        _exit(1);  // it ended before the call above
    }
}

pid_t StartProcess(const std::function<int()>& body) {
    const pid_t parent = getpid();
    const pid_t pid = fork();
    if (pid == 0) {
        EndWithParent(parent);
        ResetSignals();
        setsid();
        DetachStandardStreams();
        RunToEnd(body);
    }
    if (pid < 0) {
        throw std::system_error(errno, std::generic_category(), "fork");
    }
    return pid;
}

void AwaitForkedChildren(std::chrono::steady_clock::time_point deadline) {
    const auto isAnyAtWork = [] {
        (void)ReapAll();
        const std::vector<pid_t> children = Children();
        return std::any_of(children.begin(), children.end(), IsAtWork);
    };
    int looksWithoutWork = 0;  // the kernel's list may miss one while another ends
    while (looksWithoutWork < 2 && std::chrono::steady_clock::now() < deadline) {
        looksWithoutWork = isAnyAtWork() ? 0 : looksWithoutWork + 1;
        std::this_thread::sleep_for(kEndPoll);
    }
}

void EndDescendants(std::chrono::milliseconds grace) {
    const auto deadline = std::chrono::steady_clock::now() + grace;
    SignalChildren(SIGTERM);
    while (!ReapAll()) {
        if (std::chrono::steady_clock::now() >= deadline) {
            SignalChildren(SIGKILL);
        }
        std::this_thread::sleep_for(kEndPoll);
    }
}

}  // namespace host
