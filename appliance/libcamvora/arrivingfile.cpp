#include "libcamvora/arrivingfile.h"

#include "libcamvora/hextext.h"
#include "libcamvora/updatesettings.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <vector>

namespace camvora {

namespace {

constexpr std::size_t kReadBytes = 256 << 10;
constexpr std::size_t kSha256SizeBytes = 32;

}  // namespace

ArrivingFile::ArrivingFile(const std::string& path)
    : path_(path),
      file_(open(path.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0600)),
      hash_(EVP_MD_CTX_new(), &EVP_MD_CTX_free) {
    ReadThrough();
}

void ArrivingFile::ReadThrough() {
    std::vector<char> bytes(kReadBytes);
    (void)EVP_DigestInit_ex(hash_.get(), EVP_sha256(), nullptr);
    for (;;) {
        const ssize_t size = read(file_.Number(), bytes.data(), bytes.size());
        if (size < 0 && errno != EINTR) {
            throw UpdateFailure("a file for the download cannot be had");
        }
        if (size == 0) {
            return;
        }
        (void)EVP_DigestUpdate(hash_.get(), bytes.data(), size > 0 ? static_cast<std::size_t>(size) : 0);
        sizeBytes_ += size > 0 ? size : 0;
    }
}

bool ArrivingFile::Append(const char* bytes, std::size_t sizeBytes) {
    std::size_t done = 0;
    while (done < sizeBytes) {
        const ssize_t written = write(file_.Number(), bytes + done, sizeBytes - done);
        if (written < 0 && errno != EINTR) {
            return false;
        }
        done += written > 0 ? static_cast<std::size_t>(written) : 0;
    }
    (void)EVP_DigestUpdate(hash_.get(), bytes, sizeBytes);
    sizeBytes_ += static_cast<long long>(sizeBytes);
    return true;
}

bool ArrivingFile::Restart() {
    if (ftruncate(file_.Number(), 0) != 0 || lseek(file_.Number(), 0, SEEK_SET) != 0) {
        return false;
    }
    (void)EVP_DigestInit_ex(hash_.get(), EVP_sha256(), nullptr);
    sizeBytes_ = 0;
    return true;
}

std::string ArrivingFile::Sha256() const {
    const std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> copy(EVP_MD_CTX_new(), &EVP_MD_CTX_free);
    std::array<unsigned char, kSha256SizeBytes> bytes{};
    (void)EVP_MD_CTX_copy_ex(copy.get(), hash_.get());
    (void)EVP_DigestFinal_ex(copy.get(), bytes.data(), nullptr);
    return HexText(bytes.data(), bytes.size());
}

bool ArrivingFile::Sync() const {
    return fsync(file_.Number()) == 0;
}

void ArrivingFile::Remove() const {
    (void)unlink(path_.c_str());
}

}  // namespace camvora
