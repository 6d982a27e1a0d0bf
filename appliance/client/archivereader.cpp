#include "client/archivereader.h"

#include <archive.h>
#include <archive_entry.h>

#include <cerrno>
#include <utility>

namespace client {
namespace {

constexpr std::size_t kPieceBytes = 64UL * 1024;
constexpr std::size_t kEndMarkBytes = 1024;  // of zeros
constexpr int kMostFilters = 2;              // one and the one that does nothing

// The library's own, as other compressions would run programs of this machine.
constexpr int (*kFilters[])(archive*) = {
    archive_read_support_filter_gzip, archive_read_support_filter_bzip2,    archive_read_support_filter_xz,
    archive_read_support_filter_lzma, archive_read_support_filter_compress, archive_read_support_filter_zstd,
};

EntryKind KindOf(archive_entry* entry) {
    if (archive_entry_hardlink(entry) != nullptr) {
        return EntryKind::kHardLink;
    }
    switch (archive_entry_filetype(entry)) {
        case AE_IFREG:
            return EntryKind::kFile;
        case AE_IFDIR:
            return EntryKind::kFolder;
        case AE_IFLNK:
            return EntryKind::kLink;
        default:
            return EntryKind::kSpecial;
    }
}

// A text in an archive is of one of two character sets.
std::string TextOf(const char* text, const char* utf8) {
    const char* known = text != nullptr ? text : utf8;
    return known != nullptr ? known : "";
}

std::string TargetOf(archive_entry* entry) {
    return archive_entry_hardlink(entry) != nullptr
               ? TextOf(archive_entry_hardlink(entry), archive_entry_hardlink_utf8(entry))
               : TextOf(archive_entry_symlink(entry), archive_entry_symlink_utf8(entry));
}

ArchiveDamage DamageOf(archive* archive) {
    const char* text = archive_error_string(archive);
    return ArchiveDamage(text != nullptr ? text : "it cannot be read");
}

// The bytes of an open file, until the buffer is full.
std::size_t ReadData(archive* archive, char* buffer, std::size_t sizeBytes) {
    const la_ssize_t size = archive_read_data(archive, buffer, sizeBytes);
    if (size < 0) {
        throw DamageOf(archive);
    }
    return static_cast<std::size_t>(size);
}

// Gives the library a piece. What `take` throws must not pass through the library.
template <typename Take>
la_ssize_t Feed(archive* archive, std::string& piece, const void** begin, Take take) {
    try {
        take();
    } catch (const std::exception& error) {
        archive_set_error(archive, EIO, "%s", error.what());
        return ARCHIVE_FATAL;
    }
    *begin = piece.data();
    return static_cast<la_ssize_t>(piece.size());
}

}  // namespace

ArchiveReader::ArchiveReader(Source source, std::uint64_t limitBytes)
    : source_(std::move(source)),
      limitBytes_(limitBytes),
      decompressor_(archive_read_new(), archive_read_free),
      archive_(archive_read_new(), archive_read_free) {
    for (const auto add : kFilters) {
        (void)add(decompressor_.get());
    }
    (void)archive_read_support_format_raw(decompressor_.get());
    (void)archive_read_support_format_tar(archive_.get());

    archive_entry* content = nullptr;
    Open(decompressor_, FeedCompressed);
    if (archive_read_next_header(decompressor_.get(), &content) != ARCHIVE_OK) {
        throw DamageOf(decompressor_.get());
    }
    if (archive_filter_count(decompressor_.get()) > kMostFilters) {
        throw ArchiveDamage("it is compressed more than once");
    }
    Open(archive_, FeedPlain);
}

bool ArchiveReader::Next(ArchiveEntry& entry) {
    archive_entry* header = nullptr;
    const int result = archive_read_next_header(archive_.get(), &header);
    if (result == ARCHIVE_EOF) {
        CheckEnd();
        return false;
    }
    if (result != ARCHIVE_OK && result != ARCHIVE_WARN) {
        throw DamageOf(archive_.get());
    }
    entry.name = TextOf(archive_entry_pathname(header), archive_entry_pathname_utf8(header));
    entry.kind = KindOf(header);
    entry.target = TargetOf(header);
    entry.sizeBytes = static_cast<std::uint64_t>(archive_entry_size(header));
    return true;
}

std::size_t ArchiveReader::Read(char* buffer, std::size_t sizeBytes) {
    return ReadData(archive_.get(), buffer, sizeBytes);
}

void ArchiveReader::Open(const Archive& archive, Feeder feeder) {
    if (archive_read_open(archive.get(), this, nullptr, feeder, nullptr) != ARCHIVE_OK) {
        throw DamageOf(archive.get());
    }
}

std::ptrdiff_t ArchiveReader::FeedCompressed(archive* archive, void* reader, const void** piece) {
    auto& self = *static_cast<ArchiveReader*>(reader);
    return Feed(archive, self.compressedPiece_, piece, [&self] {
        self.compressedPiece_.resize(kPieceBytes);
        self.compressedPiece_.resize(self.source_(self.compressedPiece_.data(), kPieceBytes));
    });
}

std::ptrdiff_t ArchiveReader::FeedPlain(archive* archive, void* reader, const void** piece) {
    auto& self = *static_cast<ArchiveReader*>(reader);
    return Feed(archive, self.plainPiece_, piece, [&self] { self.TakePlainPiece(); });
}

void ArchiveReader::TakePlainPiece() {
    plainPiece_.resize(kPieceBytes);
    plainPiece_.resize(ReadData(decompressor_.get(), plainPiece_.data(), kPieceBytes));
    plainBytes_ += plainPiece_.size();
    if (plainBytes_ > limitBytes_) {
        throw ArchiveDamage("it grows beyond all limits");
    }
    const std::size_t last = plainPiece_.find_last_not_of('\0');
    const bool isAllZeros = last == std::string::npos;
    zerosAtEnd_ = isAllZeros ? zerosAtEnd_ + plainPiece_.size() : plainPiece_.size() - 1 - last;
}

// What follows the last entry may be damaged, too. And an archive that is not compressed may be cut between
// two entries without being damaged.
void ArchiveReader::CheckEnd() {
    do {
        TakePlainPiece();
    } while (!plainPiece_.empty());
    if (archive_filter_code(decompressor_.get(), 0) == ARCHIVE_FILTER_NONE && zerosAtEnd_ < kEndMarkBytes) {
        throw ArchiveDamage("it has no end");
    }
}

}  // namespace client
