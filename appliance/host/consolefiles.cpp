#include "host/consolefiles.h"

#include "libcamvora/hextext.h"
#include "platform/log.h"

#include <openssl/evp.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <utility>

namespace host {

namespace {

constexpr char kFolderPath[] = "/console/";
constexpr char kFirstPage[] = "index.html";
constexpr std::size_t kTagBytes = 12;

// All that the console needs comes from here, and nobody shows it inside of a page of his own.
constexpr std::pair<const char*, const char*> kHeaders[] = {
    {"Content-Security-Policy",
     "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self'; connect-src 'self'; "
     "base-uri 'none'; form-action 'none'; frame-ancestors 'none'"},
    {"Referrer-Policy", "no-referrer"},
    {"Cache-Control", "no-cache"},
};

std::string TypeOf(const std::filesystem::path& file) {
    static const std::map<std::string, std::string> types = {
        {".html", "text/html; charset=utf-8"},        {".css", "text/css; charset=utf-8"},
        {".js", "text/javascript; charset=utf-8"},    {".svg", "image/svg+xml"},
        {".json", "application/json; charset=utf-8"},
    };
    const auto type = types.find(file.extension());
    return type == types.end() ? "" : type->second;
}

std::string TagOf(const std::string& content) {
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    (void)EVP_Digest(content.data(), content.size(), digest.data(), nullptr, EVP_sha256(), nullptr);
    return '"' + camvora::HexText(digest.data(), kTagBytes) + '"';
}

}  // namespace

ConsoleFiles::ConsoleFiles(const std::string& folder) {
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(folder, error)) {
        const std::string type = TypeOf(entry.path());
        std::ifstream file(entry.path(), std::ios::binary);
        if (type.empty() || !file) {
            continue;
        }
        std::string content((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
        const std::string name = entry.path().filename();
        const std::string tag = TagOf(content);
        files_[name == kFirstPage ? "/" : kFolderPath + name] = {std::move(content), type, tag};
    }
    if (files_.empty()) {
        CVPrintf(0, nullptr, nullptr, "host", __LINE__, __func__, "There is no console in [%s]\n",
                 folder.c_str());
    }
}

bool ConsoleFiles::Answer(const std::string& path, const httplib::Request& request,
                          httplib::Response& response) const {
    const auto found = files_.find(path);
    if (found == files_.end()) {
        return false;
    }
    const File& file = found->second;
    for (const auto& [name, value] : kHeaders) {
        response.set_header(name, value);
    }
    response.set_header("ETag", file.tag);
    if (request.get_header_value("If-None-Match") == file.tag) {
        response.status = 304;
        return true;
    }
    response.status = 200;
    response.set_content(file.content, file.type);
    return true;
}

}  // namespace host
