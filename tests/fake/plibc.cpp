#include "platform/plibc.h"

#include "fake/journal.h"
#include "fake/script.h"

#include <unistd.h>

// The fork that follows is the fake's own.
pid_t PLIBCProcFork() {
    fake::Record("PLIBCProcFork");
    return fork();
}

int PLIBCProcPidFileCreate(const char* path) {
    fake::Record("PLIBCProcPidFileCreate", path);
    return fake::NextAnswer("PLIBCProcPidFileCreate", 0).asInt();
}
