#include "libcamvora/operationlog.h"

#include "libcamvora/records.h"
#include "libcamvora/store.h"
#include "platform/log.h"

void CVLog(CV_LOG_TYPE type, long long number, const std::string& text1, const std::string& text2,
           const std::string& text3) {
    (void)camvora::TheStore().Write([&](SQLite::Database& database) {  // a failure is in the log
        camvora::AddLogEntry(database, type, number, {text1, text2, text3});
    });
}

namespace camvora {

long long LastLogEntryId() {
    long long id = 0;
    TheStore().Query([&id](SQLite::Database& database) { id = LastLogEntryId(database); });
    return id;
}

std::vector<LogEntry> LogEntriesAfter(long long id, const std::string& requestId, int limit) {
    std::vector<LogEntry> entries;
    TheStore().Query(
        [&](SQLite::Database& database) { entries = LogEntriesAfter(database, id, requestId, limit); });
    return entries;
}

}  // namespace camvora
