#include "commandcase.h"

Requests Asks(const std::string& beginning) {
    return testing::Contains(testing::StartsWith(beginning));
}

Requests AsksNo(const std::string& beginning) {
    return testing::Not(Asks(beginning));
}

std::string NameOf(const testing::TestParamInfo<CommandCase>& info) {
    return info.param.name;
}

TEST_P(CommandTest, DoesAndSays) {
    FakeAppliance appliance(GetParam().replies);
    const Outcome outcome = appliance.Run(GetParam().line);
    EXPECT_EQ(GetParam().status, outcome.status);
    EXPECT_THAT(outcome.out, GetParam().out);
    EXPECT_THAT(outcome.err, GetParam().err);
    EXPECT_THAT(appliance.Requests(), GetParam().requests);
}
