#include "libcamvora/cronrule.h"

#include "libcamvora/descriptor.h"
#include "libcamvora/plainfile.h"
#include "platform/files.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

namespace camvora {

namespace {

constexpr std::size_t kRuleLimitBytes = 4096;

// One writer at a time, for as long as the folder is open.
Descriptor LockFolder(const std::string& folder) {
    Descriptor opened(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (opened.IsOpen()) {
        (void)flock(opened.Number(), LOCK_EX);
    }
    return opened;
}

bool WriteToDisk(const std::string& path, const std::string& text) {
    const Descriptor file(open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC, 0644));
    return file.IsOpen() &&
           write(file.Number(), text.data(), text.size()) == static_cast<ssize_t>(text.size()) &&
           fsync(file.Number()) == 0;
}

}  // namespace

bool WriteRule(const std::string& folder, const std::string& name, const std::string& line) {
    const std::string text = line + "\n";
    const std::string path = folder + "/" + name;
    if (ReadPlainFile(path.c_str(), kRuleLimitBytes) == text) {
        return true;
    }
    (void)CreateFullDirPath(folder);
    const Descriptor opened = LockFolder(folder);
    const std::string fresh = folder + "/." + name + ".new";  // names with a dot are no rules
    if (!opened.IsOpen() || !WriteToDisk(fresh, text) || rename(fresh.c_str(), path.c_str()) != 0) {
        (void)unlink(fresh.c_str());
        return false;
    }
    return fsync(opened.Number()) == 0;
}

bool RemoveRule(const std::string& folder, const std::string& name) {
    const Descriptor opened = LockFolder(folder);
    if (unlink((folder + "/" + name).c_str()) != 0) {
        return errno == ENOENT;
    }
    return fsync(opened.Number()) == 0;
}

}  // namespace camvora
