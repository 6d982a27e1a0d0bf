// A program as a process of its own.
#pragma once

#include "support/temporaryfolder.h"

#include <sys/types.h>

#include <string>
#include <vector>

struct Outcome {
    int status = 0;  // exit status; 1000 and the signal's number when a signal ended it
    std::string out;
    std::string err;
};

class Program {
public:
    // Starts it. Throws std::runtime_error when that fails.
    //   command      the program's path, and its arguments
    //   environment  the whole of it, as in "NAME=value"
    Program(const std::vector<std::string>& command, const std::vector<std::string>& environment);

    pid_t Pid() const { return pid_; }

    // What it has written to standard error so far.
    std::string Errors() const { return folder_.Read("err"); }

    // Waits for its end. Call once.
    Outcome Wait() const;

private:
    TemporaryFolder folder_;
    pid_t pid_ = -1;
};
