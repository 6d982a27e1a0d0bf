#include "libcamvora/database.h"

#include "children.h"
#include "libcamvora/schema.h"
#include "support/temporaryfolder.h"

#include <SQLiteCpp/Statement.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <stdexcept>
#include <string>

namespace {

using camvora::OpenDatabase;

constexpr int kBusyLimitMs = 5000;

int CountOf(SQLite::Database& database, const std::string& what) {
    return database.execAndGet("SELECT count(*) FROM " + what).getInt();
}

TEST(Database, IsMadeByManyProcessesAtOnce) {
    constexpr int kProcesses = 20;
    constexpr int kRounds = 5;
    for (int round = 0; round < kRounds; ++round) {
        const TemporaryFolder folder;
        const std::string path = folder.PathOf("data/camvora.db");
        EXPECT_EQ(kProcesses, CountSuccesses(kProcesses, [&path](int number) {
                      SQLite::Database database = OpenDatabase(path, kBusyLimitMs);
                      SQLite::Statement insert(database, "INSERT INTO services VALUES(?, 1)");
                      insert.bind(1, number);
                      return insert.exec() == 1;
                  }));
        SQLite::Database database = OpenDatabase(path, kBusyLimitMs);
        EXPECT_EQ(kProcesses, CountOf(database, "services"));
        EXPECT_EQ("wal", database.execAndGet("PRAGMA journal_mode").getString());
    }
}

TEST(Database, IsReadableByItsOwnerOnly) {
    const TemporaryFolder folder;
    const SQLite::Database database = OpenDatabase(folder.PathOf("camvora.db"), kBusyLimitMs);
    for (const char* name : {"camvora.db", "camvora.db-wal", "camvora.db-shm"}) {
        struct stat status {};
        ASSERT_EQ(0, stat(folder.PathOf(name).c_str(), &status)) << name;
        EXPECT_EQ(0600U, status.st_mode & 0777U) << name;
    }
}

TEST(Database, OfANewerVersionIsRefusedAndLeftAlone) {
    const TemporaryFolder folder;
    const std::string path = folder.PathOf("camvora.db");
    OpenDatabase(path, kBusyLimitMs).exec("PRAGMA user_version = 99");
    EXPECT_THROW(OpenDatabase(path, kBusyLimitMs), std::runtime_error);
    SQLite::Database database(path);
    EXPECT_EQ(99, camvora::SchemaVersion(database));
}

struct DamageCase {
    const char* name;
    std::string content;
};

const DamageCase kDamageCases[] = {
    {"garbage",
     "this is no database at all, but it is longer than a header of one hundred bytes, which is "
     "where reading starts"},
    {"cut_header", "SQLite format 3"},
};

class DamagedDatabase : public testing::TestWithParam<DamageCase> {};

TEST_P(DamagedDatabase, IsRefusedAndLeftAlone) {
    const TemporaryFolder folder;
    folder.Write("camvora.db", GetParam().content);
    EXPECT_THROW(OpenDatabase(folder.PathOf("camvora.db"), kBusyLimitMs), std::runtime_error);
    EXPECT_EQ(GetParam().content, folder.Read("camvora.db"));
}

INSTANTIATE_TEST_SUITE_P(All, DamagedDatabase, testing::ValuesIn(kDamageCases),
                         [](const auto& damage) { return std::string(damage.param.name); });

TEST(Database, WithoutAFolderIsRefused) {
    EXPECT_THROW(OpenDatabase("/nonexistent/data/camvora.db", kBusyLimitMs), std::runtime_error);
}

}  // namespace
