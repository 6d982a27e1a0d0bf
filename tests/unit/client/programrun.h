// One run of camvoractl as a process of its own.
#pragma once

#include <sys/types.h>

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

struct Outcome {
    int status = 0;  // exit status; 1000 and the signal's number when a signal ended it
    std::string out;
    std::string err;
};

class ProgramRun {
public:
    // Starts the program with an empty environment but for `environment`, as in "NAME=value".
    //   outDescriptor  its standard output instead of the one that is collected; stays the caller's
    explicit ProgramRun(const std::vector<std::string>& arguments,
                        const std::vector<std::string>& environment = {}, int outDescriptor = -1);

    // Sends SIGINT.
    void Interrupt() const;

    // Waits for its end. Call once.
    Outcome Wait();

private:
    struct CloseFile {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };
    using File = std::unique_ptr<std::FILE, CloseFile>;

    static std::string Content(const File& file);

    File out_;
    File err_;
    pid_t pid_ = -1;
};
