// The file of the database, and the records in it.
#include "libcamvora/database.h"

#include "libcamvora/downloads.h"
#include "libcamvora/records.h"
#include "libcamvora/requestid.h"
#include "libcamvora/schema.h"
#include "libcamvora/state.h"
#include "support/temporaryfolder.h"

#include <SQLiteCpp/Transaction.h>
#include <gtest/gtest.h>

#include <array>
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

TEST_F(DatabaseFile, OfAnOlderVersionIsBroughtUpToDate) {
    Open().exec(
        "DROP TABLE operations; DROP TABLE schedule; ALTER TABLE operation_log DROP COLUMN who; DROP TABLE "
        "downloads; DROP TABLE "
        "feeds;"
        "DROP TABLE programs; ALTER TABLE pairs DROP COLUMN address; PRAGMA user_version = 1;"
        "INSERT INTO settings VALUES('kept', 'yes')");
    SQLite::Database database = Open();
    EXPECT_EQ(camvora::CurrentSchemaVersion(), camvora::SchemaVersion(database));
    EXPECT_EQ("yes", database.execAndGet("SELECT value FROM settings WHERE key = 'kept'").getString());
    EXPECT_TRUE(camvora::ProgramRunsOf(database, "", 1).empty());
    EXPECT_TRUE(camvora::ReadState(database).pairs.empty());
    EXPECT_FALSE(camvora::FindDownload(database, ADDON_SERVICE_DEVICE_PACK));
}

class Records : public DatabaseFile {
protected:
    void SetUp() override { camvora::SetRequestId("r-1"); }
    void TearDown() override { camvora::SetRequestId(""); }

    SQLite::Database database_ = Open();
};

TEST_F(Records, NotificationsComeBackWholeAndTheirIdsAreNotUsedAgain) {
    SQLite::Transaction transaction(database_);
    EXPECT_EQ(0, camvora::LastNotificationId(database_));
    constexpr char kHostile[] = "a\0'); DROP TABLE notifications;\n\xff";
    const std::string hostile(kHostile, sizeof(kHostile) - 1);
    for (int i = 0; i < camvora::kNotificationsKept + 5; ++i) {
        camvora::AddNotification(database_, 24, {"6", hostile, ""});
    }
    const auto found = camvora::NotificationsAfter(database_, 0, 1);
    ASSERT_EQ(1U, found.size());
    EXPECT_EQ(6, found[0].id);
    EXPECT_EQ("r-1", found[0].requestId);
    EXPECT_EQ(24, found[0].type);
    EXPECT_EQ((std::array<std::string, 3>{"6", hostile, ""}), found[0].texts);
    EXPECT_EQ(11, camvora::NotificationsAfter(database_, 10, 1).at(0).id);
    database_.exec("DELETE FROM notifications");
    camvora::AddNotification(database_, 24, {"6", "1", "0"});
    EXPECT_EQ(camvora::kNotificationsKept + 6, camvora::LastNotificationId(database_));
}

TEST_F(Records, ProgramsComeBackWholeAndOldOnesGo) {
    SQLite::Transaction transaction(database_);
    const camvora::ProgramEnd end{-1, std::chrono::milliseconds(1500), 4096};
    for (int i = 0; i < camvora::kProgramRunsKept; ++i) {
        camvora::AddProgramRun(database_, "/bin/true", {}, {});
    }
    camvora::SetRequestId("r-2");
    camvora::AddProgramRun(database_, "/bin/rm", {"-rf", "", "'\n", "last"}, end);
    const auto runs = camvora::ProgramRunsOf(database_, "r-2", 10);
    ASSERT_EQ(1U, runs.size());
    EXPECT_EQ("/bin/rm", runs[0].path);
    EXPECT_EQ((std::vector<std::string>{"-rf", "", "'\n", "last"}), runs[0].arguments);
    EXPECT_EQ(-1, runs[0].exitStatus);
    EXPECT_EQ(1500, runs[0].durationMs);
    EXPECT_EQ(4096, runs[0].peakMemoryKiB);
    EXPECT_EQ(2, camvora::ProgramRunsOf(database_, "", camvora::kProgramRunsKept + 1).at(0).id);
    const auto newest = camvora::ProgramRunsOf(database_, "r-1", 2);
    ASSERT_EQ(2U, newest.size());
    EXPECT_EQ(camvora::kProgramRunsKept - 1, newest[0].id);
    EXPECT_TRUE(newest[0].arguments.empty());
}

TEST_F(Records, OperationsComeBackWholeAndOldOnesGo) {
    SQLite::Transaction transaction(database_);
    for (int i = 0; i < camvora::kLogEntriesKept + 1; ++i) {
        camvora::AddLogEntry(database_, 0x133000B5, 1LL << 40, {std::to_string(i), "started", ""});
    }
    camvora::SetRequestId("r-2");
    camvora::AddLogEntry(database_, 1, -1, {"x", "", ""});
    const long long last = camvora::LastLogEntryId(database_);
    EXPECT_EQ(camvora::kLogEntriesKept + 2, last);
    const auto all = camvora::LogEntriesAfter(database_, 0, "", 2 * camvora::kLogEntriesKept);
    ASSERT_EQ(static_cast<std::size_t>(camvora::kLogEntriesKept), all.size());
    EXPECT_EQ(3, all[0].id);
    EXPECT_EQ("r-1", all[0].requestId);
    EXPECT_EQ(0x133000B5, all[0].event);
    EXPECT_EQ(1LL << 40, all[0].number);
    EXPECT_EQ((std::array<std::string, 3>{"2", "started", ""}), all[0].texts);
    const auto ofRequest = camvora::LogEntriesAfter(database_, 0, "r-2", 10);
    ASSERT_EQ(1U, ofRequest.size());
    EXPECT_EQ(last, ofRequest[0].id);
    EXPECT_EQ(2U, camvora::LogEntriesAfter(database_, last - 5, "", 2).size());
    const std::string cut(camvora::kRecordTextLimitBytes - 1, 'x');
    camvora::AddLogEntry(database_, 1, 0, {"", cut + "\xc3\xa4" + std::string(2'000'000, 'y'), ""});
    EXPECT_EQ(cut, camvora::LogEntriesAfter(database_, last, "", 1)[0].texts[1]);
    EXPECT_TRUE(camvora::LogEntriesAfter(database_, last + 1, "", 10).empty());
}

TEST_F(Records, OfDownloadsTheLastOfEachServiceIsKept) {
    for (const char* version : {"1-1", "1-2"}) {
        for (const ADDON_SERVICE service : {ADDON_SERVICE_DEVICE_PACK, ADDON_SERVICE_LOCAL_DISPLAY}) {
            camvora::KeepDownload(database_, service, {camvora::kDownloadReady, {version, "/a", "d"}});
        }
    }
    camvora::ForgetDownload(database_, ADDON_SERVICE_DEVICE_PACK);
    EXPECT_FALSE(camvora::FindDownload(database_, ADDON_SERVICE_DEVICE_PACK));
    const auto kept = camvora::FindDownload(database_, ADDON_SERVICE_LOCAL_DISPLAY);
    ASSERT_TRUE(kept);
    EXPECT_EQ("1-2 d", kept->info.version + " " + kept->info.date);
}

}  // namespace
