// The journal: one line for each call that reached the fake, in true order across forked children.
#pragma once

#include <json/value.h>

#include <string>
#include <vector>

namespace fake {

// Lines of a journal.
using Steps = std::vector<std::string>;

// The lines of both, one after the other.
Steps operator+(Steps first, const Steps& second);

// An argument as it stands in the journal. A text stands bare when it is one plain word, otherwise in
// single quotes with \n and \xNN for control characters; a null one is "null". JSON stands on one line.
std::string Text(const std::string& text);
std::string Text(const char* text);
std::string Text(const Json::Value& value);
std::string Text(long long number);
std::string Text(int number);
std::string Text(bool value);

// Appends the line to the journal; does nothing while no Session lives. A line of a forked child is set
// off by "> ", one for each fork that lies between it and the test.
void WriteLine(const std::string& line);

// Appends the line "call argument argument...".
template <typename... Arguments>
void Record(const std::string& call, const Arguments&... arguments) {
    WriteLine((call + ... + (" " + Text(arguments))));
}

// All lines so far, each ended by a newline.
std::string Journal();

// The same without the lines of `call`.
std::string JournalWithout(const std::string& call);

// The lines as Journal() gives them.
std::string Lines(const Steps& lines);

// For Session: begins an empty journal, and ends it. Its file lies in memory.
void OpenJournal();
void CloseJournal();

// For fork: this process is a child from now on.
void EnterChild();

}  // namespace fake
