#include "client/helppage.h"

#include "client/commandtree.h"
#include "client/examples.h"
#include "client/exitstatus.h"
#include "client/globalsettings.h"

#include <algorithm>
#include <sstream>
#include <vector>

namespace client {
namespace {

constexpr std::size_t kWidth = 80;
constexpr std::size_t kIndent = 2;
constexpr std::size_t kGap = 2;
constexpr std::size_t kWidestTerm = 26;

struct Entry {
    std::string term;
    std::string text;
};

// `text` in lines that end before the last column; all but the first are indented.
std::string Wrapped(const std::string& text, std::size_t indent) {
    std::istringstream words(text);
    std::string wrapped;
    std::string word;
    std::size_t column = indent;
    while (words >> word) {
        const bool isFirst = wrapped.empty();
        if (!isFirst && column + 1 + word.size() > kWidth) {
            wrapped += "\n" + std::string(indent, ' ');
            column = indent;
        } else if (!isFirst) {
            wrapped += " ";
            ++column;
        }
        wrapped += word;
        column += word.size();
    }
    return wrapped;
}

// A long term has a line of its own.
std::string Line(const Entry& entry, std::size_t termWidth) {
    const std::size_t indent = kIndent + termWidth + kGap;
    const std::string lead = std::string(kIndent, ' ') + entry.term;
    const std::string gap = entry.term.size() > termWidth ? "\n" + std::string(indent, ' ')
                                                          : std::string(indent - lead.size(), ' ');
    return lead + gap + Wrapped(entry.text, indent) + "\n";
}

std::size_t TermWidth(const std::vector<Entry>& entries) {
    std::size_t width = 0;
    for (const Entry& entry : entries) {
        width = std::max(width, std::min(entry.term.size(), kWidestTerm));
    }
    return width;
}

std::string Section(const std::string& title, const std::vector<Entry>& entries, std::size_t width) {
    std::string section = entries.empty() ? "" : title + ":\n";
    for (const Entry& entry : entries) {
        section += Line(entry, width);
    }
    return entries.empty() ? "" : section + "\n";
}

std::string Section(const std::string& title, const std::vector<Entry>& entries) {
    return Section(title, entries, TermWidth(entries));
}

std::string Paragraph(const std::string& text) {
    return Wrapped(text, 0) + "\n\n";
}

std::vector<Entry> OptionEntries(const CommandDescription& command) {
    std::vector<Entry> entries;
    for (const OptionDescription& option : command.options) {
        entries.push_back({UsageOf(option), option.help});
    }
    return entries;
}

std::vector<Entry> ArgumentEntries(const CommandDescription& command) {
    std::vector<Entry> entries;
    for (const ArgumentDescription& argument : command.arguments) {
        entries.push_back({argument.name, argument.help});
    }
    return entries;
}

// With the names of the commands below it, as in "feed key|build".
std::string TermOf(const CommandDescription& command) {
    std::string below;
    for (const CommandDescription& one : command.commands) {
        below += (below.empty() ? " " : "|") + one.name;
    }
    return below.empty() ? UsageOf(command) : command.name + below;
}

// Those of one group, in the order in which they were added; of an empty name all that are shown.
std::vector<Entry> CommandEntries(const CommandDescription& parent, const std::string& group) {
    std::vector<Entry> entries;
    for (const CommandDescription& command : parent.commands) {
        if (!command.group.empty() && (group.empty() || command.group == group)) {
            entries.push_back({TermOf(command), command.help});
        }
    }
    return entries;
}

// A section for each group.
std::string CommandSections(const CommandDescription& parent) {
    const std::size_t width = TermWidth(CommandEntries(parent, ""));
    std::string sections;
    std::string group;
    for (const CommandDescription& command : parent.commands) {
        if (command.group != group && !command.group.empty()) {
            group = command.group;
            sections += Section(group, CommandEntries(parent, group), width);
        }
    }
    return sections;
}

std::string ExampleSection(const std::vector<std::string>& examples) {
    std::string section = examples.empty() ? "" : "Examples:\n";
    for (const std::string& example : examples) {
        section += "  camvoractl " + example + "\n";
    }
    return section + "\n";
}

std::string ExitStatusSection() {
    std::vector<Entry> entries;
    for (const ExitStatusMeaning& meaning : ExitStatusMeanings()) {
        const std::string number = std::to_string(static_cast<int>(meaning.status));
        entries.push_back({std::string(3 - number.size(), ' ') + number, meaning.words});
    }
    return Section("Exit statuses", entries);
}

std::string AliasText(const CommandDescription& command) {
    std::string text;
    for (const std::string& alias : command.aliases) {
        text += (text.empty() ? " Also: " : ", ") + alias;
    }
    return text.empty() ? "" : text + ".";
}

}  // namespace

std::string ProgramHelp(const CommandDescription& program) {
    return "Usage: camvoractl COMMAND [ARGUMENT...] [OPTION...]\n\n" + Paragraph(program.help) +
           CommandSections(program) +
           Paragraph(
               "\"camvoractl COMMAND --help\" says more about a command. A SERVICE is a number or a short "
               "name.") +
           Section("Options for all commands", OptionEntries(program)) + Paragraph(PrecedenceText()) +
           ExitStatusSection() + ExampleSection(ProgramExamples());
}

std::string CommandHelp(const CommandDescription& command, const std::string& path) {
    std::string usage = path + UsageOf(command).substr(command.name.size());
    usage += command.commands.empty() ? "" : " COMMAND";
    usage += command.options.empty() ? "" : " [OPTION...]";
    return "Usage: camvoractl " + usage + "\n\n" +
           Paragraph(command.help + "." + AliasText(command) + " " + command.more) +
           Section("Arguments", ArgumentEntries(command)) + CommandSections(command) +
           Section("Options", OptionEntries(command)) + ExampleSection(ExamplesOf(path)) +
           "Options for all commands, and exit statuses: camvoractl --help\n";
}

}  // namespace client
