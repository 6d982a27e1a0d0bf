#include "client/commandtree.h"

namespace client {

std::string UsageOf(const CommandDescription& command) {
    std::string usage = command.name;
    for (const ArgumentDescription& argument : command.arguments) {
        const std::string words = argument.name + (argument.isRepeated ? "..." : "");
        usage += argument.isRequired ? " " + words : " [" + words + "]";
    }
    for (const OptionDescription& option : command.options) {
        usage += option.isRequired ? " " + option.names.front() + " " + option.value : "";
    }
    return usage;
}

std::string UsageOf(const OptionDescription& option) {
    std::string usage;
    for (const std::string& name : option.names) {
        usage += (usage.empty() ? "" : ", ") + name;
    }
    return option.value.empty() ? usage : usage + " " + option.value;
}

}  // namespace client
