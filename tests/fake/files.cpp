#include "platform/files.h"

#include "fake/journal.h"
#include "fake/script.h"

#include <cstdio>

bool IsFileExist(const std::string& path) {
    fake::Record("IsFileExist", path);
    return fake::NextAnswer("IsFileExist", false).asBool();
}

int RemoveFileIfExist(const std::string& path) {
    fake::Record("RemoveFileIfExist", path);
    return fake::NextAnswer("RemoveFileIfExist", 0).asInt();
}

std::string itos(long long number) {
    return std::to_string(number);
}

// Nothing is removed: the paths are the appliance's.
// NOLINTNEXTLINE(bugprone-reserved-identifier): the linker's --wrap chooses this name.
extern "C" int __wrap_remove(const char* path) {
    fake::Record("remove", path);
    return fake::NextAnswer("remove", 0).asInt();
}
