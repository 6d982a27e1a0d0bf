// Stand-ins for the calls that look at the file system and change it: the linker leads the test program's
// calls of them here first. A call is recorded; then it does what it always does, unless the path is the
// appliance's or the test has scripted an answer: the error to fail with, 0 to do nothing and succeed, or,
// for lstat, "folder", "copy" (another folder) or "file". Without one nothing of the appliance is there, and
// all that is done to it succeeds.
#include "fake/journal.h"
#include "fake/script.h"

#include <fcntl.h>
#include <ftw.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <optional>
#include <string>

namespace {

constexpr char kAppliance[] = "/var/packages/";

bool IsAppliances(const std::string& path) {
    return path.rfind(kAppliance, 0) == 0;
}

// The result that the script has for the call; nothing when it is to be really made.
std::optional<int> Scripted(const std::string& function, const std::string& path) {
    const Json::Value error = fake::NextAnswer(function, IsAppliances(path) ? Json::Value(0) : Json::Value());
    if (!error.isInt()) {
        return std::nullopt;
    }
    errno = error.asInt();
    return errno == 0 ? 0 : -1;
}

}  // namespace

// The linker's --wrap chooses these names.
extern "C" {

int __real_lstat64(const char* path, struct stat* info);
int __real_nftw64(const char* folder, __nftw_func_t visit, int openFolders, int flags);
int __real_open64(const char* path, int flags, ...);
int __real_rename(const char* from, const char* to);
int __real_mkdir(const char* path, mode_t mode);
int __real_rmdir(const char* path);
int __real_unlink(const char* path);

int __wrap_lstat64(const char* path, struct stat* info) {
    fake::Record("lstat", path);
    const Json::Value answer = fake::NextAnswer("lstat " + std::string(path), Json::Value());
    if (answer.isString()) {
        *info = {};
        info->st_mode = answer.asString() == "file" ? S_IFREG : S_IFDIR;
        info->st_ino = answer.asString() == "copy" ? 2 : 1;
        return 0;
    }
    const int otherwise = fake::NextAnswer("lstat", IsAppliances(path) ? ENOENT : 0).asInt();
    errno = answer.isInt() ? answer.asInt() : otherwise;
    return errno != 0 ? -1 : __real_lstat64(path, info);
}

int __wrap_nftw64(const char* folder, __nftw_func_t visit, int openFolders, int flags) {
    fake::Record("nftw", folder);
    const auto result = Scripted("nftw", folder);
    return result ? *result : __real_nftw64(folder, visit, openFolders, flags);
}

// Of the appliance's folders any open descriptor will do.
int __wrap_open64(const char* path, int flags, mode_t mode) {
    if (IsAppliances(path)) {
        fake::Record("open", path);
        return Scripted("open", path) == 0 ? __real_open64("/", O_RDONLY | O_CLOEXEC) : -1;
    }
    return __real_open64(path, flags, mode);
}

int __wrap_rename(const char* from, const char* to) {
    fake::Record("rename", from, to);
    const auto result = Scripted("rename", from);
    return result ? *result : __real_rename(from, to);
}

int __wrap_mkdir(const char* path, mode_t mode) {
    fake::Record("mkdir", path);
    const auto result = Scripted("mkdir", path);
    return result ? *result : __real_mkdir(path, mode);
}

int __wrap_rmdir(const char* path) {
    fake::Record("rmdir", path);
    const auto result = Scripted("rmdir", path);
    return result ? *result : __real_rmdir(path);
}

// Nothing is removed: the paths are the appliance's.
int __wrap_remove(const char* path) {
    fake::Record("remove", path);
    return fake::NextAnswer("remove", 0).asInt();
}

// Never really: it would wait for the whole machine.
void __wrap_sync() {
    fake::Record("sync");
}

// Of the module's own calls; the fake's journal has a file, too.
int __wrap_unlink(const char* path) {
    if (std::string(path).rfind("/tmp/cv_", 0) == 0) {
        fake::Record("unlink", path);
    }
    return __real_unlink(path);
}
}
