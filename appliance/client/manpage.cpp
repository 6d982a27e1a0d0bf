#include "client/manpage.h"

#include "client/commandtree.h"
#include "client/examples.h"
#include "client/exitstatus.h"
#include "client/globalsettings.h"

#include "interface/methodtable.h"

#include <algorithm>
#include <vector>

namespace client {
namespace {

struct Entry {
    const char* term;
    const char* text;
};

constexpr Entry kFiles[] = {
    {"DIR/token", "The access token of the appliance in the folder DIR."},
    {"DIR/var/packages/Camvora/target/@CVData/run/address", "The address of the appliance while it runs."},
    {"$XDG_CONFIG_HOME/camvora/camvoractl.conf, ~/.config/camvora/camvoractl.conf",
     "Settings: the options for all commands, without their dashes, as in \"timeout=30\". \"#\" begins a "
     "comment."},
};

// Text of which nothing is a request or an escape of roff.
std::string Escaped(const std::string& text) {
    std::string escaped;
    for (const char byte : text) {
        if (byte == '\\') {
            escaped += "\\e";
        } else if (byte == '-') {
            escaped += "\\-";
        } else {
            escaped += byte;
        }
    }
    const bool isRequest = !text.empty() && (text.front() == '.' || text.front() == '\'');
    return isRequest ? "\\&" + escaped : escaped;
}

std::string Line(const std::string& text) {
    return Escaped(text) + "\n";
}

std::string Section(const std::string& title) {
    return ".SH " + title + "\n";
}

std::string Subsection(const std::string& title) {
    return ".SS \"" + Escaped(title) + "\"\n";
}

std::string Item(const std::string& term, const std::string& text) {
    return ".TP\n\\fB" + Escaped(term) + "\\fR\n" + Line(text);
}

std::string Sentence(const std::string& text) {
    return text.empty() || text.back() == '.' ? text : text + ".";
}

std::string OptionItems(const CommandDescription& command) {
    std::string items;
    for (const OptionDescription& option : command.options) {
        items += Item(UsageOf(option), Sentence(option.help));
    }
    return items;
}

// What belongs to an item, one step farther in.
std::string Inset(const std::string& items) {
    return items.empty() ? "" : ".RS\n" + items + ".RE\n";
}

std::string CommandItem(const CommandDescription& command, const std::string& parents) {
    std::string help = Sentence(command.help);
    for (const std::string& alias : command.aliases) {
        help += " Also: " + alias + ".";
    }
    help += command.more.empty() ? "" : " " + command.more;
    std::string details;
    for (const ArgumentDescription& argument : command.arguments) {
        details += Item(argument.name, Sentence(argument.help));
    }
    return Item(parents + UsageOf(command), help) + Inset(details + OptionItems(command));
}

// A command, or those below it.
std::string CommandItems(const CommandDescription& command) {
    if (command.commands.empty()) {
        return CommandItem(command, "");
    }
    std::string items;
    for (const CommandDescription& below : command.commands) {
        items += CommandItem(below, command.name + " ");
    }
    return items;
}

std::string CommandSection(const CommandDescription& program) {
    std::string section = Section("COMMANDS");
    std::string group;
    for (const CommandDescription& command : program.commands) {
        if (command.group.empty()) {
            continue;
        }
        if (command.group != group) {
            group = command.group;
            section += Subsection(group);
        }
        section += CommandItems(command);
    }
    return section;
}

// With the parameters as they are typed for "call".
std::string MethodSection() {
    std::string section = Section("METHODS") + Line("For \"camvoractl call\".");
    for (const interface::Method& method : interface::Methods()) {
        section += Item(method.name, Sentence(method.summary));
        std::string parameters;
        for (const interface::Field& field : method.parameters) {
            parameters += Item(std::string(field.name) + "=", Sentence(field.meaning));
        }
        section += Inset(parameters);
    }
    return section;
}

std::string EnvironmentSection() {
    std::string section = Section("ENVIRONMENT");
    for (const SettingKind& kind : kSettingKinds) {
        section += Item(kind.variable,
                        std::string("As --") + kind.name + (kind.IsFlag() ? ": \"yes\" or \"no\"." : "."));
    }
    return section + Item("NO_COLOR", "When it is set, nothing is coloured.");
}

std::string FileSection() {
    std::string section = Section("FILES");
    for (const Entry& file : kFiles) {
        section += Item(file.term, file.text);
    }
    return section;
}

std::string ExitStatusSection() {
    std::string section = Section("EXIT STATUS");
    for (const ExitStatusMeaning& meaning : ExitStatusMeanings()) {
        section += Item(std::to_string(static_cast<int>(meaning.status)), Sentence(meaning.words));
    }
    return section;
}

std::string ExampleSection(const CommandDescription& program) {
    std::string section = Section("EXAMPLES") + ".nf\n";
    for (const CommandDescription& command : program.commands) {
        for (const std::string& example : ExamplesOf(command.name)) {
            section += Line("camvoractl " + example);
        }
    }
    return section + ".fi\n";
}

}  // namespace

std::string ManualPage(const CommandDescription& program) {
    return ".TH CAMVORACTL 1 \"\" \"camvoractl " CAMVORA_VERSION "\"\n" + Section("NAME") +
           "camvoractl \\- " + Escaped("manages the add-on services of a Camvora appliance") + "\n" +
           Section("SYNOPSIS") + ".B camvoractl\n.I COMMAND\n[\\fIARGUMENT\\fR...] [\\fIOPTION\\fR...]\n" +
           Section("DESCRIPTION") + Line(program.help) +
           Line(
               "A SERVICE is a number or a short name. The outcome goes to standard output, everything "
               "else to standard error; with --json the outcome and errors are JSON.") +
           CommandSection(program) + Section("OPTIONS FOR ALL COMMANDS") + OptionItems(program) + ".PP\n" +
           Line(PrecedenceText()) + MethodSection() + EnvironmentSection() + FileSection() +
           ExitStatusSection() + ExampleSection(program);
}

}  // namespace client
