#include "client/location.h"

#include "client/failure.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <optional>
#include <regex>
#include <system_error>

namespace client {
namespace {

constexpr char kAddressFile[] = "/var/packages/Camvora/target/@CVData/run/address";
constexpr char kTokenFile[] = "/token";
constexpr char kLauncher[] = "/launch";
constexpr std::size_t kFileLimitBytes = 4096;

// The first line without blanks at its end; nothing, with errno set, when the file cannot be read.
std::optional<std::string> FirstLine(const std::string& path) {
    errno = 0;
    std::ifstream file(path);
    std::array<char, kFileLimitBytes> buffer{};
    file.read(buffer.data(), buffer.size());
    if (errno != 0) {
        return std::nullopt;
    }
    const std::string content(buffer.data(), static_cast<std::size_t>(file.gcount()));
    const std::string line = content.substr(0, content.find('\n'));
    return line.substr(0, line.find_last_not_of(" \t\r") + 1);
}

std::string FindDir(const LocationOptions& options, const std::string& programDir) {
    if (!options.dir.empty()) {
        return options.dir;
    }
    std::error_code ignored;
    const bool isInstalled = !programDir.empty() && std::filesystem::exists(programDir + kTokenFile, ignored);
    return isInstalled ? programDir : "";
}

void CheckFolder(const std::string& dir) {
    std::error_code ignored;
    if (!std::filesystem::is_directory(dir, ignored)) {
        throw Failure(ExitStatus::kUnreachable, "There is no appliance in " + dir + ": it is not a folder");
    }
}

std::string ReadAddress(const std::string& dir) {
    if (dir.empty()) {
        throw Failure(ExitStatus::kUsage,
                      "Where is the appliance? Give --dir DIR or --host URL, or set CAMVORA_DIR");
    }
    const std::optional<std::string> address = FirstLine(dir + kAddressFile);
    if (!address && (errno == ENOENT || errno == ENOTDIR)) {
        CheckFolder(dir);
        throw Failure(ExitStatus::kUnreachable,
                      "The appliance in " + dir + " is not running. Start it with " + dir + kLauncher);
    }
    if (!address) {
        throw Failure(ExitStatus::kUnreachable, "Cannot read the appliance's address in " + dir +
                                                    kAddressFile + ": " + strerror(errno));
    }
    return *address;
}

std::string CheckUrl(const std::string& url) {
    if (const std::string problem = AddressProblem(url); !problem.empty()) {
        throw Failure(ExitStatus::kUsage, problem);
    }
    return url.substr(0, url.find_last_not_of('/') + 1);
}

bool IsVisible(char byte) {
    return byte > ' ' && byte <= '~';
}

std::string ReadToken(const std::string& file) {
    const std::optional<std::string> token = FirstLine(file);
    if (!token) {
        throw Failure(ExitStatus::kNotAuthorised,
                      "Cannot read the token in " + file + ": " + strerror(errno));
    }
    if (token->empty() || !std::all_of(token->begin(), token->end(), IsVisible)) {
        throw Failure(ExitStatus::kNotAuthorised, "There is no token in " + file);
    }
    return *token;
}

std::string FindToken(const LocationOptions& options, const std::string& dir) {
    if (!options.tokenFile.empty()) {
        return ReadToken(options.tokenFile);
    }
    return dir.empty() ? "" : ReadToken(dir + kTokenFile);
}

}  // namespace

std::string AddressProblem(const std::string& url) {
    static const std::regex form(R"(http://([A-Za-z0-9._-]+|\[[0-9A-Fa-f:.]+\]):[0-9]{1,5}/?)");
    return std::regex_match(url, form) ? ""
                                       : "\"" + url + "\" is not an address of the form http://HOST:PORT";
}

Location Locate(const LocationOptions& options, const std::string& programDir) {
    const std::string dir = FindDir(options, programDir);
    Location location;
    location.url = CheckUrl(options.url.empty() ? ReadAddress(dir) : options.url);
    location.token = FindToken(options, dir);
    location.hint = options.url.empty() ? "start it with " + dir + kLauncher : "";
    return location;
}

std::string LocateFolder(const LocationOptions& options, const std::string& programDir) {
    std::string dir = FindDir(options, programDir);
    if (!dir.empty()) {
        CheckFolder(dir);
    }
    return dir;
}

std::string ProgramDir() {
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/exe", error).parent_path().string();
}

}  // namespace client
