#include "client/terminaltext.h"

#include <gtest/gtest.h>

using namespace std::string_view_literals;

namespace client {
namespace {

struct PrintableCase {
    const char* name;
    std::string_view text;
    const char* printable;
    std::size_t width;
};

const PrintableCase kPrintableCases[] = {
    {"plain", "Device Pack 3.2"sv, "Device Pack 3.2", 15},
    {"letters_of_two_three_and_four_bytes", "\u00e4\u20ac\U0001F600"sv, "\u00e4\u20ac\U0001F600", 4},
    {"escape_sequence", "\x1b[2J"sv, R"(\x1B[2J)", 7},
    {"line_ends_and_tab", "a\nb\rc\td"sv, R"(a\nb\rc\td)", 10},
    {"nul_and_del", "\0\x7f"sv, R"(\x00\x7F)", 8},
    {"c1_as_a_code_point", "\u009b1m"sv, R"(\u009B1m)", 8},
    {"c1_as_a_bare_byte", "\x9b"sv, R"(\x9B)", 4},
    {"turned_direction", "\u202e\u202c"sv, R"(\u202E\u202C)", 12},
    {"separator_of_lines", "\u2028"sv, R"(\u2028)", 6},
    {"cut_sequence_at_the_end", "a\xe2\x82"sv, R"(a\xE2\x82)", 9},
    {"cut_sequence_within", "\xc3-"sv, R"(\xC3-)", 5},
    {"overlong_form", "\xc0\xaf\xe0\x80\x9b"sv, R"(\xC0\xAF\xE0\x80\x9B)", 20},
    {"surrogate", "\xed\xa0\x80"sv, R"(\xED\xA0\x80)", 12},
    {"beyond_the_last_code_point", "\xf4\x90\x80\x80"sv, R"(\xF4\x90\x80\x80)", 16},
    {"never_a_lead", "\xff"sv, R"(\xFF)", 4},
};

TEST(PrintableTest, EscapesWhatActsOnATerminal) {
    for (const PrintableCase& row : kPrintableCases) {
        SCOPED_TRACE(row.name);
        const std::string printable = Printable(row.text);
        EXPECT_EQ(row.printable, printable);
        EXPECT_EQ(row.width, WidthOf(printable));
    }
}

}  // namespace
}  // namespace client
