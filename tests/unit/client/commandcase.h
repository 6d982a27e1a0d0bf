// A command line, and what has to come of it at an appliance.
#pragma once

#include "usualreplies.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

using Text = testing::Matcher<std::string>;  // a text is one, too: all of it
using Requests = testing::Matcher<std::vector<std::string>>;

// Requests of which one, or none, begins so.
Requests Asks(const std::string& beginning);
Requests AsksNo(const std::string& beginning);

struct CommandCase {
    const char* name;
    std::string line;
    FakeReplies replies;
    int status;
    Text out;
    Text err;
    Requests requests = testing::_;
};

std::string NameOf(const testing::TestParamInfo<CommandCase>& info);

// The test of all tables of such cases.
class CommandTest : public testing::TestWithParam<CommandCase> {};
