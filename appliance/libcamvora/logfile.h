// The file of the diagnostic log and the one set aside before it.
#pragma once

#include <json/value.h>

#include <string>

namespace camvora {

class LogFile {
public:
    // The log at `path`; the file set aside has the suffix ".1".
    explicit LogFile(std::string path);

    // Adds `line`, which ends in "\n", with one write, so that lines of several processes do not mix.
    // A line that cannot be written is lost.
    void Append(const std::string& line) const;

    // The lines whose member "request" is `requestId`, the newest thousand of them, oldest first. Reads
    // line by line; what is no JSON object is passed over.
    Json::Value LinesOfRequest(const std::string& requestId) const;

    // Sets the file aside, in place of the one before, when it is larger than `limitBytes`. A writer that
    // has it open finishes its line there.
    void RotateIfLarger(long long limitBytes) const;

private:
    std::string path_;
    std::string oldPath_;
};

}  // namespace camvora
