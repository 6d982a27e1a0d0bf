// Between the caller and the program stands a keeper, a process that does nothing but watch both: a killed
// caller can do nothing any more, and the signal that the kernel sends at a parent's death reaches one
// process, not a group.
#include "libcamvora/program.h"

#include "libcamvora/cappedoutput.h"
#include "libcamvora/descriptor.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

extern "C" {
#include <sys/pidfd.h>  // says so itself only in newer C libraries
}

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>

namespace camvora {

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr milliseconds kLookEvery{250};
constexpr mode_t kUmask = 022;

std::vector<char*> Pointers(const std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (const std::string& text : texts) {
        pointers.push_back(const_cast<char*>(text.c_str()));
    }
    pointers.push_back(nullptr);
    return pointers;
}

void ResetSignals() {
    for (int signal = 1; signal < NSIG; ++signal) {
        (void)std::signal(signal, SIG_DFL);  // fails for the two that never change
    }
    sigset_t none;
    sigemptyset(&none);
    (void)sigprocmask(SIG_SETMASK, &none, nullptr);
}

// `output` is the end of a pipe to print to, or negative: then it prints into its file itself.
void RedirectStreams(const std::string& outputFile, int output) {
    const int input = open("/dev/null", O_RDONLY | O_CLOEXEC);
    if (output < 0) {
        output = open(outputFile.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600);
    }
    if (output < 0) {
        output = open("/dev/null", O_WRONLY | O_CLOEXEC);
    }
    (void)dup2(input, STDIN_FILENO);
    (void)dup2(output, STDOUT_FILENO);
    (void)dup2(output, STDERR_FILENO);
    (void)close_range(STDERR_FILENO + 1, ~0U, 0);
}

void Limit(__rlimit_resource resource, const std::optional<rlim_t>& bytes) {
    if (bytes) {
        const rlimit limit{*bytes, *bytes};
        (void)setrlimit(resource, &limit);
    }
}

// A program that cannot be started ends as one that was killed. Under its limit of memory nothing is
// allocated.
[[noreturn]] void BecomeProgram(const Program& program, pid_t keeper, int output) noexcept {
    std::vector<std::string> words = {program.path};
    words.insert(words.end(), program.arguments.begin(), program.arguments.end());
    const std::vector<char*> arguments = Pointers(words);
    const std::vector<char*> environment = Pointers(program.environment);
    (void)setpgid(0, 0);
    (void)prctl(PR_SET_PDEATHSIG, SIGKILL);
    ResetSignals();
    (void)umask(kUmask);
    RedirectStreams(program.outputFile, output);
    Limit(RLIMIT_FSIZE, program.fileSizeLimitBytes);
    Limit(RLIMIT_AS, program.memoryLimitBytes);
    if (getppid() == keeper) {
        (void)execve(program.path.c_str(), arguments.data(), environment.data());
    }
    (void)kill(getpid(), SIGKILL);
    _exit(EXIT_FAILURE);
}

// Waits until the program ends by itself. Returns false when it has to be ended.
bool AwaitEnd(const Program& program, int running, int caller, std::optional<CappedOutput>& output,
              steady_clock::time_point deadline) {
    auto nextLook = steady_clock::now() + kLookEvery;
    for (;;) {
        const auto left = std::chrono::ceil<milliseconds>(std::min(deadline, nextLook) - steady_clock::now());
        std::array<pollfd, 3> ends{
            {{running, POLLIN, 0}, {caller, POLLIN, 0}, {output ? output->ReadEnd() : -1, POLLIN, 0}}};
        (void)poll(ends.data(), ends.size(), static_cast<int>(std::max(left, milliseconds(0)).count()));
        if (ends[2].revents != 0) {
            output->Take();
        }
        if (ends[0].revents != 0) {
            return true;
        }
        if (ends[1].revents != 0 || steady_clock::now() >= deadline) {
            return false;
        }
        if (steady_clock::now() >= nextLook) {
            if (!program.mayGoOn()) {
                return false;
            }
            nextLook = steady_clock::now() + kLookEvery;
        }
    }
}

// Kills what is left of the program's group and waits until it is gone. The program itself, ended or not, has
// not been reaped yet, so the group's id is still its own.
int EndGroup(pid_t program, rusage& usage) {
    int waitStatus = 0;
    (void)kill(-program, SIGKILL);
    while (wait4(program, &waitStatus, 0, &usage) < 0 && errno == EINTR) {
    }
    while (waitpid(-program, nullptr, 0) > 0 || errno == EINTR) {
    }
    return waitStatus;
}

// Whoever loses its parent in the group becomes the keeper's child.
[[noreturn]] void Keep(const Program& program, int caller, int report) noexcept {
    (void)std::signal(SIGCHLD, SIG_DFL);
    (void)prctl(PR_SET_CHILD_SUBREAPER, 1);
    const pid_t self = getpid();
    const auto begin = steady_clock::now();
    std::optional<CappedOutput> output;
    if (program.outputLimitBytes) {
        output.emplace(program.outputFile, *program.outputLimitBytes);
    }
    const pid_t pid = fork();
    if (pid == 0) {
        BecomeProgram(program, self, output ? output->WriteEnd() : -1);
    }
    if (pid > 0) {
        (void)setpgid(pid, pid);  // whichever of the two comes first
        if (output) {
            output->CloseWriteEnd();
        }
        const Descriptor running(pidfd_open(pid, 0));
        const bool endsByItself = running.IsOpen() && AwaitEnd(program, running.Number(), caller, output,
                                                               begin + program.timeLimit);
        rusage usage{};
        const int waitStatus = EndGroup(pid, usage);
        if (output) {
            output->Take();
        }
        const ProgramEnd end{endsByItself && WIFEXITED(waitStatus) ? WEXITSTATUS(waitStatus) : -1,
                             std::chrono::duration_cast<milliseconds>(steady_clock::now() - begin),
                             usage.ru_maxrss};
        (void)!write(report, &end, sizeof(end));  // a caller that is gone needs it no more
    }
    _exit(EXIT_SUCCESS);
}

// `end` stays as it is when the keeper ends without a report.
void ReadReport(int report, ProgramEnd& end) {
    while (read(report, &end, sizeof(end)) < 0 && errno == EINTR) {
    }
}

}  // namespace

ProgramEnd RunProgram(const Program& program) {
    ProgramEnd end;
    std::array<int, 2> pipeEnds{-1, -1};
    const Descriptor caller(pidfd_open(getpid(), 0));
    if (!caller.IsOpen() || pipe2(pipeEnds.data(), O_CLOEXEC) != 0) {
        return end;
    }
    const Descriptor report(pipeEnds[0]);
    const pid_t keeper = fork();
    if (keeper == 0) {
        Keep(program, caller.Number(), pipeEnds[1]);
    }
    (void)close(pipeEnds[1]);
    if (keeper > 0) {
        ReadReport(report.Number(), end);
        while (waitpid(keeper, nullptr, 0) < 0 && errno == EINTR) {
        }
    }
    return end;
}

}  // namespace camvora
