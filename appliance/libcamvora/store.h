// The database as the processes of the stand-in use it.
#pragma once

#include "libcamvora/filestamp.h"
#include "libcamvora/state.h"

#include <SQLiteCpp/Database.h>

#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace camvora {

// A database with one connection, which is made at the first use and kept. Any thread may call. A process
// that forks calls BeforeFork and AfterFork around it.
class Store {
public:
    using Work = std::function<void(SQLite::Database&)>;  // must not fork and must not call the store

    explicit Store(std::string path);

    // The present state: what others have committed by now is in it. Where the database cannot be read it is
    // empty, with one line in the diagnostic log, and for a second not tried again.
    std::shared_ptr<const State> Read();

    // Runs `work` in a transaction. False, with a line in the diagnostic log and nothing changed, when the
    // database cannot be written.
    bool Write(const Work& work);

    // The same without waiting for the disk: a power failure may undo it, and nothing else that was written
    // just before has to get to the disk first. For records of what has happened.
    bool WriteLater(const Work& work);

    // Runs `work`. Throws std::exception when the database cannot be opened, and what `work` throws.
    void Query(const Work& work);

    // Keeps the present state in memory, for this process and all that it forks from now on: as long as
    // nothing is written, Read takes it from there. Cheap where nothing was written since the last time.
    // Failures are silent, Read reports them.
    void Remember();

    // Closes the connection and keeps other threads out until AfterFork, so that a connection never goes
    // from one process to another.
    void BeforeFork();
    void AfterForkInParent();
    void AfterForkInChild();

private:
    bool Transact(const Work& work, const char* synchronous);
    SQLite::Database& Connect();
    void Disconnect();
    std::optional<FileStamp> Stamp() const;
    bool IsRemembered(const std::optional<FileStamp>& stamp) const;
    void RememberUndisturbed();

    const std::string path_;
    const std::string walPath_;
    std::mutex mutex_;
    std::unique_ptr<SQLite::Database> connection_;
    std::optional<FileStamp> rememberedStamp_;
    std::shared_ptr<const State> remembered_;
    std::chrono::steady_clock::time_point retryAt_;  // of a read that failed
};

// The appliance's store as this process uses it, with its part in every fork arranged for.
Store& TheStore();

}  // namespace camvora
