// 32 processes at one critical section, 5,000 cycles, holders and waiters killed at random:
//
//   long_locks [--cycles N] [--processes N] [--no-kill] [--hazard flock|remove]
//
// --hazard shows what the library guards against: "flock" locks the lock file itself, which its holders
// remove after they have left; "remove" keeps the queue, but removes the lock file whoever is inside.
#include "libcamvora/lockguards.h"
#include "lockstress.h"

#include <CLI/CLI.hpp>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <map>
#include <string>
#include <thread>

namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

int LockFileItself(const std::string& folder, milliseconds limit) {
    const auto deadline = Clock::now() + limit;
    const int fd = open(stress::LockFile(folder).c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    while (flock(fd, LOCK_EX | LOCK_NB) != 0) {
        if (Clock::now() >= deadline) {
            close(fd);
            return -1;
        }
        std::this_thread::sleep_for(milliseconds(1));
    }
    return fd;
}

void RemoveRegardless(const std::string& folder) {
    (void)unlink(stress::LockFile(folder).c_str());
}

const std::map<std::string, stress::Locking> kLockings = {
    {"none", stress::kGuarded},
    {"flock", {LockFileItself, [](int fd) { close(fd); }, RemoveRegardless}},
    {"remove", {stress::kGuarded.enter, stress::kGuarded.leave, RemoveRegardless}},
};

void Print(const stress::Figures& figures, double seconds, bool isFileLeft) {
    std::printf("entered %d, timed out %d, killed %d, in %.1f s\n", figures.entered, figures.timedOut,
                figures.killed, seconds);
    std::printf("two inside at once: %d\n", figures.overlaps);
    std::printf("lock file missing while somebody was inside: %d\n", figures.signsMissing);
    std::printf("waits beyond the limit plus 200 ms: %d (longest excess %ld ms)\n", figures.late,
                figures.longestExcessMs);
    std::printf("lock file left after the sweep: %s\n", isFileLeft ? "yes" : "no");
}

int RunStress(int argc, char** argv) {
    CLI::App options("Critical sections under stress");
    stress::Plan plan = {32, 5000, true};
    std::string hazard = "none";
    options.add_option("--cycles", plan.cycles, "begins in all");
    options.add_option("--processes", plan.processes, "at the same time");
    options.add_flag("!--no-kill", plan.kill, "let all live");
    options.add_option("--hazard", hazard, "what to put back")->check(CLI::IsMember(kLockings));
    CLI11_PARSE(options, argc, argv);

    std::string folder = "/tmp/long_locks_XXXXXX";
    if (mkdtemp(folder.data()) == nullptr) {
        std::perror("mkdtemp");
        return EXIT_FAILURE;
    }
    std::filesystem::create_directory(folder + "/locks");
    const auto begin = Clock::now();
    const stress::Figures figures = stress::Run(folder + "/locks", kLockings.at(hazard), plan);
    const std::chrono::duration<double> taken = Clock::now() - begin;
    camvora::SweepLockFiles(folder + "/locks");
    const bool isFileLeft = std::filesystem::exists(stress::LockFile(folder + "/locks"));
    Print(figures, taken.count(), isFileLeft);
    std::filesystem::remove_all(folder);
    const bool isClean = figures.overlaps + figures.signsMissing + figures.late == 0 && !isFileLeft;
    return isClean ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return RunStress(argc, argv);
    } catch (const std::exception& failure) {
        (void)std::fprintf(stderr, "long_locks: %s\n", failure.what());
        return EXIT_FAILURE;
    }
}
