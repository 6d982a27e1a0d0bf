// A file that appears under its name when it is whole, in place of what had the name before.
#pragma once

#include <string>
#include <string_view>

namespace client {

class NewFile {
public:
    enum class Readers { kAll, kOwner };

    // Begins the file, under another name in the same folder. Throws Failure (kFailed).
    explicit NewFile(std::string path, Readers readers = Readers::kAll);

    // Removes what was written, unless it is finished.
    ~NewFile();

    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    // Writes `text` behind what is there. Throws Failure (kFailed).
    void Write(std::string_view text);

    // To write to.
    int Descriptor() const { return descriptor_; }

    // Where it is until it is finished.
    const std::string& TemporaryPath() const { return temporaryPath_; }

    // Gives the file its name. Throws Failure (kFailed); whatever had the name stays then.
    void Finish();

private:
    std::string path_;
    std::string temporaryPath_;
    Readers readers_;
    int descriptor_;
};

}  // namespace client
