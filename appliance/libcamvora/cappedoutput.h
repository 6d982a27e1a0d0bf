// What a program prints, of which only the first part is kept.
#pragma once

#include "libcamvora/descriptor.h"

#include <cstddef>
#include <optional>
#include <string>

namespace camvora {

// Used by the process that watches the program; the program itself gets the end to write to.
class CappedOutput {
public:
    // Keeps at most `limitBytes` bytes, at the end of the file at `path`. Where there can be no file or no
    // pipe, what is printed is dropped.
    CappedOutput(const std::string& path, std::size_t limitBytes);

    // Descriptors, negative where there are none. Both stay this object's.
    int WriteEnd() const { return writeEnd_ ? writeEnd_->Number() : -1; }
    int ReadEnd() const { return readEnd_ ? readEnd_->Number() : -1; }

    // To be called once the program has its end: the pipe is at its end then when all others have closed it.
    void CloseWriteEnd() { writeEnd_.reset(); }

    // Takes what the pipe holds. Never waits, however much is being printed.
    void Take();

private:
    void Keep(const char* bytes, std::size_t sizeBytes);

    const Descriptor file_;
    std::size_t leftBytes_;
    std::optional<Descriptor> readEnd_;
    std::optional<Descriptor> writeEnd_;
};

}  // namespace camvora
