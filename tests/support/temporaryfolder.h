// A folder that lasts as long as a test.
#pragma once

#include <string>

// Makes an empty folder; removes it with all that it holds at the end.
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::string& Path() const { return path_; }

    // The path of `name` in the folder.
    std::string PathOf(const std::string& name) const { return path_ + "/" + name; }

    // Writes the file `name`, with the folders that lead to it.
    void Write(const std::string& name, const std::string& content) const;

    // The content of the file `name`.
    std::string Read(const std::string& name) const;

private:
    std::string path_;
};
