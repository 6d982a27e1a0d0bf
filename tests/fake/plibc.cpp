#include "platform/plibc.h"

#include "fake/journal.h"
#include "fake/script.h"

#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <string>

int PLIBCExec(const char* path, const char* arg1, const char* arg2, const char* arg3, const char* arg4) {
    std::string line = "PLIBCExec " + fake::Text(path);
    for (const char* argument : {arg1, arg2, arg3, arg4}) {
        if (argument == nullptr) {
            break;
        }
        line += " " + fake::Text(argument);
    }
    fake::WriteLine(line);
    return fake::NextAnswer("PLIBCExec", 0).asInt();
}

int PLIBCFileExist(const char* path) {
    fake::Record("PLIBCFileExist", path);
    return fake::NextAnswer("PLIBCFileExist", 1).asInt();
}

// The values are scripted by file and key, as "PLIBCFileGetKeyValue PATH KEY"; without one there is none.
int PLIBCFileGetKeyValue(const char* path, const char* key, char* buffer, int bufferSize, int flags) {
    fake::Record("PLIBCFileGetKeyValue", path, key, bufferSize, flags);
    const Json::Value answer =
        fake::NextAnswer(std::string("PLIBCFileGetKeyValue ") + path + " " + key, Json::Value());
    if (!answer.isString()) {
        return -1;
    }
    const std::string value = answer.asString().substr(0, static_cast<std::size_t>(bufferSize) - 1);
    *std::copy(value.begin(), value.end(), buffer) = '\0';
    return static_cast<int>(value.size());
}

// The fork that follows is the fake's own.
pid_t PLIBCProcFork() {
    fake::Record("PLIBCProcFork");
    return fork();
}

int PLIBCProcPidFileCreate(const char* path) {
    fake::Record("PLIBCProcPidFileCreate", path);
    return fake::NextAnswer("PLIBCProcPidFileCreate", 0).asInt();
}
