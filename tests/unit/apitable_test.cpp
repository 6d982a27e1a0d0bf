#include "webapi/apitable.h"

#include <gtest/gtest.h>

#include <iterator>

namespace {

const char* const kMethods[] = {
    "List",          "Update",           "Enable",          "Disable",       "Restart",
    "GetInfo",       "LoadFile",         "GetPkgInfo",      "GetAppsStatus", "SetAutoUpdate",
    "GetUpdateInfo", "CheckUpdateInfo",  "CheckEnableDone", "Upload",        "Restore",
    "DownloadStart", "DownloadProgress", "DownloadCancel",
};

TEST(ApiTable, HasOneRowPerMethodInOrder) {
    const APIMethodEntry* row = GetAPITable();
    for (const char* method : kMethods) {
        EXPECT_STREQ("ORVA.Camvora.AddOns", row->api);
        EXPECT_EQ(1, row->version);
        EXPECT_STREQ(method, row->method);
        EXPECT_EQ(&Process, row->handler);
        ++row;
    }
}

TEST(ApiTable, EndsWithZeros) {
    const APIMethodEntry& last = GetAPITable()[std::size(kMethods)];
    EXPECT_EQ(nullptr, last.api);
    EXPECT_EQ(0, last.version);
    EXPECT_EQ(nullptr, last.method);
    EXPECT_EQ(nullptr, last.handler);
}

TEST(ApiTable, StaysWhereItIs) {
    EXPECT_EQ(gTable, GetAPITable());
    EXPECT_EQ(GetAPITable(), GetAPITable());
}

}  // namespace
