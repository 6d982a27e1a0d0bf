#include "client/archivewriter.h"

#include "client/failure.h"
#include "client/plainfile.h"

#include <archive.h>
#include <archive_entry.h>

#include <algorithm>
#include <array>

namespace client {
namespace {

constexpr std::int64_t kTime = 1577836800;  // 2020-01-01 UTC
constexpr unsigned int kDataMode = 0644;
constexpr unsigned int kProgramMode = 0755;
constexpr unsigned int kLinkMode = 0777;
constexpr std::size_t kCopiedBytes = 64UL * 1024;

}  // namespace

ArchiveWriter::ArchiveWriter(int descriptor, Compression compression)
    : archive_(archive_write_new(), archive_write_free) {
    (void)archive_write_set_format_gnutar(archive_.get());
    if (compression == Compression::kGzip) {
        (void)archive_write_add_filter_gzip(archive_.get());
        (void)archive_write_set_filter_option(archive_.get(), "gzip", "timestamp", nullptr);
    }
    Check(archive_write_open_fd(archive_.get(), descriptor) == ARCHIVE_OK);
}

void ArchiveWriter::AddFolder(const std::string& name) {
    Begin(MakeEntry(name, AE_IFDIR, kProgramMode));
}

void ArchiveWriter::AddLink(const std::string& name, const std::string& target) {
    const Entry entry = MakeEntry(name, AE_IFLNK, kLinkMode);
    archive_entry_set_symlink(entry.get(), target.c_str());
    Begin(entry);
}

void ArchiveWriter::AddText(const std::string& name, const std::string& text) {
    const Entry entry = MakeEntry(name, AE_IFREG, kDataMode);
    archive_entry_set_size(entry.get(), static_cast<la_int64_t>(text.size()));
    Begin(entry);
    Write(text.data(), text.size());
}

void ArchiveWriter::AddFile(const std::string& name, const PlainFile& file, bool isProgram) {
    const Entry entry = MakeEntry(name, AE_IFREG, isProgram ? kProgramMode : kDataMode);
    archive_entry_set_size(entry.get(), static_cast<la_int64_t>(file.SizeBytes()));
    Begin(entry);
    std::array<char, kCopiedBytes> piece;
    for (std::uint64_t offset = 0; offset < file.SizeBytes();) {
        const std::size_t size = file.ReadAt(
            offset, piece.data(), std::min<std::uint64_t>(piece.size(), file.SizeBytes() - offset));
        if (size == 0) {
            throw Failure(ExitStatus::kFailed, "A file became shorter while it was packed: " + name);
        }
        Write(piece.data(), size);
        offset += size;
    }
}

void ArchiveWriter::Finish() {
    Check(archive_write_close(archive_.get()) == ARCHIVE_OK);
}

ArchiveWriter::Entry ArchiveWriter::MakeEntry(const std::string& name, unsigned int type,
                                              unsigned int permissions) {
    Entry entry(archive_entry_new(), archive_entry_free);
    archive_entry_set_pathname(entry.get(), name.c_str());
    archive_entry_set_filetype(entry.get(), type);
    archive_entry_set_perm(entry.get(), permissions);
    archive_entry_set_mtime(entry.get(), kTime, 0);
    return entry;
}

void ArchiveWriter::Begin(const Entry& entry) {
    Check(archive_write_header(archive_.get(), entry.get()) == ARCHIVE_OK);
}

void ArchiveWriter::Write(const char* bytes, std::size_t sizeBytes) {
    Check(archive_write_data(archive_.get(), bytes, sizeBytes) == static_cast<la_ssize_t>(sizeBytes));
}

void ArchiveWriter::Check(bool isDone) const {
    if (!isDone) {
        const char* text = archive_error_string(archive_.get());
        throw Failure(ExitStatus::kFailed,
                      std::string("Cannot write the archive: ") + (text != nullptr ? text : "unknown error"));
    }
}

}  // namespace client
