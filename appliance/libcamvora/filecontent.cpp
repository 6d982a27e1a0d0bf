// Whole files to and from memory.
#include "libcamvora/base64.h"
#include "libcamvora/descriptor.h"
#include "libcamvora/plainfile.h"
#include "platform/files.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>

namespace {

using camvora::Descriptor;

constexpr std::size_t kFirstBlockBytes = 4096;

bool WriteAll(int file, const unsigned char* bytes, std::size_t sizeBytes) {
    while (sizeBytes > 0) {
        const ssize_t written = write(file, bytes, sizeBytes);
        if (written < 0 && errno != EINTR) {
            return false;
        }
        bytes += std::max<ssize_t>(written, 0);
        sizeBytes -= static_cast<std::size_t>(std::max<ssize_t>(written, 0));
    }
    return true;
}

// Readers see the whole file or none. A killed writer leaves a file of another name, with mode 0600.
bool WriteWhole(const std::string& path, const unsigned char* bytes, std::size_t sizeBytes) {
    std::string fresh = path + ".XXXXXX";
    const Descriptor file(mkostemp(fresh.data(), O_CLOEXEC));
    if (!file.IsOpen()) {
        return false;
    }
    if (WriteAll(file.Number(), bytes, sizeBytes) && rename(fresh.c_str(), path.c_str()) == 0) {
        return true;
    }
    (void)unlink(fresh.c_str());
    return false;
}

}  // namespace

int ReadContentFromFileToBuf(const std::string& path, bool wholeFile, unsigned char*& buffer,
                             std::size_t& sizeBytes) {
    buffer = nullptr;
    sizeBytes = 0;
    std::size_t size = 0;
    const Descriptor file = camvora::OpenPlainFile(path.c_str(), size);
    if (!file.IsOpen()) {
        return -1;
    }
    size = wholeFile ? size : std::min(size, kFirstBlockBytes);
    auto* bytes = static_cast<unsigned char*>(std::malloc(std::max<std::size_t>(size, 1)));
    if (bytes == nullptr || !camvora::ReadUpTo(file.Number(), bytes, size)) {
        std::free(bytes);
        return -1;
    }
    buffer = bytes;
    sizeBytes = size;
    return 0;
}

int WriteFileByBase64String(const std::string& path, const std::string& text, unsigned char* buffer,
                            int sizeBytes) {
    const auto size = camvora::DecodedSize(text);
    if (sizeBytes < 0 || size != static_cast<std::size_t>(sizeBytes) ||
        !camvora::DecodeBase64(text, buffer)) {
        return -1;
    }
    return WriteWhole(path, buffer, *size) ? 0 : -1;
}

std::string HttpBase64EncodeUnsigned(const unsigned char* bytes, std::size_t sizeBytes) {
    return camvora::EncodeBase64(bytes, sizeBytes);
}
