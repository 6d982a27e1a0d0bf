// The file of the database, and the records in it.
#include "libcamvora/database.h"

#include "libcamvora/records.h"
#include "libcamvora/requestid.h"
#include "libcamvora/schema.h"
#include "support/temporaryfolder.h"

#include <SQLiteCpp/Transaction.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <stdexcept>
#include <string>

namespace {

using camvora::OpenDatabase;

class DatabaseFile : public testing::Test {
protected:
    SQLite::Database Open() const { return OpenDatabase(path_, 0); }

    const TemporaryFolder folder_;
    const std::string path_ = folder_.PathOf("camvora.db");
};

TEST_F(DatabaseFile, IsReadableByItsOwnerOnly) {
    const SQLite::Database database = Open();
    for (const char* suffix : {"", "-wal", "-shm"}) {
        EXPECT_EQ(std::filesystem::perms(0600), std::filesystem::status(path_ + suffix).permissions())
            << suffix;
    }
}

TEST_F(DatabaseFile, OfANewerVersionIsRefusedAndLeftAlone) {
    Open().exec("PRAGMA user_version = 99");
    EXPECT_THROW(Open(), std::runtime_error);
    SQLite::Database database(path_);
    EXPECT_EQ(99, camvora::SchemaVersion(database));
}

TEST_F(DatabaseFile, ThatIsCutIsRefusedAndLeftAlone) {
    folder_.Write("camvora.db", "SQLite format 3");
    EXPECT_THROW(Open(), std::runtime_error);
    EXPECT_EQ("SQLite format 3", folder_.Read("camvora.db"));
}

class Records : public DatabaseFile {
protected:
    void SetUp() override { camvora::SetRequestId("r-1"); }
    void TearDown() override { camvora::SetRequestId(""); }

    SQLite::Database database_ = Open();
};

TEST_F(Records, NotificationsComeBackWhole) {
    constexpr char kHostile[] = "a\0'); DROP TABLE notifications;\n\xff";
    const std::string hostile(kHostile, sizeof(kHostile) - 1);
    camvora::AddNotification(database_, 24, {"6", hostile, ""});
    const auto found = camvora::NotificationsAfter(database_, 0, 10);
    ASSERT_EQ(1U, found.size());
    EXPECT_EQ(1, found[0].id);
    EXPECT_EQ("r-1", found[0].requestId);
    EXPECT_EQ(24, found[0].type);
    EXPECT_EQ("6", found[0].texts[0]);
    EXPECT_EQ(hostile, found[0].texts[1]);
}

TEST_F(Records, OldNotificationsGoAndTheirIdsAreNotUsedAgain) {
    SQLite::Transaction transaction(database_);
    EXPECT_EQ(0, camvora::LastNotificationId(database_));
    for (int i = 0; i < camvora::kNotificationsKept + 5; ++i) {
        camvora::AddNotification(database_, 24, {"6", "1", "0"});
    }
    EXPECT_EQ(6, camvora::NotificationsAfter(database_, 0, 1).at(0).id);
    const auto limited = camvora::NotificationsAfter(database_, 10, 2);
    ASSERT_EQ(2U, limited.size());
    EXPECT_EQ(11, limited[0].id);
    EXPECT_EQ(12, limited[1].id);
    database_.exec("DELETE FROM notifications");
    camvora::AddNotification(database_, 24, {"6", "1", "0"});
    EXPECT_EQ(camvora::kNotificationsKept + 6, camvora::LastNotificationId(database_));
}

TEST_F(Records, OperationsCarryTheRequestAndOldOnesGo) {
    SQLite::Transaction transaction(database_);
    for (int i = 0; i < camvora::kOperationsKept + 1; ++i) {
        camvora::AddOperation(database_, {0x133000B5, 1LL << 40, {"Local Display", "started", ""}});
    }
    EXPECT_EQ(camvora::kOperationsKept,
              database_
                  .execAndGet("SELECT count(*) FROM operation_log WHERE request = 'r-1'"
                              " AND event = 321913013 AND number = 1099511627776"
                              " AND text1 = 'Local Display' AND text2 = 'started' AND text3 = ''")
                  .getInt());
}

}  // namespace
