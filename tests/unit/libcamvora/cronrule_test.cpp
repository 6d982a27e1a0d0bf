#include "libcamvora/cronrule.h"

#include "support/listing.h"
#include "support/temporaryfolder.h"

#include <gtest/gtest.h>

namespace camvora {
namespace {

TEST(CronRule, IsWrittenAndRemovedWhole) {
    const TemporaryFolder folder;
    const std::string rules = folder.PathOf("etc/cron.d");
    for (const char* line : {"12 3 * * * /bin/true", "12 3 * * * /bin/true", "13 4 * * * /bin/false"}) {
        EXPECT_TRUE(WriteRule(rules, "rule", line));
        EXPECT_EQ(std::string(line) + "\n", folder.Read("etc/cron.d/rule"));
        EXPECT_EQ(1U, ListingOf(rules).size());
    }
    EXPECT_TRUE(RemoveRule(rules, "rule"));
    EXPECT_TRUE(RemoveRule(rules, "rule"));
    EXPECT_TRUE(ListingOf(rules).empty());
    folder.Write("file", "");
    EXPECT_FALSE(WriteRule(folder.PathOf("file"), "rule", "12 3 * * * /bin/true"));
}

}  // namespace
}  // namespace camvora
