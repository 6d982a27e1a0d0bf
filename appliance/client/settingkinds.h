// The options for all commands, which can also be set in the environment and in the settings file.
#pragma once

#include <array>
#include <cstddef>
#include <string>

namespace client {

// One of the options; the row of a table.
struct SettingKind {
    const char* name;       // on the command line behind "--", in the file before "="
    const char* variable;   // in the environment
    const char* valueText;  // what the help shows for the value; empty for a flag
    const char* help;

    // What is wrong with a value; empty for nothing.
    std::string (*problemOf)(const std::string& value);

    bool IsFlag() const { return *valueText == '\0'; }
};

inline constexpr std::size_t kSettingCount = 7;
extern const std::array<SettingKind, kSettingCount> kSettingKinds;

// The row of that name; null when there is none.
const SettingKind* FindKind(const std::string& name);

// True for a word that switches a flag on.
bool IsOnWord(const std::string& value);

}  // namespace client
