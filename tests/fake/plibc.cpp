#include "platform/plibc.h"

#include "fake/journal.h"
#include "fake/script.h"

#include <sys/wait.h>
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
    return fake::Call("PLIBCFileExist", 1, path).asInt();
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

// The fork that follows is the fake's own. Waits for the child, so that its lines stand before those that
// come after the call.
pid_t PLIBCProcFork() {
    fake::Record("PLIBCProcFork");
    const pid_t child = fork();
    if (child > 0) {
        siginfo_t ended{};
        (void)waitid(P_PID, static_cast<id_t>(child), &ended, WEXITED);
    }
    return child;
}

int PLIBCProcPidFileCreate(const char* path) {
    return fake::Call("PLIBCProcPidFileCreate", 0, path).asInt();
}
