#include "support/temporaryfolder.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <system_error>

TemporaryFolder::TemporaryFolder()
    : path_((std::filesystem::temp_directory_path() / "camvora_test_XXXXXX").string()) {
    if (mkdtemp(path_.data()) == nullptr) {
        throw std::runtime_error("cannot make " + path_);
    }
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

void TemporaryFolder::Write(const std::string& name, const std::string& content) const {
    const std::string path = PathOf(name);
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    std::ofstream(path, std::ios::binary) << content;
}

std::string TemporaryFolder::Read(const std::string& name) const {
    std::ifstream file(PathOf(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}
