// Reading a tar archive, compressed or not, from its beginning to its end, without unpacking anything.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>

struct archive;

namespace client {

// The archive is no tar archive, damaged or cut short.
struct ArchiveDamage : std::runtime_error {
    using std::runtime_error::runtime_error;
};

enum class EntryKind { kFile, kFolder, kLink, kHardLink, kSpecial };

struct ArchiveEntry {
    std::string name;  // as it stands in the archive: any bytes
    EntryKind kind = EntryKind::kFile;
    std::string target;  // of a link
    std::uint64_t sizeBytes = 0;
};

class ArchiveReader {
public:
    // Fills a buffer with what comes next. Returns how much that is, 0 at the end. May throw std::exception.
    using Source = std::function<std::size_t(char* buffer, std::size_t sizeBytes)>;

    // An archive that is larger than `limitBytes` when it is decompressed counts as damaged. Throws
    // ArchiveDamage.
    ArchiveReader(Source source, std::uint64_t limitBytes);

    // Goes on to the next entry. Returns false at the end of the archive. Throws ArchiveDamage.
    bool Next(ArchiveEntry& entry);

    // Reads on in the file that is the present entry, and fills the buffer unless the file ends. Throws
    // ArchiveDamage.
    std::size_t Read(char* buffer, std::size_t sizeBytes);

private:
    using Archive = std::unique_ptr<archive, int (*)(archive*)>;
    using Feeder = std::ptrdiff_t (*)(archive* archive, void* reader, const void** piece);

    static std::ptrdiff_t FeedCompressed(archive* archive, void* reader, const void** piece);
    static std::ptrdiff_t FeedPlain(archive* archive, void* reader, const void** piece);
    void Open(const Archive& archive, Feeder feeder);
    void TakePlainPiece();
    void CheckEnd();

    Source source_;
    const std::uint64_t limitBytes_;
    std::string compressedPiece_;
    std::string plainPiece_;
    std::uint64_t plainBytes_ = 0;  // so far
    std::size_t zerosAtEnd_ = 0;    // of these
    Archive decompressor_;          // takes the archive for a file without a name
    Archive archive_;
};

}  // namespace client
