#include "tempfolder.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace fs = std::filesystem;

TempFolder::TempFolder() : path_((fs::temp_directory_path() / "camvoractl_test_XXXXXX").string()) {
    if (mkdtemp(path_.data()) == nullptr) {
        throw std::runtime_error("cannot make " + path_);
    }
}

TempFolder::~TempFolder() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
}

void TempFolder::Write(const std::string& name, const std::string& content) const {
    const fs::path file = fs::path(path_) / name;
    fs::create_directories(file.parent_path());
    std::ofstream(file) << content;
}
