#include "libcamvora/downloadfiles.h"

#include "libcamvora/descriptor.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>

namespace camvora {

std::string PartialFile(const UpdateSettings& settings, const Release& release) {
    return settings.downloadFolder + "/" + settings.shortName + "-" + release.sha256 + ".partial";
}

std::string PackageFile(const UpdateSettings& settings, const Release& release) {
    return settings.downloadFolder + "/" + settings.shortName + "-" + release.version + ".spk";
}

bool RemoveDownloadFiles(const UpdateSettings& settings, const std::string& kept) {
    std::error_code failure;
    std::filesystem::directory_iterator entries(settings.downloadFolder, failure);
    bool areGone = !failure || failure == std::errc::no_such_file_or_directory;
    for (; !failure && entries != std::filesystem::directory_iterator(); entries.increment(failure)) {
        const std::string path = entries->path().string();
        if (path != kept && entries->path().filename().string().rfind(settings.shortName + "-", 0) == 0) {
            areGone = (unlink(path.c_str()) == 0 || errno == ENOENT) && areGone;
        }
    }
    return areGone && (!failure || failure == std::errc::no_such_file_or_directory);
}

bool MovePackage(const std::string& partial, const std::string& package) {
    const std::string folder = package.substr(0, package.rfind('/'));
    const Descriptor opened(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    return rename(partial.c_str(), package.c_str()) == 0 && fsync(opened.Number()) == 0;
}

}  // namespace camvora
