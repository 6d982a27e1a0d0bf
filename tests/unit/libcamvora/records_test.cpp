#include "libcamvora/records.h"

#include "libcamvora/database.h"
#include "libcamvora/requestid.h"
#include "support/temporaryfolder.h"

#include <SQLiteCpp/Transaction.h>
#include <gtest/gtest.h>

#include <string>

namespace {

class RecordsTest : public testing::Test {
protected:
    void Notify(int count) {
        SQLite::Transaction transaction(database_);
        for (int i = 0; i < count; ++i) {
            camvora::AddNotification(database_, 24, {std::to_string(i), "1", "0"});
        }
        transaction.commit();
    }

    const TemporaryFolder folder_;
    SQLite::Database database_ = camvora::OpenDatabase(folder_.PathOf("camvora.db"), 0);
};

TEST_F(RecordsTest, NotificationsComeBackWhole) {
    constexpr char kHostile[] = "a\0'); DROP TABLE notifications;\n\xff";
    const std::string hostile(kHostile, sizeof(kHostile) - 1);
    camvora::SetRequestId("r-1");
    camvora::AddNotification(database_, 24, {"6", hostile, ""});
    camvora::SetRequestId("");
    const auto found = camvora::NotificationsAfter(database_, 0, 10);
    ASSERT_EQ(1U, found.size());
    EXPECT_EQ(1, found[0].id);
    EXPECT_EQ("r-1", found[0].requestId);
    EXPECT_EQ(24, found[0].type);
    EXPECT_EQ("6", found[0].texts[0]);
    EXPECT_EQ(hostile, found[0].texts[1]);
}

TEST_F(RecordsTest, NotificationsComeInOrderUpToTheLimit) {
    EXPECT_EQ(0, camvora::LastNotificationId(database_));
    Notify(5);
    EXPECT_EQ(5, camvora::LastNotificationId(database_));
    const auto found = camvora::NotificationsAfter(database_, 2, 2);
    ASSERT_EQ(2U, found.size());
    EXPECT_EQ(3, found[0].id);
    EXPECT_EQ(4, found[1].id);
    EXPECT_TRUE(camvora::NotificationsAfter(database_, 5, 10).empty());
}

TEST_F(RecordsTest, OldNotificationsGoAndTheirIdsAreNotUsedAgain) {
    Notify(camvora::kNotificationsKept + 5);
    const auto found = camvora::NotificationsAfter(database_, 0, 2 * camvora::kNotificationsKept);
    ASSERT_EQ(static_cast<std::size_t>(camvora::kNotificationsKept), found.size());
    EXPECT_EQ(6, found.front().id);
    database_.exec("DELETE FROM notifications");
    Notify(1);
    EXPECT_EQ(camvora::kNotificationsKept + 6, camvora::LastNotificationId(database_));
}

TEST_F(RecordsTest, OperationsCarryTheRequestAndOldOnesGo) {
    SQLite::Transaction transaction(database_);
    camvora::SetRequestId("r-2");
    for (int i = 0; i < camvora::kOperationsKept + 1; ++i) {
        camvora::AddOperation(database_, {0x133000B5, 1LL << 40, {"Local Display", "started", ""}});
    }
    camvora::SetRequestId("");
    EXPECT_EQ(camvora::kOperationsKept,
              database_
                  .execAndGet("SELECT count(*) FROM operation_log WHERE request = 'r-2'"
                              " AND event = 321913013 AND number = 1099511627776"
                              " AND text1 = 'Local Display' AND text2 = 'started' AND text3 = ''")
                  .getInt());
}

}  // namespace
