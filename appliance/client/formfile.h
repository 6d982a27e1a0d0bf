// A file as the one field of a form (multipart/form-data), read piece by piece as it is sent.
#pragma once

#include "client/plainfile.h"

#include <cstdint>
#include <string>

namespace client {

class FormFile {
public:
    //   field  name of the field
    //   path   of the file; it is sent under its name without folders
    //   throws Failure as PlainFile does
    FormFile(const std::string& field, const std::string& path);

    // The value of the header "Content-Type".
    std::string ContentType() const;

    // The size of the whole body.
    std::uint64_t SizeBytes() const;

    // Reads what stands at `offset` in the body, at most `sizeBytes` of it and at least one byte. Throws
    // Failure (kFailed) when the file cannot be read or has become shorter.
    std::size_t ReadAt(std::uint64_t offset, char* buffer, std::size_t sizeBytes) const;

private:
    PlainFile file_;
    std::string boundary_;
    std::string head_;
    std::string tail_;
};

}  // namespace client
