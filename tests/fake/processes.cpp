#include "fake/processes.h"

#include "fake/journal.h"
#include "fake/script.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <vector>

namespace {

std::time_t now = 1'700'000'000;
std::vector<pid_t> children;

// The errno is set last: recording has its own system calls.
bool Fails(const std::string& function) {
    const Json::Value error = fake::NextAnswer(function, Json::Value());
    if (error.isNull()) {
        return false;
    }
    errno = error.asInt();
    return true;
}

std::string ChildName(pid_t pid) {
    const auto found = std::find(children.begin(), children.end(), pid);
    return found == children.end() ? std::to_string(pid)
                                   : "child" + std::to_string(found - children.begin() + 1);
}

}  // namespace

namespace fake {

void ResetProcesses() {
    children.clear();
}

}  // namespace fake

// The linker's --wrap chooses these names.
extern "C" {

pid_t __real_fork();
pid_t __real_waitpid(pid_t pid, int* status, int options);
pid_t __real_setsid();
[[noreturn]] void __real__exit(int status);

pid_t __wrap_fork() {
    fake::Record("fork");
    if (Fails("fork")) {
        return -1;
    }
    const pid_t pid = __real_fork();
    if (pid == 0) {
        children.clear();
        fake::EnterChild();
    } else if (pid > 0) {
        children.push_back(pid);
    }
    return pid;
}

// Recorded at its return, so that the child's lines stand before it.
pid_t __wrap_waitpid(pid_t pid, int* status, int options) {
    const bool fails = Fails("waitpid");
    const pid_t ended = fails ? -1 : __real_waitpid(pid, status, options);
    const int error = errno;
    fake::Record("waitpid", ChildName(pid));
    errno = error;
    return ended;
}

pid_t __wrap_setsid() {
    fake::Record("setsid");
    return __real_setsid();
}

[[noreturn]] void __wrap__exit(int status) {
    fake::Record("_exit", status);
    __real__exit(status);
}

unsigned __wrap_sleep(unsigned seconds) {
    now += static_cast<std::time_t>(fake::Call("sleep", seconds, static_cast<long long>(seconds)).asInt64());
    return 0;
}

std::time_t __wrap_time(std::time_t* copy) {
    if (copy != nullptr) {
        *copy = now;
    }
    return now;
}
}
