#include "children.h"

#include <fcntl.h>
#include <linux/capability.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <memory>
#include <vector>

namespace {

// Never returns, so that a child does not run the rest of the test program.
[[noreturn]] void WorkAndStay(int result, const std::function<bool()>& work) noexcept {
    const char worked = work() ? 1 : 0;
    (void)!write(result, &worked, 1);
    close(result);
    for (;;) {
        pause();
    }
}

void WaitForEnd(const std::array<int, 2>& ends) {
    char nothing = 0;
    close(ends[1]);
    (void)!read(ends[0], &nothing, 1);
}

}  // namespace

int CountSuccesses(int count, const std::function<bool(int)>& work) {
    std::array<int, 2> start{};
    if (pipe2(start.data(), O_CLOEXEC) != 0) {
        return 0;
    }
    std::vector<std::unique_ptr<Background>> children;
    children.reserve(static_cast<std::size_t>(count));
    for (int number = 0; number < count; ++number) {
        children.push_back(std::make_unique<Background>([&start, &work, number] {
            WaitForEnd(start);
            return work(number);
        }));
    }
    close(start[0]);
    close(start[1]);  // the end of the file is the signal
    return static_cast<int>(
        std::count_if(children.begin(), children.end(), [](const auto& child) { return child->Worked(); }));
}

bool SucceedsInChild(const std::function<bool()>& work) {
    return Background(work).Worked();
}

bool GiveUpPrivileges() {
    __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
    const std::array<__user_cap_data_struct, _LINUX_CAPABILITY_U32S_3> none{};
    return syscall(SYS_capset, &header, none.data()) == 0;
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

std::unique_ptr<Background> StartWith(camvora::Store& store, const std::function<bool()>& work) {
    store.BeforeFork();
    auto child = std::make_unique<Background>([&store, &work] {
        store.AfterForkInChild();
        return work();
    });
    store.AfterForkInParent();
    return child;
}

bool WorksInChild(camvora::Store& store, const std::function<bool()>& work) {
    return StartWith(store, work)->Worked();
}
