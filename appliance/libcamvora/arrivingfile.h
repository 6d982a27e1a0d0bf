// A file that arrives in pieces, perhaps by several processes one after the other, and its hash.
#pragma once

#include "libcamvora/descriptor.h"

#include <openssl/evp.h>

#include <cstddef>
#include <memory>
#include <string>

namespace camvora {

class ArrivingFile {
public:
    // Opens the file at `path`, makes it if absent, and reads what is there. Throws UpdateFailure when that
    // fails.
    explicit ArrivingFile(const std::string& path);

    long long SizeBytes() const { return sizeBytes_; }

    // Adds to its end. Returns false, with the reason in errno, when the disk does not take it.
    bool Append(const char* bytes, std::size_t sizeBytes);

    // Empties it. Returns false as Append does.
    bool Restart();

    // The SHA-256 of all that is there, as lower-case hex text.
    std::string Sha256() const;

    // Waits until the disk has it. Returns false as Append does.
    bool Sync() const;

    // Removes the file; this object is of no use then.
    void Remove() const;

private:
    void ReadThrough();

    std::string path_;
    Descriptor file_;
    std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> hash_;
    long long sizeBytes_ = 0;
};

}  // namespace camvora
