#include "platform/locks.h"

#include "fake/journal.h"
#include "fake/script.h"

int BeginCriticalSection(const std::string& path, int waitLimitMs) {
    return fake::Call("BeginCriticalSection", 0, path, waitLimitMs).asInt();
}

void EndCriticalSection(int handle) {
    fake::Record("EndCriticalSection", handle);
}
