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
#include <string>

namespace {

constexpr char kAppliance[] = "/var/packages/";

bool IsAppliances(const std::string& path) {
    return path.rfind(kAppliance, 0) == 0;
}

// Records the call and returns the script's result, or, where there is none, that of `real`.
template <typename Real, typename... More>
int Make(Real real, const std::string& function, const std::string& path, const More&... more) {
    const Json::Value otherwise = IsAppliances(path) ? Json::Value(0) : Json::Value();
    const Json::Value error = fake::Call(function, otherwise, path, more...);
    if (!error.isInt()) {
        return real();
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
    return Make([=] { return __real_nftw64(folder, visit, openFolders, flags); }, "nftw", folder);
}

// Of the appliance's folders any open descriptor will do.
int __wrap_open64(const char* path, int flags, mode_t mode) {
    if (IsAppliances(path)) {
        fake::Record("open", path);
        return __real_open64("/", O_RDONLY | O_CLOEXEC);
    }
    return __real_open64(path, flags, mode);
}

int __wrap_rename(const char* from, const char* to) {
    return Make([=] { return __real_rename(from, to); }, "rename", from, to);
}

int __wrap_mkdir(const char* path, mode_t mode) {
    return Make([=] { return __real_mkdir(path, mode); }, "mkdir", path);
}

int __wrap_rmdir(const char* path) {
    return Make([=] { return __real_rmdir(path); }, "rmdir", path);
}

// Nothing is removed: the paths are the appliance's.
int __wrap_remove(const char* path) {
    return fake::Call("remove", 0, path).asInt();
}

// Never really: it would wait for the whole machine.
void __wrap_sync() {
    fake::Record("sync");
}

int __wrap_unlink(const char* path) {
    fake::Record("unlink", path);
    return __real_unlink(path);
}
}
