#include "libcamvora/store.h"

#include "libcamvora/database.h"
#include "libcamvora/paths.h"
#include "platform/log.h"

#include <SQLiteCpp/Transaction.h>
#include <pthread.h>

#include <exception>
#include <utility>

namespace camvora {

namespace {

constexpr int kBusyLimitMs = 5000;
constexpr std::chrono::seconds kRetryAfter(1);

}  // namespace

Store::Store(std::string path) : path_(std::move(path)), walPath_(path_ + "-wal") {}

std::shared_ptr<const State> Store::Read() {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (IsRemembered(Stamp())) {
        return remembered_;
    }
    if (std::chrono::steady_clock::now() < retryAt_) {
        return std::make_shared<const State>();
    }
    try {
        SQLite::Database& database = Connect();
        const SQLite::Transaction oneMoment(database);
        return std::make_shared<const State>(ReadState(database));
    } catch (const std::exception& failure) {
        CVPrintf(0, nullptr, nullptr, "store", __LINE__, __func__, "Failed to read the database [%s]\n",
                 failure.what());
        Disconnect();
        retryAt_ = std::chrono::steady_clock::now() + kRetryAfter;
        return std::make_shared<const State>();
    }
}

bool Store::Write(const Work& work) {
    return Transact(work, "PRAGMA synchronous = FULL");
}

bool Store::WriteLater(const Work& work) {
    return Transact(work, "PRAGMA synchronous = NORMAL");
}

bool Store::Transact(const Work& work, const char* synchronous) {
    const std::lock_guard<std::mutex> lock(mutex_);
    try {
        SQLite::Database& database = Connect();
        database.exec(synchronous);
        SQLite::Transaction change(database, SQLite::TransactionBehavior::IMMEDIATE);
        work(database);
        change.commit();
        return true;
    } catch (const std::exception& failure) {
        CVPrintf(0, nullptr, nullptr, "store", __LINE__, __func__, "Failed to write the database [%s]\n",
                 failure.what());
        Disconnect();
        return false;
    }
}

void Store::Query(const Work& work) {
    const std::lock_guard<std::mutex> lock(mutex_);
    try {
        work(Connect());
    } catch (const std::exception&) {
        Disconnect();  // the file may be another by the next time
        throw;
    }
}

void Store::Remember() {
    const std::lock_guard<std::mutex> lock(mutex_);
    const std::optional<FileStamp> stamp = Stamp();
    if (!stamp || !stamp->IsSettled() || IsRemembered(stamp)) {
        return;
    }
    try {
        RememberUndisturbed();
    } catch (const std::exception&) {
        return;  // what was remembered before counts as long as its stamp does
    }
}

// A commit writes the file some time before others see it. While we hold the write lock there is no such
// commit, so what we read is what the stamp stands for. It is not waited for: the caller serves requests.
void Store::RememberUndisturbed() {
    SQLite::Database database = OpenDatabase(path_, 0);
    const SQLite::Transaction undisturbed(database, SQLite::TransactionBehavior::IMMEDIATE);
    const std::optional<FileStamp> stamp = Stamp();
    if (stamp && stamp->IsSettled()) {
        remembered_ = std::make_shared<const State>(ReadState(database));
        rememberedStamp_ = stamp;
    }
}

bool Store::IsRemembered(const std::optional<FileStamp>& stamp) const {
    return stamp && rememberedStamp_ && *stamp == *rememberedStamp_;
}

// Each commit goes to the write-ahead log while there is one.
std::optional<FileStamp> Store::Stamp() const {
    const std::optional<FileStamp> wal = StampOf(walPath_);
    return wal ? wal : StampOf(path_);
}

SQLite::Database& Store::Connect() {
    if (connection_ == nullptr) {
        connection_ = std::make_unique<SQLite::Database>(OpenDatabase(path_, kBusyLimitMs));
    }
    return *connection_;
}

void Store::Disconnect() {
    connection_.reset();
}

void Store::BeforeFork() {
    mutex_.lock();
    Disconnect();
}

void Store::AfterForkInParent() {
    mutex_.unlock();
}

void Store::AfterForkInChild() {
    retryAt_ = {};  // each process reports its own failures
    mutex_.unlock();
}

Store& TheStore() {
    static Store store(kDatabaseFile);
    static const int failure =
        pthread_atfork([] { TheStore().BeforeFork(); }, [] { TheStore().AfterForkInParent(); },
                       [] { TheStore().AfterForkInChild(); });
    (void)failure;  // only for lack of memory at the start
    return store;
}

}  // namespace camvora
