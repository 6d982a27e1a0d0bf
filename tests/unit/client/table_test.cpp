#include "client/table.h"

#include <gtest/gtest.h>

namespace client {
namespace {

TEST(TableTest, AlignsByColumnsAndEndsLinesWithoutBlanks) {
    Table table({"Name", "Title", "On"});
    table.AddRow({"a", "Ger\u00e4te", "yes"});
    table.AddRow({"long name", "", "no"});
    table.AddRow({"wide", "\u4e2d\u6587", "e\u0301"});
    EXPECT_EQ(
        "Name       Title   On\n"
        "a          Ger\u00e4te  yes\n"
        "long name  -       no\n"
        "wide       \u4e2d\u6587    e\u0301\n",
        table.Text());
}

struct FitCase {
    std::size_t columns;
    const char* text;
    std::size_t leftOut;
};

const FitCase kFitCases[] = {
    {41,
     "Name         Notes              Automatic\n"
     "device_pack  better than befo\u2026  yes\n"
     "cms          \u4e2d\u6587\u4e2d\u6587\u4e2d\u6587\u4e2d\u6587\u2026  no\n",
     0},
    {37,
     "Name         Notes\n"
     "device_pack  better than before\n"
     "cms          \u4e2d\u6587\u4e2d\u6587\u4e2d\u6587\u4e2d\u6587\u4e2d\n",
     1},
    {26, "Name\ndevice_pack\ncms\n", 2},
    {8, "Name\ndevice_\u2026\ncms\n", 2},
};

TEST(TableTest, CutsItsWidestCellsAndLeavesOutItsLastColumnsToFit) {
    Table table({"Name", "Notes", "Automatic"});
    table.AddRow({"device_pack", "better than before", "yes"});
    table.AddRow({"cms", "\u4e2d\u6587\u4e2d\u6587\u4e2d\u6587\u4e2d\u6587\u4e2d", "no"});
    for (const FitCase& one : kFitCases) {
        EXPECT_EQ(one.text, table.Text({one.columns, false})) << one.columns;
        EXPECT_EQ(one.leftOut, table.LeftOut({one.columns, false})) << one.columns;
    }
    table.KeepWhole();
    EXPECT_EQ(table.Text(), table.Text({25, false}));
    Table plain;
    plain.AddRow({"Notes", "better than before"});
    EXPECT_EQ(plain.Text(), plain.Text({10, false}));
}

}  // namespace
}  // namespace client
