#include "host/runfile.h"

#include "host/uniquefd.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <stdexcept>
#include <utility>

namespace host {

RunFile::RunFile(std::string path, const std::string& line, mode_t mode) : path_(std::move(path)) {
    const std::string text = line + '\n';
    const std::string fresh = path_ + ".new";
    (void)unlink(fresh.c_str());  // of a host that was killed here
    const UniqueFd file(open(fresh.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode));
    const bool isWritten =
        file.IsOpen() && write(file.Get(), text.data(), text.size()) == static_cast<ssize_t>(text.size());
    if (!isWritten || std::rename(fresh.c_str(), path_.c_str()) != 0) {
        throw std::runtime_error("cannot write " + path_);
    }
}

RunFile::~RunFile() {
    (void)std::remove(path_.c_str());
}

}  // namespace host
