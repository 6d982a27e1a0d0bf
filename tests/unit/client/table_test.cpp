#include "client/table.h"

#include <gtest/gtest.h>

namespace client {
namespace {

TEST(TableTest, AlignsByCodePointsAndEndsLinesWithoutBlanks) {
    Table table({"Name", "Title", "On"});
    table.AddRow({"a", "Ger\u00e4te", "yes"});
    table.AddRow({"long name", "", "no"});
    EXPECT_EQ(
        "Name       Title   On\n"
        "a          Ger\u00e4te  yes\n"
        "long name  -       no\n",
        table.Text());
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
