#include "client/packagebuild.h"

#include "client/archivewriter.h"
#include "client/failure.h"
#include "client/keyvalue.h"
#include "client/newfile.h"
#include "client/packagerules.h"
#include "client/packagescan.h"
#include "client/plainfile.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>
#include <vector>

namespace client {
namespace {

namespace fs = std::filesystem;

constexpr const char* kInfoKeys[] = {"package", "version", "arch", "maintainer"};
constexpr const char* kConfKeys[] = {"version", "maintainer", "cv_min_ver"};
constexpr char kForbiddenInValues[] = "\"\r\n";

Failure WrongSetting(const std::string& file, const std::string& key, const std::string& why) {
    return {ExitStatus::kUsage, "\"" + key + "\" in " + file + " " + why};
}

// Key-value lines of a settings file.
class Settings {
public:
    explicit Settings(std::string file)
        : file_(std::move(file)), text_(PlainFile(file_).Text(kKeyFileLimitBytes)) {
        if (const std::string package = Value("package");
            package != kDevicePackPackage && package != kLocalDisplayPackage) {
            throw WrongSetting(
                file_, "package",
                std::string("is neither ") + kDevicePackPackage + " nor " + kLocalDisplayPackage);
        }
    }

    std::string Value(const std::string& key) const {
        std::string value = ValueOf(text_, key, std::string::npos).value_or("");
        if (value.empty()) {
            throw WrongSetting(file_, key, "is missing");
        }
        if (value.size() > kValueLimitBytes || value.find_first_of(kForbiddenInValues) != std::string::npos) {
            throw WrongSetting(file_, key, "is too long or has a quote in it");
        }
        return value;
    }

    template <std::size_t kCount>
    std::string Lines(const char* const (&keys)[kCount]) const {
        std::string lines;
        for (const char* key : keys) {
            lines += KeyValueLine(key, Value(key));
        }
        return lines;
    }

private:
    std::string file_;
    std::string text_;
};

// Everything below `dir`, folders before what is in them. Links are not followed.
std::vector<fs::path> ListTree(const std::string& dir) {
    std::error_code error;
    std::vector<fs::path> paths;
    for (fs::recursive_directory_iterator it(dir, error), end; !error && it != end; it.increment(error)) {
        paths.push_back(it->path());
    }
    if (error) {
        const bool isMissing = error == std::errc::no_such_file_or_directory;
        throw Failure(isMissing ? ExitStatus::kNotFound : ExitStatus::kFailed,
                      "Cannot read the tree in " + dir + ": " + error.message());
    }
    std::sort(paths.begin(), paths.end());
    return paths;
}

void AddPath(ArchiveWriter& archive, const std::string& name, const fs::path& path) {
    const fs::file_status status = fs::symlink_status(path);
    if (fs::is_directory(status)) {
        archive.AddFolder(name);
    } else if (fs::is_symlink(status)) {
        archive.AddLink(name, fs::read_symlink(path));
    } else {
        const bool isProgram = (status.permissions() & fs::perms::owner_exec) != fs::perms::none;
        archive.AddFile(name, PlainFile(path), isProgram);
    }
}

// In the order of the archive; the conf comes from the settings.
void WriteTree(int descriptor, const std::string& treeDir, const std::vector<fs::path>& paths,
               const Settings& settings) {
    ArchiveWriter archive(descriptor, ArchiveWriter::Compression::kGzip);
    const bool isDevicePack = settings.Value("package") == kDevicePackPackage;
    const std::string prefix = isDevicePack ? std::string(kDevicePackFolder) + "/" : "";
    if (isDevicePack) {
        archive.AddFolder(kDevicePackFolder);
    }
    archive.AddText(prefix + kConfName, settings.Lines(kConfKeys));
    for (const fs::path& path : paths) {
        AddPath(archive, prefix + path.lexically_relative(treeDir).string(), path);
    }
    archive.Finish();
}

void WritePackage(int descriptor, const std::string& treeArchive, const Settings& settings) {
    ArchiveWriter archive(descriptor, ArchiveWriter::Compression::kNone);
    archive.AddText(kInfoName, settings.Lines(kInfoKeys));
    archive.AddFile(kTreeArchiveName, PlainFile(treeArchive), false);
    archive.Finish();
}

// What is in the tree decides, too.
void CheckPackage(const std::string& path, const std::string& packageFile) {
    const PlainFile file(path);
    const std::string name = fs::path(packageFile).filename();
    const PackageScan scan = ScanPackage(file, ReadScanLimits(""));
    const std::string broken = BrokenRules(JudgePackage(name, file.SizeBytes(), scan, std::nullopt));
    if (!broken.empty()) {
        throw Failure(ExitStatus::kRefused, "The package would not keep the rules: " + broken);
    }
}

}  // namespace

BuiltPackage BuildPackage(const std::string& treeDir, const std::string& settingsFile,
                          const std::string& packageFile) {
    const Settings settings(settingsFile);
    const std::vector<fs::path> paths = ListTree(treeDir);
    if (fs::exists(fs::path(treeDir) / kConfName)) {
        throw Failure(ExitStatus::kFailed, "The tree has a conf of its own; it is made from the settings");
    }
    NewFile tree(packageFile);  // its size has to be known before it is put into the other
    WriteTree(tree.Descriptor(), treeDir, paths, settings);
    NewFile package(packageFile);
    WritePackage(package.Descriptor(), tree.TemporaryPath(), settings);
    CheckPackage(package.TemporaryPath(), packageFile);
    package.Finish();
    return {settings.Value("package"), settings.Value("version"), paths.size() + 1};
}

}  // namespace client
