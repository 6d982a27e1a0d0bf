// A line as far as it has been typed.
#pragma once

#include "client/commandtree.h"

#include <map>
#include <string>
#include <vector>

namespace client {

struct TypedLine {
    const CommandDescription* command = nullptr;  // the last one that is named; the program itself for none
    std::string path;                             // its name with those above it; empty for the program
    std::vector<std::string> arguments;           // of the command, before the last word
    std::map<std::string, std::string> optionValues;  // by the option's name, as in "--dir"
    const OptionDescription* open = nullptr;          // whose value the last word is; null for none
    std::string last;                                 // the word that is being typed
};

// Reads the words behind the program's name; there is at least one. `program` must outlive what is returned.
TypedLine ReadTypedLine(const CommandDescription& program, const std::vector<std::string>& words);

}  // namespace client
