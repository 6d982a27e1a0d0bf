// A file that tells others on the appliance something for as long as the host runs.
#pragma once

#include <sys/types.h>

#include <string>

namespace host {

class RunFile {
public:
    // Writes `line` as the one line of the file at `path`, which those may read whom `mode` lets; readers see
    // the whole line or no file. Throws std::runtime_error when that fails.
    RunFile(std::string path, const std::string& line, mode_t mode);
    ~RunFile();  // removes the file
    RunFile(const RunFile&) = delete;
    RunFile& operator=(const RunFile&) = delete;

private:
    std::string path_;
};

}  // namespace host
