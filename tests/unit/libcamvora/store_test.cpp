#include "libcamvora/store.h"

#include "capturedlog.h"
#include "children.h"
#include "support/temporaryfolder.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <chrono>
#include <ctime>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <string>

namespace {

using camvora::Store;

class StoreTest : public testing::Test {
protected:
    void SetUp() override { (void)TakeLoggedTexts(); }

    bool Set(Store& store, const std::string& value) {
        return store.Write([&value](SQLite::Database& database) {
            database.exec("INSERT OR REPLACE INTO settings VALUES('key', '" + value + "')");
        });
    }

    std::string Get(Store& store) {
        const auto state = store.Read();
        const auto setting = state->settings.find("key");
        return setting == state->settings.end() ? "default" : setting->second;
    }

    // Makes the last write look as if it had been at that time.
    void DateLastWrite(std::time_t time) {
        const timespec times[2] = {{time, 0}, {time, 0}};
        for (const std::string& path : {path_, path_ + "-wal"}) {
            (void)utimensat(AT_FDCWD, path.c_str(), times, 0);
        }
    }

    // From now on only the time of a write tells that there was one: the next ones go over old ones.
    void KeepSizeOfFiles() {
        ASSERT_TRUE(Set(store_, std::string(100000, 'x')));
        store_.Query([](SQLite::Database& database) { database.exec("PRAGMA wal_checkpoint(RESTART)"); });
    }

    int OpenFilesOfDatabase() {
        int count = 0;
        for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
            std::error_code closedMeanwhile;
            const auto target = std::filesystem::read_symlink(entry.path(), closedMeanwhile).string();
            count += target.rfind(path_, 0) == 0 ? 1 : 0;
        }
        return count;
    }

    static constexpr std::time_t kLongAgo = 1000;

    const TemporaryFolder folder_;
    const std::string path_ = folder_.PathOf("camvora.db");
    Store store_{path_};
};

TEST_F(StoreTest, WritesAllOrNothing) {
    ASSERT_TRUE(Set(store_, "one"));
    EXPECT_FALSE(store_.Write([](SQLite::Database& database) {
        database.exec("UPDATE settings SET value = 'two'");
        database.exec("UPDATE settings SET value = NULL");
    }));
    EXPECT_EQ("one", Get(store_));
    EXPECT_EQ(1U, TakeLoggedTexts().size());
}

TEST_F(StoreTest, CarriesNoConnectionAcrossAFork) {
    ASSERT_TRUE(Set(store_, "one"));
    ASSERT_GT(OpenFilesOfDatabase(), 0);
    EXPECT_TRUE(WorksInChild(
        store_, [this] { return OpenFilesOfDatabase() == 0 && Get(store_) == "one" && Set(store_, "two"); }));
    EXPECT_EQ("two", Get(store_));
}

TEST_F(StoreTest, IsMadeAndWrittenByManyProcessesAtOnce) {
    constexpr int kProcesses = 20;
    for (const char* round : {"1", "2", "3", "4", "5"}) {
        Store store(folder_.PathOf(round) + "/camvora.db");
        EXPECT_EQ(kProcesses, CountSuccesses(kProcesses, [&store](int number) {
                      bool written = true;
                      for (int i = 0; i < 10; ++i) {
                          const std::string key = std::to_string(number) + "-" + std::to_string(i);
                          written &= store.Write([&key](SQLite::Database& database) {
                              database.exec("INSERT INTO settings VALUES('" + key + "', '')");
                          });
                      }
                      return written;
                  }));
        EXPECT_EQ(kProcesses * 10U, store.Read()->settings.size());
    }
}

// The one who remembers serves requests from a process of its own; `store_` is the rest of the world.
class RememberingStore : public StoreTest {
protected:
    void SetUp() override {
        StoreTest::SetUp();
        ASSERT_TRUE(Set(store_, "one"));
        RememberAsOfOld();
    }

    void RememberAsOfOld() {
        DateLastWrite(kLongAgo);
        server_.Remember();
    }

    Store server_{path_};
};

TEST_F(RememberingStore, ReadsWithoutOpeningTheDatabase) {
    EXPECT_TRUE(WorksInChild(server_, [this] {
        const int before = OpenFilesOfDatabase();
        return Get(server_) == "one" && OpenFilesOfDatabase() == before;
    }));
}

TEST_F(RememberingStore, SeesWhatOthersAndItselfWriteAfterTheFork) {
    EXPECT_TRUE(WorksInChild(server_, [this] { return Set(store_, "two") && Get(server_) == "two"; }));
    RememberAsOfOld();
    EXPECT_TRUE(WorksInChild(server_, [this] { return Set(server_, "three") && Get(server_) == "three"; }));
}

TEST_F(RememberingStore, SeesAWriteInTheSameInstantAsTheOneBefore) {
    const std::time_t now = std::time(nullptr);
    KeepSizeOfFiles();
    ASSERT_TRUE(Set(store_, "two"));
    DateLastWrite(now);
    server_.Remember();  // too early to tell the next write from this one
    ASSERT_TRUE(Set(store_, "three"));
    DateLastWrite(now);
    EXPECT_EQ("three", Get(server_));
}

// A commit may have written the file long before others see it.
TEST_F(RememberingStore, RemembersNothingDuringAWrite) {
    KeepSizeOfFiles();
    ASSERT_TRUE(store_.Write([this](SQLite::Database& database) {
        database.exec("UPDATE settings SET value = 'two'");
        DateLastWrite(kLongAgo);
        const auto start = std::chrono::steady_clock::now();
        server_.Remember();
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
    }));
    DateLastWrite(kLongAgo);
    EXPECT_EQ("two", Get(server_));
}

TEST_F(RememberingStore, SeesThatTheDatabaseWasReplaced) {
    for (const char* suffix : {"", "-wal", "-shm"}) {
        std::filesystem::remove(path_ + suffix);
    }
    EXPECT_EQ("default", Get(server_));
}

TEST_F(StoreTest, GivesDefaultsAndOneLineWhereTheDatabaseIsDamaged) {
    folder_.Write("camvora.db", std::string(4096, 'x'));
    DateLastWrite(kLongAgo);
    store_.Remember();
    EXPECT_TRUE(TakeLoggedTexts().empty());
    for (int i = 0; i < 7; ++i) {
        EXPECT_EQ("default", Get(store_));
    }
    EXPECT_EQ(1U, TakeLoggedTexts().size());
    EXPECT_TRUE(
        WorksInChild(store_, [this] { return Get(store_) == "default" && TakeLoggedTexts().size() == 1; }));
    EXPECT_FALSE(Set(store_, "one"));
    EXPECT_EQ(1U, TakeLoggedTexts().size());
    EXPECT_THROW(store_.Query([](SQLite::Database&) {}), std::runtime_error);
    EXPECT_EQ(std::string(4096, 'x'), folder_.Read("camvora.db"));
}

}  // namespace
