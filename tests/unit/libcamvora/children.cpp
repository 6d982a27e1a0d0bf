#include "children.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <vector>

namespace {

// Never returns, so that a child does not run the rest of the test program.
[[noreturn]] void RunChild(int startSignal, int number, const std::function<bool(int)>& work) noexcept {
    char end = 0;
    (void)!read(startSignal, &end, 1);
    try {
        _exit(work(number) ? EXIT_SUCCESS : EXIT_FAILURE);
    } catch (const std::exception&) {
        _exit(EXIT_FAILURE);
    }
}

[[noreturn]] void WorkAndStay(int result, const std::function<bool()>& work) noexcept {
    const char worked = work() ? 1 : 0;
    (void)!write(result, &worked, 1);
    close(result);
    for (;;) {
        pause();
    }
}

bool Succeeded(pid_t child) {
    int status = 0;
    return waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == EXIT_SUCCESS;
}

}  // namespace

int CountSuccesses(int count, const std::function<bool(int)>& work) {
    std::array<int, 2> start{};
    if (pipe(start.data()) != 0) {
        return 0;
    }
    std::vector<pid_t> children;
    for (int number = 0; number < count; ++number) {
        const pid_t child = fork();
        if (child == 0) {
            close(start[1]);
            RunChild(start[0], number, work);
        }
        children.push_back(child);
    }
    close(start[0]);
    close(start[1]);  // the end of the file is the signal
    int successes = 0;
    for (const pid_t child : children) {
        successes += Succeeded(child) ? 1 : 0;
    }
    return successes;
}

bool SucceedsInChild(const std::function<bool()>& work) {
    return CountSuccesses(1, [&work](int) { return work(); }) == 1;
}

Background::Background(const std::function<bool()>& work) {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        return;
    }
    pid_ = fork();
    if (pid_ == 0) {
        close(ends[0]);
        WorkAndStay(ends[1], work);
    }
    close(ends[1]);
    result_ = ends[0];
}

bool Background::Worked() const {
    char worked = 0;
    return read(result_, &worked, 1) == 1 && worked == 1;
}

void Background::Kill() {
    if (pid_ > 0) {
        kill(pid_, SIGKILL);
        waitpid(pid_, nullptr, 0);
        close(result_);
        pid_ = -1;
    }
}
