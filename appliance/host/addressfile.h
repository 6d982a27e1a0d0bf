// The file that tells others where the host serves, for as long as it does.
#pragma once

#include <string>

namespace host {

class AddressFile {
public:
    // Writes `url` as the one line of the file at `path`; readers see the whole line or no file.
    // Throws std::runtime_error when that fails.
    AddressFile(std::string path, const std::string& url);
    ~AddressFile();  // removes the file
    AddressFile(const AddressFile&) = delete;
    AddressFile& operator=(const AddressFile&) = delete;

private:
    std::string path_;
};

}  // namespace host
