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

TEST(TableTest, CutsItsWidestCellsToTheTerminal) {
    Table table({"Name", "Notes", "Automatic"});
    table.AddRow({"device_pack", "better than before", "yes"});
    table.AddRow({"cms", "\u4e2d\u6587\u4e2d\u6587\u4e2d\u6587\u4e2d", "no"});
    EXPECT_EQ(
        "Name         Notes               Aut\u2026\n"
        "device_pack  better than before  yes\n"
        "cms          \u4e2d\u6587\u4e2d\u6587\u4e2d\u6587\u4e2d      no\n",
        table.Text({37, false}));
    EXPECT_EQ(
        "Name       Notes      Aut\u2026\n"
        "device_p\u2026  better t\u2026  yes\n"
        "cms        \u4e2d\u6587\u4e2d\u6587\u2026  no\n",
        table.Text({26, false}));
    table.KeepWhole();
    EXPECT_EQ(table.Text(), table.Text({25, false}));
    Table plain;
    plain.AddRow({"Notes", "better than before"});
    EXPECT_EQ(plain.Text(), plain.Text({10, false}));
}

TEST(TableTest, IsColouredOnlyWhereThereAreColours) {
    Table table;
    table.AddRow({"started", "x"});
    table.Paint(0, Colour::kGreen);
    EXPECT_EQ("started  x\n", table.Text());
    EXPECT_EQ("\x1b[32mstarted\x1b[0m  x\n", table.Text({80, true}));
}

TEST(TableTest, KeepsARowOnItsLineWhateverItsCellsHold) {
    Table table;
    table.AddRow({"evil\n\x1b[2Jname", "v"});
    table.AddRow({"n", "\xFF"});
    EXPECT_EQ(
        "evil\\n\\x1B[2Jname  v\n"
        "n                  \\xFF\n",
        table.Text());
}

}  // namespace
}  // namespace client
