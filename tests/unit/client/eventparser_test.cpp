#include "client/eventparser.h"

#include <gtest/gtest.h>

#include <vector>

namespace client {
namespace {

struct StreamCase {
    const char* name;
    std::vector<std::string> pieces;
    std::vector<std::string> events;  // "id|name|data"
};

const std::vector<StreamCase> kStreamCases = {
    {"whole", {"id: 1\nevent: a\ndata: x\n\nid: 2\ndata: y\n\n"}, {"1|a|x", "2||y"}},
    {"in_pieces", {"i", "d: 1\nda", "ta: x", "\n", "\ndata: y\n"}, {"1||x"}},
    {"with_returns", {"id: 1\r\ndata: x\r", "\n\r\n"}, {"1||x"}},
    {"several_lines_of_data", {"data: x\ndata\ndata:y\n\n"}, {"||x\n\ny"}},
    {"one_blank_belongs_to_the_form", {"data:  x\n\n"}, {"|| x"}},
    {"comments_and_unknown_fields", {": still here\n\nretry: 5\nother\ndata: x\n\n"}, {"||x"}},
    {"without_data_there_is_no_event", {"id: 1\nevent: a\n\ndata: x\n\n"}, {"1||x"}},
};

TEST(StreamTest, GivesItsEvents) {
    for (const StreamCase& row : kStreamCases) {
        SCOPED_TRACE(row.name);
        std::vector<std::string> events;
        EventParser parser([&events](const Event& event) {
            events.push_back(event.id + "|" + event.name + "|" + event.data);
        });
        for (const std::string& piece : row.pieces) {
            EXPECT_TRUE(parser.Take(piece));
        }
        EXPECT_EQ(row.events, events);
    }
}

TEST(EventParserTest, RefusesAnEventWithoutEnd) {
    EventParser parser([](const Event&) {});
    EXPECT_TRUE(parser.Take("data: x"));
    EXPECT_FALSE(parser.Take(std::string(17 << 20, 'x')));
}

}  // namespace
}  // namespace client
