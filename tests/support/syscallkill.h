// Killing an update, or anything else that a server does in forks, at a chosen system call.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <string>
#include <vector>

// A system call that changes the file system, and the program that was about to make it.
struct FileCall {
    std::string program;
    std::string name;
};

enum class Victim {
    kCaller,  // the process that is about to make the call
    kAll      // all processes of the work, as a power cut would
};

// Follows the next process that a server forks, and all programs that come of it, and kills at the call
// that is the `number`th of all of them. A process of its own does that: the caller goes on meanwhile, and
// what has not been killed is let go afterwards.
class SyscallKill {
public:
    // Returns when the server is followed. `server` has one thread.
    //   number   from 1; beyond the last call nobody is killed
    SyscallKill(pid_t server, std::size_t number, Victim victim);
    ~SyscallKill();
    SyscallKill(const SyscallKill&) = delete;
    SyscallKill& operator=(const SyscallKill&) = delete;

    // False where the machine lets nobody follow others.
    bool IsFollowing() const { return isFollowing_; }

    // Waits until somebody has been killed, or the server's fork has ended. Returns the calls so far: when
    // they are `number`, the last one was not made. Call once.
    std::vector<FileCall> Wait();

private:
    int report_ = -1;  // what the process says
    pid_t pid_ = -1;
    bool isFollowing_ = false;
};
