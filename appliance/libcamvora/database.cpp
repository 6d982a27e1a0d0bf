#include "libcamvora/database.h"

#include "libcamvora/descriptor.h"
#include "libcamvora/schema.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

namespace camvora {

namespace {

std::string FolderOf(const std::string& path) {
    return path.substr(0, path.rfind('/'));
}

// The log files that SQLite adds take their mode from this file. That it cannot be made shows when it is
// opened.
void MakeFile(const std::string& path) {
    (void)mkdir(FolderOf(path).c_str(), 0700);
    const Descriptor file(open(path.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600));
}

// Two processes that switch to the write-ahead log at once would refuse each other, whatever they wait for
// in SQLite; so they queue for the folder.
void Prepare(SQLite::Database& database, const std::string& path) {
    const Descriptor folder(open(FolderOf(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    (void)flock(folder.Number(), LOCK_EX);  // without it, at worst one of the two reports a failure
    database.exec("PRAGMA journal_mode = WAL");
    UpdateSchema(database);
}

}  // namespace

// Synchronous mode stays FULL, SQLite's default: what was answered as done survives a power failure, and
// writes are as rare as the user's actions.
SQLite::Database OpenDatabase(const std::string& path, int busyLimitMs) {
    if (access(path.c_str(), F_OK) != 0) {
        MakeFile(path);
    }
    SQLite::Database database(path, SQLite::OPEN_READWRITE | SQLite::OPEN_NOMUTEX, busyLimitMs);
    if (SchemaVersion(database) != CurrentSchemaVersion()) {
        Prepare(database, path);
    }
    return database;
}

}  // namespace camvora
