#include "support/unpacked.h"

#include <archive.h>
#include <archive_entry.h>
#include <sys/stat.h>

#include <array>
#include <filesystem>
#include <memory>
#include <stdexcept>

namespace {

namespace fs = std::filesystem;

constexpr mode_t kPermissions = 0755;  // the most that is taken over
constexpr char kTree[] = "package.tgz";

struct Entry {
    fs::path path;
    mode_t mode;
    std::string content;   // of a link: where it leads
    std::string hardLink;  // the entry that it is another name of
};

void Check(archive* reader, la_ssize_t result) {
    if (result < ARCHIVE_WARN) {
        const char* reason = archive_error_string(reader);
        throw std::runtime_error(reason == nullptr ? "no reason given" : reason);
    }
}

std::string ReadContent(archive* reader) {
    std::string content;
    std::array<char, 65'536> buffer{};
    la_ssize_t size = 0;
    while ((size = archive_read_data(reader, buffer.data(), buffer.size())) > 0) {
        content.append(buffer.data(), static_cast<std::size_t>(size));
    }
    Check(reader, size);
    return content;
}

Entry ReadEntry(archive* reader, archive_entry* header) {
    const fs::path path = fs::path(archive_entry_pathname(header)).relative_path().lexically_normal();
    const char* link = archive_entry_symlink(header);
    const char* hardLink = archive_entry_hardlink(header);
    return {path.has_filename() ? path : path.parent_path(),
            archive_entry_filetype(header) |
                (link == nullptr ? archive_entry_perm(header) & kPermissions : ACCESSPERMS),
            link == nullptr ? ReadContent(reader) : link, hardLink == nullptr ? "" : hardLink};
}

std::vector<Entry> ReadArchive(const std::string& bytes) {
    const std::unique_ptr<archive, int (*)(archive*)> owner(archive_read_new(), archive_read_free);
    archive* reader = owner.get();
    archive_read_set_format(reader, ARCHIVE_FORMAT_TAR);  // where it would not recognise it, too
    archive_read_support_filter_gzip(reader);
    Check(reader, archive_read_open_memory(reader, bytes.data(), bytes.size()));
    std::vector<Entry> entries;
    archive_entry* header = nullptr;
    int result = ARCHIVE_OK;
    while ((result = archive_read_next_header(reader, &header)) != ARCHIVE_EOF) {
        Check(reader, result);
        entries.push_back(ReadEntry(reader, header));
    }
    return entries;
}

void Add(const Entry& entry, const fs::path& folder, Listing& listing) {
    const fs::path path = folder / entry.path;
    for (fs::path above = path.parent_path(); !above.empty(); above = above.parent_path()) {
        listing.emplace(above, DescribeEntry(S_IFDIR | kPermissions));
    }
    if (entry.path != "." && !entry.path.empty()) {
        listing[path] = entry.hardLink.empty() ? DescribeEntry(entry.mode, entry.content)
                                               : listing[folder / entry.hardLink];
    }
}

}  // namespace

Listing ListingOfPackage(const std::string& package, const std::string& tree, const std::string& folder) {
    Listing listing;
    std::string inner;
    for (const Entry& entry : ReadArchive(package)) {
        if (entry.path == kTree) {
            inner = entry.content;
        } else if (*entry.path.begin() != tree && (S_ISREG(entry.mode) || S_ISDIR(entry.mode))) {
            Add(entry, "", listing);
        }
    }
    for (const Entry& entry : ReadArchive(inner)) {
        Add(entry, folder, listing);
    }
    return listing;
}
