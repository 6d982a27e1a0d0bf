#include "libcamvora/cappedoutput.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>

namespace camvora {

namespace {

constexpr std::size_t kPipeBytes = 65'536;

}  // namespace

CappedOutput::CappedOutput(const std::string& path, std::size_t limitBytes)
    : file_(open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600)),
      leftBytes_(limitBytes) {
    std::array<int, 2> ends{-1, -1};
    if (pipe2(ends.data(), O_CLOEXEC) == 0) {
        readEnd_.emplace(ends[0]);
        writeEnd_.emplace(ends[1]);
        (void)fcntl(ends[0], F_SETFL, O_NONBLOCK);
    }
}

void CappedOutput::Take() {
    std::array<char, kPipeBytes> content{};
    const ssize_t size = read(ReadEnd(), content.data(), content.size());
    if (size > 0) {
        Keep(content.data(), static_cast<std::size_t>(size));
    } else if (size == 0) {
        readEnd_.reset();  // nobody prints any more
    }
}

void CappedOutput::Keep(const char* bytes, std::size_t sizeBytes) {
    const std::size_t kept = std::min(sizeBytes, leftBytes_);
    leftBytes_ -= kept;
    (void)!write(file_.Number(), bytes, kept);  // on a full disk there is less to read afterwards
}

}  // namespace camvora
