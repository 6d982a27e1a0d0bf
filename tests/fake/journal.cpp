#include "fake/journal.h"

#include "fake/json.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <regex>

namespace fake {
namespace {

int journalFile = -1;
std::string childMarks;

bool IsPlain(unsigned char c) {
    return std::isalnum(c) != 0 || (c != 0 && std::strchr("_-+./:,=@%", c) != nullptr);
}

std::string Escaped(unsigned char c) {
    if (c == '\n') {
        return "\\n";
    }
    if (c == '\'' || c == '\\') {
        return {'\\', static_cast<char>(c)};
    }
    if (std::iscntrl(c) == 0) {
        return {static_cast<char>(c)};
    }
    std::array<char, 5> hex{};
    std::snprintf(hex.data(), hex.size(), "\\x%02x", static_cast<unsigned>(c));
    return hex.data();
}

}  // namespace

Steps operator+(Steps first, const Steps& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

std::string Text(const std::string& text) {
    if (!text.empty() && std::all_of(text.begin(), text.end(), IsPlain)) {
        return text;
    }
    std::string quoted = "'";
    for (const char c : text) {
        quoted += Escaped(static_cast<unsigned char>(c));
    }
    return quoted + "'";
}

std::string Text(const char* text) {
    return text == nullptr ? "null" : Text(std::string(text));
}

std::string Text(const Json::Value& value) {
    return WriteJson(value);
}

std::string Text(long long number) {
    return std::to_string(number);
}

std::string Text(int number) {
    return std::to_string(number);
}

std::string Text(bool value) {
    return value ? "true" : "false";
}

void WriteLine(const std::string& line) {
    if (journalFile < 0) {
        return;
    }
    const std::string whole = childMarks + line + "\n";
    if (write(journalFile, whole.data(), whole.size()) != static_cast<ssize_t>(whole.size())) {
        std::perror("journal");
        std::abort();
    }
}

std::string Journal() {
    std::string journal;
    std::array<char, 4096> block{};
    ssize_t length = 0;
    while ((length = pread(journalFile, block.data(), block.size(), static_cast<off_t>(journal.size()))) >
           0) {
        journal.append(block.data(), static_cast<std::size_t>(length));
    }
    return journal;
}

std::string JournalWithout(const std::string& call) {
    return std::regex_replace(Journal(), std::regex(call + " .*\n"), "");
}

std::string Lines(const Steps& lines) {
    std::string text;
    for (const std::string& line : lines) {
        text += line + "\n";
    }
    return text;
}

void OpenJournal() {
    journalFile = memfd_create("journal", MFD_CLOEXEC);
    childMarks.clear();
}

void CloseJournal() {
    close(journalFile);
    journalFile = -1;
}

void EnterChild() {
    childMarks += "> ";
}

}  // namespace fake
