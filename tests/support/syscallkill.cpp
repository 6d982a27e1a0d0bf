#include "support/syscallkill.h"

#include <fcntl.h>
#include <sys/ptrace.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>
#include <tuple>
#include <utility>

namespace {

constexpr char kReady = '+';
constexpr int kSyscallStop = SIGTRAP | 0x80;

enum class If { kAny, kFile, kCreates };

// The calls that change the file system: any of them; those whose argument is the descriptor of a file; those
// whose argument holds flags that create a file or empty it.
struct Row {
    std::uint64_t number;
    const char* name;
    If condition = If::kAny;
    std::size_t argument = 0;
};

constexpr Row kRows[] = {
#ifdef SYS_rename  // what newer machines no longer have
    {SYS_rename, "rename"},
    {SYS_unlink, "unlink"},
    {SYS_mkdir, "mkdir"},
    {SYS_rmdir, "rmdir"},
    {SYS_link, "link"},
    {SYS_symlink, "symlink"},
    {SYS_mknod, "mknod"},
    {SYS_chmod, "chmod"},
    {SYS_chown, "chown"},
    {SYS_lchown, "lchown"},
    {SYS_creat, "creat"},
    {SYS_open, "open", If::kCreates, 1},
    {SYS_renameat, "renameat"},
#endif
    {SYS_openat, "openat", If::kCreates, 2},
    {SYS_renameat2, "renameat2"},
    {SYS_unlinkat, "unlinkat"},
    {SYS_mkdirat, "mkdirat"},
    {SYS_linkat, "linkat"},
    {SYS_symlinkat, "symlinkat"},
    {SYS_mknodat, "mknodat"},
    {SYS_fchmod, "fchmod"},
    {SYS_fchmodat, "fchmodat"},
    {SYS_fchown, "fchown"},
    {SYS_fchownat, "fchownat"},
    {SYS_utimensat, "utimensat"},
    {SYS_setxattr, "setxattr"},
    {SYS_fsetxattr, "fsetxattr"},
    {SYS_truncate, "truncate"},
    {SYS_ftruncate, "ftruncate"},
    {SYS_fallocate, "fallocate"},
    {SYS_write, "write", If::kFile, 0},
    {SYS_writev, "writev", If::kFile, 0},
    {SYS_pwrite64, "pwrite64", If::kFile, 0},
    {SYS_pwritev, "pwritev", If::kFile, 0},
    {SYS_sendfile, "sendfile", If::kFile, 0},
    {SYS_copy_file_range, "copy_file_range", If::kFile, 2},
    {SYS_fsync, "fsync", If::kFile, 0},
    {SYS_fdatasync, "fdatasync", If::kFile, 0},
    {SYS_sync, "sync"},
    {SYS_syncfs, "syncfs"},
};

std::string ProcOf(pid_t pid) {
    return "/proc/" + std::to_string(pid) + "/";
}

bool IsFileOf(pid_t pid, std::uint64_t descriptor) {
    struct stat status {};
    return stat((ProcOf(pid) + "fd/" + std::to_string(descriptor)).c_str(), &status) == 0 &&
           (S_ISREG(status.st_mode) || S_ISDIR(status.st_mode));
}

// A script has its own name, not that of its shell.
std::string ProgramOf(pid_t pid) {
    std::string name;
    std::getline(std::ifstream(ProcOf(pid) + "comm"), name);
    return name;
}

// The name of the call that the process, which is stopped, is about to make; null when it is leaving one, or
// nothing would change by it.
const char* FileCallOf(pid_t pid) {
    struct __ptrace_syscall_info info {};
    (void)ptrace(PTRACE_GET_SYSCALL_INFO, pid, sizeof(info), &info);
    if (info.op != PTRACE_SYSCALL_INFO_ENTRY) {
        return nullptr;
    }
    const auto* row = std::find_if(std::begin(kRows), std::end(kRows), [&info](const Row& candidate) {
        return candidate.number == info.entry.nr;
    });
    if (row == std::end(kRows)) {
        return nullptr;
    }
    const std::uint64_t argument = info.entry.args[row->argument];
    const bool isChange = row->condition == If::kAny ||
                          (row->condition == If::kFile && IsFileOf(pid, argument)) ||
                          (row->condition == If::kCreates && (argument & (O_CREAT | O_TRUNC)) != 0);
    return isChange ? row->name : nullptr;
}

// The process that follows. Whoever it follows goes on freely when it ends.
class Follower {
public:
    Follower(pid_t server, FileCall kind, std::size_t number, Victim victim, int report)
        : server_(server), kind_(std::move(kind)), number_(number), victim_(victim), report_(report) {}

    [[noreturn]] void Run() noexcept {
        constexpr auto kOptions =
            PTRACE_O_TRACEFORK | PTRACE_O_TRACEVFORK | PTRACE_O_TRACECLONE | PTRACE_O_TRACESYSGOOD;
        if (ptrace(PTRACE_SEIZE, server_, nullptr, kOptions) == 0) {
            Say(std::string(1, kReady));
            while (Step()) {
            }
        }
        _exit(EXIT_SUCCESS);
    }

private:
    void Say(const std::string& text) const { (void)!write(report_, text.data(), text.size()); }

    // Waits for what happens next. Returns false when it was the last that matters.
    bool Step() {
        int status = 0;
        const pid_t pid = waitpid(-1, &status, __WALL);
        if (pid < 0) {
            return false;
        }
        if (!WIFSTOPPED(status)) {
            followed_.erase(pid);
            return pid != fork_ && pid != server_;
        }
        if (pid != server_) {
            fork_ = fork_ < 0 ? pid : fork_;
            followed_.insert(pid);
        }
        return WSTOPSIG(status) != kSyscallStop ? GoOn(pid, SignalOf(status)) : Pass(pid) && GoOn(pid, 0);
    }

    // The signal that is to be delivered; a stop for any other reason has none.
    static int SignalOf(int status) { return status >> 16 == 0 ? WSTOPSIG(status) : 0; }

    bool GoOn(pid_t pid, int signal) const {
        (void)ptrace(pid == server_ ? PTRACE_CONT : PTRACE_SYSCALL, pid, nullptr, signal);
        return true;
    }

    // A process that has not become another program yet is told from the server's fork itself.
    std::string NameOf(pid_t pid) const {
        const std::string name = ProgramOf(pid);
        return pid != fork_ && name == ProgramOf(fork_) ? name + "(child)" : name;
    }

    // Returns false when the call was the chosen one, and is not made.
    bool Pass(pid_t pid) {
        const char* name = FileCallOf(pid);
        if (name == nullptr) {
            return true;
        }
        const FileCall call{NameOf(pid), name};
        Say(call.program + " " + call.name + "\n");
        if (!(call == kind_) || ++calls_ != number_) {
            return true;
        }
        for (const pid_t victim : victim_ == Victim::kAll ? followed_ : std::set<pid_t>{pid}) {
            (void)kill(victim, SIGKILL);
        }
        return false;
    }

    const pid_t server_;
    const FileCall kind_;
    const std::size_t number_;
    const Victim victim_;
    const int report_;
    pid_t fork_ = -1;
    std::set<pid_t> followed_;  // without the server
    std::size_t calls_ = 0;     // of the kind
};

}  // namespace

bool operator<(const FileCall& one, const FileCall& other) {
    return std::tie(one.program, one.name) < std::tie(other.program, other.name);
}

bool operator==(const FileCall& one, const FileCall& other) {
    return std::tie(one.program, one.name) == std::tie(other.program, other.name);
}

SyscallKill::SyscallKill(pid_t server, const FileCall& kind, std::size_t number, Victim victim) {
    std::array<int, 2> ends{-1, -1};
    (void)pipe2(ends.data(), O_CLOEXEC);
    pid_ = fork();
    if (pid_ == 0) {
        Follower(server, kind, number, victim, ends[1]).Run();
    }
    (void)close(ends[1]);
    report_ = ends[0];
    char said = 0;
    isFollowing_ = read(report_, &said, 1) == 1 && said == kReady;
}

SyscallKill::~SyscallKill() {
    (void)close(report_);
    (void)kill(pid_, SIGKILL);
    (void)waitpid(pid_, nullptr, 0);
}

std::vector<FileCall> SyscallKill::Wait() {
    std::stringstream said;
    std::array<char, 4096> part{};
    for (ssize_t size = 0; (size = read(report_, part.data(), part.size())) > 0;) {
        said.write(part.data(), size);
    }
    std::vector<FileCall> calls;
    for (FileCall call; said >> call.program >> call.name;) {
        calls.push_back(call);
    }
    return calls;
}
