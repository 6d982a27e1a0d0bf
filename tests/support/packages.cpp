#include "support/packages.h"

#include <archive.h>
#include <archive_entry.h>

#include <stdexcept>

namespace {

unsigned int TypeOf(char kind) {
    switch (kind) {
        case 'd':
            return AE_IFDIR;
        case 'l':
            return AE_IFLNK;
        case 'p':
            return AE_IFIFO;
        default:
            return AE_IFREG;
    }
}

void Add(archive* writer, const TestEntry& from) {
    archive_entry* entry = archive_entry_new();
    archive_entry_copy_pathname(entry, from.name.c_str());
    archive_entry_set_filetype(entry, TypeOf(from.kind));
    archive_entry_set_perm(entry, from.kind == 'd' ? 0755 : 0644);
    archive_entry_set_size(entry, from.kind == 'f' ? static_cast<la_int64_t>(from.content.size()) : 0);
    if (from.kind == 'l') {
        archive_entry_copy_symlink(entry, from.content.c_str());
    } else if (from.kind == 'h') {
        archive_entry_copy_hardlink(entry, from.content.c_str());
    }
    bool isAdded = archive_write_header(writer, entry) >= ARCHIVE_WARN;
    if (from.kind == 'f') {
        isAdded &= archive_write_data(writer, from.content.data(), from.content.size()) >= 0;
    }
    archive_entry_free(entry);
    if (!isAdded) {
        throw std::runtime_error("cannot pack " + from.name);
    }
}

la_ssize_t Append(archive* /*writer*/, void* text, const void* bytes, std::size_t sizeBytes) {
    static_cast<std::string*>(text)->append(static_cast<const char*>(bytes), sizeBytes);
    return static_cast<la_ssize_t>(sizeBytes);
}

}  // namespace

std::string MakeTar(const std::vector<TestEntry>& entries, bool isCompressed, bool isPax) {
    std::string text;
    archive* writer = archive_write_new();
    isPax ? archive_write_set_format_pax(writer) : archive_write_set_format_gnutar(writer);
    if (isCompressed) {
        archive_write_add_filter_gzip(writer);
    }
    archive_write_set_bytes_in_last_block(writer, 1);
    archive_write_open(writer, &text, nullptr, Append, nullptr);
    for (const TestEntry& entry : entries) {
        Add(writer, entry);
    }
    archive_write_free(writer);
    return text;
}

std::string MakePackage(const std::string& info, const std::vector<TestEntry>& tree) {
    return MakeTar({{"INFO", info}, {"package.tgz", MakeTar(tree, true)}});
}

std::string MakeDevicePack(const std::vector<TestEntry>& more) {
    std::vector<TestEntry> tree = {{"device_pack/", "", 'd'}, {"device_pack/conf", kGoodConf}};
    tree.insert(tree.end(), more.begin(), more.end());
    return MakePackage(kDevicePackInfo, tree);
}

std::string Gzip(const std::string& bytes) {
    std::string text;
    archive* writer = archive_write_new();
    archive_write_set_format_raw(writer);
    archive_write_add_filter_gzip(writer);
    archive_write_set_bytes_in_last_block(writer, 1);
    archive_write_open(writer, &text, nullptr, Append, nullptr);
    Add(writer, {"raw", bytes});
    archive_write_free(writer);
    return text;
}
