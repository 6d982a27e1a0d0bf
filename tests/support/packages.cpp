#include "support/packages.h"

#include <archive.h>
#include <archive_entry.h>

std::string MakePackage(const std::string& info, const std::vector<TarMember>& tree) {
    return TarOf({{"INFO", info}, {"package.tgz", Gzip(TarOf(tree))}});
}

std::string MakeDevicePack(const std::vector<TarMember>& more) {
    std::vector<TarMember> tree = {{"device_pack/", "", '5', "", 0755}, {"device_pack/conf", kGoodConf}};
    tree.insert(tree.end(), more.begin(), more.end());
    return MakePackage(kDevicePackInfo, tree);
}

std::string Gzip(const std::string& bytes) {
    constexpr std::size_t kFrameBytes = 1024;
    std::string compressed(bytes.size() + bytes.size() / 1000 + kFrameBytes, '\0');
    std::size_t size = 0;
    archive* writer = archive_write_new();
    archive_write_set_format_raw(writer);
    archive_write_add_filter_gzip(writer);
    archive_write_set_bytes_in_last_block(writer, 1);
    archive_write_open_memory(writer, compressed.data(), compressed.size(), &size);
    archive_entry* entry = archive_entry_new();
    archive_entry_set_filetype(entry, AE_IFREG);
    archive_write_header(writer, entry);
    archive_write_data(writer, bytes.data(), bytes.size());
    archive_entry_free(entry);
    archive_write_free(writer);
    compressed.resize(size);
    return compressed;
}
