// The operation log as it was written with CVLog, for those who show it.
#pragma once

#include <array>
#include <string>
#include <vector>

namespace camvora {

struct LogEntry {
    long long id;           // grows by the order of writing, never used twice
    std::string time;       // UTC, as in "2026-03-01T12:00:00.123Z"
    std::string requestId;  // empty when no request caused it
    int event;
    long long number;
    std::array<std::string, 3> texts;
    std::string who;  // made the request, see requestorigin.h
};

// The id of the newest entry, 0 when there is none yet. Throws std::exception when the store cannot be read.
long long LastLogEntryId();

// At most `limit` entries with ids above `id`, oldest first; only those that the request `requestId` caused,
// where that is not empty. Old ones are dropped in time, so the first may not be the one that follows `id`.
// Throws std::exception when the store cannot be read.
std::vector<LogEntry> LogEntriesAfter(long long id, const std::string& requestId, int limit);

}  // namespace camvora
