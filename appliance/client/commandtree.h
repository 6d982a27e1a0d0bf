// The command line as data: what the help, the manual page and the shells' completion are made of.
#pragma once

#include <string>
#include <vector>

namespace client {

struct OptionDescription {
    std::vector<std::string> names;  // as they are typed, short ones first
    std::string value;               // what is shown for it, as in "FILE"; empty for a flag
    std::string help;
    bool isRequired;
};

struct ArgumentDescription {
    std::string name;
    std::string help;
    bool isRequired;
    bool isRepeated;
};

struct CommandDescription {
    std::string name;
    std::vector<std::string> aliases;
    std::string help;   // one line without its full stop
    std::string more;   // sentences; may be empty
    std::string group;  // what it is for; empty for one that is not shown
    std::vector<ArgumentDescription> arguments;
    std::vector<OptionDescription> options;
    std::vector<CommandDescription> commands;  // below it
};

// "NAME ARGUMENT [ARGUMENT] --option VALUE", with the options that cannot be left out.
std::string UsageOf(const CommandDescription& command);

// "-o, --output FILE".
std::string UsageOf(const OptionDescription& option);

}  // namespace client
