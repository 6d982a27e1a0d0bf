#include "schedule/timetable.h"

#include "support/temporaryfolder.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace schedule {
namespace {

TEST(Timetable, HasTheDailyLinesOfTheFolderAndNothingMoreOfCron) {
    const TemporaryFolder folder;
    folder.Write("b", "59 23 * * * /bin/b  one two\n\n  # comment\n");
    folder.Write("a", " 0\t0 * * * /bin/a\r");
    folder.Write("c.new", "1 1 * * * /bin/c");
    folder.Write(
        "refused",
        "60 0 * * * /bin/x\n0 24 * * * /bin/x\n-1 0 * * * /bin/x\n*/5 0 * * * /bin/x\n* * * * * /bin/x\n"
        "0 0 1 * * /bin/x\n0 0 * * 1 /bin/x\n0 0 * * *\n0 0 * * * relative\n@daily /bin/x\nX=1\n1x 0 * * * "
        "/x\n");
    std::filesystem::create_symlink(folder.PathOf("a"), folder.PathOf("link"));
    std::filesystem::create_directory(folder.PathOf("folder"));
    const Timetable timetable = ReadTimetable(folder.Path());
    EXPECT_EQ(12U, timetable.refused.size());
    ASSERT_EQ(2U, timetable.rules.size());
    EXPECT_EQ((std::vector<std::string>{"/bin/a"}), timetable.rules[0].line.command);
    const DailyLine& last = timetable.rules[1].line;
    EXPECT_EQ((std::vector<std::string>{"/bin/b", "one", "two"}), last.command);
    EXPECT_EQ(59, last.minute);
    EXPECT_EQ(23, last.hour);
    EXPECT_TRUE(ReadTimetable(folder.PathOf("absent")).rules.empty());
}

}  // namespace
}  // namespace schedule
