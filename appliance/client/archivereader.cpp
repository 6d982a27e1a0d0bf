#include "client/archivereader.h"

#include <archive.h>
#include <archive_entry.h>

#include <cerrno>
#include <utility>

namespace client {
namespace {

constexpr std::size_t kPieceBytes = 64UL * 1024;
constexpr std::size_t kEndMarkBytes = 1024;  // of zeros

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

}  // namespace

ArchiveReader::ArchiveReader(Source source)
    : source_(std::move(source)), archive_(archive_read_new(), archive_read_free) {
    for (const auto add : kFilters) {
        (void)add(archive_.get());
    }
    (void)archive_read_support_format_tar(archive_.get());
    // Otherwise a damage behind the last entry is not seen.
    (void)archive_read_set_options(archive_.get(), "tar:read_concatenated_archives");
    if (archive_read_open(archive_.get(), this, nullptr, Feed, nullptr) != ARCHIVE_OK) {
        throw Damage();
    }
}

bool ArchiveReader::Next(ArchiveEntry& entry) {
    archive_entry* header = nullptr;
    const int result = archive_read_next_header(archive_.get(), &header);
    if (result == ARCHIVE_EOF) {
        CheckEnd();
        return false;
    }
    if (result != ARCHIVE_OK && result != ARCHIVE_WARN) {
        throw Damage();
    }
    entry.name = TextOf(archive_entry_pathname(header), archive_entry_pathname_utf8(header));
    entry.kind = KindOf(header);
    entry.target = TargetOf(header);
    entry.sizeBytes = static_cast<std::uint64_t>(archive_entry_size(header));
    return true;
}

std::size_t ArchiveReader::Read(char* buffer, std::size_t sizeBytes) {
    const la_ssize_t size = archive_read_data(archive_.get(), buffer, sizeBytes);
    if (size < 0) {
        throw Damage();
    }
    return static_cast<std::size_t>(size);
}

std::uint64_t ArchiveReader::ReadBytes() const {
    return static_cast<std::uint64_t>(archive_filter_bytes(archive_.get(), 0));
}

std::ptrdiff_t ArchiveReader::Feed(archive* archive, void* reader, const void** piece) {
    auto& self = *static_cast<ArchiveReader*>(reader);
    try {
        self.piece_.resize(kPieceBytes);
        self.piece_.resize(self.source_(self.piece_.data(), self.piece_.size()));
    } catch (const std::exception& error) {  // must not pass through the library
        archive_set_error(archive, EIO, "%s", error.what());
        return ARCHIVE_FATAL;
    }
    const std::size_t last = self.piece_.find_last_not_of('\0');
    const bool isAllZeros = last == std::string::npos;
    self.zerosAtEnd_ = isAllZeros ? self.zerosAtEnd_ + self.piece_.size() : self.piece_.size() - 1 - last;
    *piece = self.piece_.data();
    return static_cast<std::ptrdiff_t>(self.piece_.size());
}

// An archive that is not compressed may be cut between two entries without being damaged.
void ArchiveReader::CheckEnd() const {
    if (archive_filter_code(archive_.get(), 0) == ARCHIVE_FILTER_NONE && zerosAtEnd_ < kEndMarkBytes) {
        throw ArchiveDamage("it has no end");
    }
}

ArchiveDamage ArchiveReader::Damage() const {
    const char* text = archive_error_string(archive_.get());
    return ArchiveDamage(text != nullptr ? text : "it cannot be read");
}

}  // namespace client
