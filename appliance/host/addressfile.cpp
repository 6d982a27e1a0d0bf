#include "host/addressfile.h"

#include <cstdio>
#include <fstream>
#include <stdexcept>

namespace host {

AddressFile::AddressFile(std::string path, const std::string& url) : path_(std::move(path)) {
    const std::string written = path_ + ".new";
    std::ofstream file(written, std::ios::trunc);
    file << url << '\n';
    file.close();
    if (!file || std::rename(written.c_str(), path_.c_str()) != 0) {
        throw std::runtime_error("cannot write " + path_);
    }
}

AddressFile::~AddressFile() {
    (void)std::remove(path_.c_str());
}

}  // namespace host
