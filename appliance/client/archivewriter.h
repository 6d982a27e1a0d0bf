// Writing a tar archive of which nothing depends on when, where and by whom it is written: owner 0, a fixed
// time, and of a file's mode only whether it is a program.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

struct archive;
struct archive_entry;

namespace client {

class PlainFile;

class ArchiveWriter {
public:
    enum class Compression { kNone, kGzip };

    // Writes to `descriptor`, which stays the caller's. All functions throw Failure (kFailed) when that
    // fails.
    ArchiveWriter(int descriptor, Compression compression);

    void AddFolder(const std::string& name);
    void AddLink(const std::string& name, const std::string& target);
    void AddText(const std::string& name, const std::string& text);

    // Throws Failure also when the file cannot be read, or shrinks meanwhile.
    void AddFile(const std::string& name, const PlainFile& file, bool isProgram);

    // Ends the archive. Nothing can be added afterwards.
    void Finish();

private:
    using Entry = std::unique_ptr<archive_entry, void (*)(archive_entry*)>;

    static Entry MakeEntry(const std::string& name, unsigned int type, unsigned int permissions);
    void Begin(const Entry& entry);
    void Write(const char* bytes, std::size_t sizeBytes);
    void Check(bool isDone) const;

    std::unique_ptr<archive, int (*)(archive*)> archive_;
};

}  // namespace client
