#include "platform/locks.h"

#include "fake/journal.h"
#include "fake/script.h"

int BeginCriticalSection(const std::string& path, int waitLimitMs) {
    fake::Record("BeginCriticalSection", path, waitLimitMs);
    return fake::NextAnswer("BeginCriticalSection", 0).asInt();
}

void EndCriticalSection(int handle) {
    fake::Record("EndCriticalSection", handle);
}
