#include "client/typedline.h"

#include <algorithm>

namespace client {
namespace {

bool IsAmong(const std::string& word, const std::vector<std::string>& words) {
    return std::find(words.begin(), words.end(), word) != words.end();
}

const OptionDescription* FindOption(const CommandDescription& command, const std::string& name) {
    for (const OptionDescription& option : command.options) {
        if (IsAmong(name, option.names)) {
            return &option;
        }
    }
    return nullptr;
}

const CommandDescription* FindCommand(const CommandDescription& parent, const std::string& name) {
    for (const CommandDescription& command : parent.commands) {
        if (command.name == name || IsAmong(name, command.aliases)) {
            return &command;
        }
    }
    return nullptr;
}

class LineReader {
public:
    explicit LineReader(const CommandDescription& program) : program_(program) { line_.command = &program; }

    void Take(const std::string& word) {
        if (line_.open != nullptr) {
            line_.optionValues[line_.open->names.back()] = word;
            line_.open = nullptr;
        } else if (word.rfind('-', 0) == 0) {
            TakeOption(word);
        } else {
            TakePlain(word);
        }
    }

    TypedLine End(const std::string& last) {
        line_.last = last;
        return line_;
    }

private:
    void TakeOption(const std::string& word) {
        const std::size_t equals = word.find('=');
        const std::string name = word.substr(0, equals);
        const OptionDescription* own = FindOption(*line_.command, name);
        const OptionDescription* option = own != nullptr ? own : FindOption(program_, name);
        if (option == nullptr || option->value.empty()) {
            return;
        }
        if (equals == std::string::npos) {
            line_.open = option;
        } else {
            line_.optionValues[option->names.back()] = word.substr(equals + 1);
        }
    }

    void TakePlain(const std::string& word) {
        const CommandDescription* command = FindCommand(*line_.command, word);
        if (command == nullptr) {
            line_.arguments.push_back(word);
            return;
        }
        line_.command = command;
        line_.path += (line_.path.empty() ? "" : " ") + command->name;
    }

    const CommandDescription& program_;
    TypedLine line_;
};

}  // namespace

TypedLine ReadTypedLine(const CommandDescription& program, const std::vector<std::string>& words) {
    LineReader reader(program);
    std::for_each(words.begin(), words.end() - 1, [&reader](const std::string& word) { reader.Take(word); });
    return reader.End(words.back());
}

}  // namespace client
