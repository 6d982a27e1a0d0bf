// Killing an update, or anything else that a server does in forks, at a chosen system call.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <string>
#include <vector>

// A system call that changes the file system, and the program that was about to make it.
struct FileCall {
    std::string
        program;  // a script's own name; "(child)" follows where a fork has not become another one yet
    std::string name;
};
bool operator<(const FileCall& one, const FileCall& other);
bool operator==(const FileCall& one, const FileCall& other);

enum class Victim {
    kCaller,  // the process that is about to make the call
    kAll      // all processes of the work, as a power cut would
};

// Follows the next process that a server forks, and all programs that come of it, and kills right before the
// `number`th call of a kind. A process of its own does that: the caller goes on meanwhile, and what has not
// been killed is let go afterwards.
class SyscallKill {
public:
    // Returns when the server is followed. `server` has one thread.
    //   number   from 1; where there are fewer such calls, nobody is killed
    SyscallKill(pid_t server, const FileCall& kind, std::size_t number, Victim victim);
    ~SyscallKill();
    SyscallKill(const SyscallKill&) = delete;
    SyscallKill& operator=(const SyscallKill&) = delete;

    // False where the machine lets nobody follow others.
    bool IsFollowing() const { return isFollowing_; }

    // Waits until somebody has been killed, or the server's fork has ended. Returns the calls of all kinds so
    // far, the one that was not made as the last. Call once.
    std::vector<FileCall> Wait();

private:
    int report_ = -1;  // what the process says
    pid_t pid_ = -1;
    bool isFollowing_ = false;
};
