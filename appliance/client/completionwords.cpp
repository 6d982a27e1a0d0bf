#include "client/completionwords.h"

#include "client/appliance.h"
#include "client/failure.h"
#include "client/jsontext.h"
#include "client/services.h"
#include "client/session.h"
#include "client/typedline.h"

#include "interface/methodtable.h"

#include <algorithm>
#include <functional>
#include <iterator>

namespace client {
namespace {

using Words = std::vector<CompletionWord>;

constexpr char kLongestWaitSeconds[] = "2";

Words Services(Session& session, const std::function<bool(const Json::Value& info)>& fits) {
    const Json::Value data = session.Host().Call("List", Json::objectValue);
    Words words;
    for (const Service& service : ServicesIn(data)) {
        if (fits(InfoOf(data, service))) {
            words.push_back({service.shortName, service.name});
        }
    }
    return words;
}

bool Is(const Json::Value& info, const char* member) {
    return Member(info, member) == Json::Value(true);
}

Words AllServices(Session& session, const TypedLine& /*line*/) {
    return Services(session, [](const Json::Value& /*info*/) { return true; });
}

Words StoppedServices(Session& session, const TypedLine& /*line*/) {
    return Services(session, [](const Json::Value& info) { return !Is(info, "blRunning"); });
}

Words RunningServices(Session& session, const TypedLine& /*line*/) {
    return Services(session, [](const Json::Value& info) { return Is(info, "blRunning"); });
}

Words AddOns(Session& session, const TypedLine& /*line*/) {
    return Services(session, [](const Json::Value& info) { return Is(info, "blHasPackages"); });
}

Words RestorableAddOns(Session& session, const TypedLine& /*line*/) {
    return Services(session, [](const Json::Value& info) { return Is(info, "blFactoryCopy"); });
}

Words MethodNames(Session& /*session*/, const TypedLine& /*line*/) {
    Words words;
    for (const interface::Method& method : interface::Methods()) {
        words.push_back({method.name, method.summary});
    }
    return words;
}

Words ServiceNumbers(Session& session, const std::string& prefix) {
    Words words;
    for (const Service& service : ServicesIn(session.Host().Call("List", Json::objectValue))) {
        words.push_back({prefix + std::to_string(service.number), service.name});
    }
    return words;
}

Words ParameterValues(Session& session, const interface::Field& field) {
    const std::string prefix = std::string(field.name) + "=";
    if (field.type == interface::Type::kBoolean) {
        return {{prefix + "true", ""}, {prefix + "false", ""}};
    }
    return prefix == "service=" ? ServiceNumbers(session, prefix) : Words{};
}

bool IsTyped(const TypedLine& line, const std::string& parameter) {
    return std::any_of(line.arguments.begin(), line.arguments.end(),
                       [&parameter](const std::string& word) { return word.rfind(parameter + "=", 0) == 0; });
}

Words ParameterWords(Session& session, const TypedLine& line) {
    const interface::Method* method = interface::FindMethod(line.arguments.front());
    Words words;
    for (const interface::Field& field :
         method == nullptr ? std::vector<interface::Field>{} : method->parameters) {
        if (line.last.rfind(std::string(field.name) + "=", 0) == 0) {
            return ParameterValues(session, field);
        }
        if (!IsTyped(line, field.name)) {
            words.push_back({std::string(field.name) + "=", field.meaning});
        }
    }
    return words;
}

Words PairNames(Session& session, const TypedLine& /*line*/) {
    Words words;
    for (const Json::Value& pair : Member(session.Host().GetPage("/pairs", "The list of pairs"), "pairs")) {
        words.push_back({LeafText(Member(pair, "name")), LeafText(Member(pair, "role"))});
    }
    return words;
}

Words Operations(Session& session, bool isOver) {
    Words words;
    for (const Json::Value& operation : session.Host().Operations()) {
        if (isOver || Member(operation, "outcome") == "running") {
            words.push_back({LeafText(Member(operation, "id")), LeafText(Member(operation, "method"))});
        }
    }
    return words;
}

Words AllOperations(Session& session, const TypedLine& /*line*/) {
    return Operations(session, true);
}

Words RunningOperations(Session& session, const TypedLine& /*line*/) {
    return Operations(session, false);
}

Words OnOff(Session& /*session*/, const TypedLine& /*line*/) {
    return {{"on", ""}, {"off", ""}};
}

Words Shells(Session& /*session*/, const TypedLine& /*line*/) {
    return {{"bash", ""}, {"zsh", ""}};
}

Words Languages(Session& /*session*/, const TypedLine& /*line*/) {
    return {{"en", "English"}, {"de", "German"}};
}

Words FileNames(Session& /*session*/, const TypedLine& /*line*/) {
    return {{kFileNames, ""}};
}

// What stands at a place of the line.
struct Place {
    const char* command;  // its path; empty for any
    const char* name;     // of the argument, of the option, or what is shown for the option's value
    Words (*words)(Session& session, const TypedLine& line);
};

// The first that fits.
constexpr Place kPlaces[] = {
    {"start", "SERVICE", StoppedServices},
    {"stop", "SERVICE", RunningServices},
    {"restart", "SERVICE", RunningServices},
    {"status", "SERVICE", AllServices},
    {"restore", "SERVICE", RestorableAddOns},
    {"", "SERVICE", AddOns},
    {"", "METHOD", MethodNames},
    {"", "PARAMETER", ParameterWords},
    {"wait", "ID", RunningOperations},
    {"operations", "ID", AllOperations},
    {"pair remove", "NAME", PairNames},
    {"", "--server", PairNames},
    {"", "--lang", Languages},
    {"", "on|off", OnOff},
    {"", "SHELL", Shells},
    {"", "FILE", FileNames},
    {"", "DIR", FileNames},
};

// The words at the first place of one of the names.
Words WordsAt(const std::vector<std::string>& names, const TypedLine& line, Session& session) {
    for (const Place& place : kPlaces) {
        const bool isCommand = *place.command == '\0' || line.path == place.command;
        if (isCommand && std::find(names.begin(), names.end(), place.name) != names.end()) {
            return place.words(session, line);
        }
    }
    return {};
}

Words OptionWords(const CommandDescription& command) {
    Words words;
    for (const OptionDescription& option : command.options) {
        words.push_back({option.names.back(), option.help});
    }
    return words;
}

Words AllOptions(const CommandDescription& program, const TypedLine& line) {
    Words words = OptionWords(*line.command);
    if (line.command != &program) {
        const Words global = OptionWords(program);
        std::copy_if(
            global.begin(), global.end(), std::back_inserter(words), [&words](const CompletionWord& word) {
                return std::none_of(words.begin(), words.end(),
                                    [&word](const CompletionWord& own) { return own.word == word.word; });
            });
    }
    return words;
}

Words CommandWords(const CommandDescription& parent) {
    Words words;
    for (const CommandDescription& command : parent.commands) {
        if (!command.group.empty()) {
            words.push_back({command.name, command.help});
        }
    }
    return words;
}

Words ArgumentWords(const TypedLine& line, Session& session) {
    const std::vector<ArgumentDescription>& arguments = line.command->arguments;
    if (arguments.empty() || (line.arguments.size() >= arguments.size() && !arguments.back().isRepeated)) {
        return {};
    }
    const std::size_t index = std::min(line.arguments.size(), arguments.size() - 1);
    return WordsAt({arguments[index].name}, line, session);
}

Words PossibleWords(const CommandDescription& program, const TypedLine& line, Session& session) {
    if (line.open != nullptr) {
        return WordsAt({line.open->names.back(), line.open->value}, line, session);
    }
    if (line.last.rfind('-', 0) == 0) {
        return AllOptions(program, line);
    }
    return line.command->commands.empty() ? ArgumentWords(line, session) : CommandWords(*line.command);
}

GlobalSettings TypedSettings(GlobalSettings settings, const TypedLine& line) {
    for (const SettingKind& kind : kSettingKinds) {
        const auto typed = line.optionValues.find(std::string("--") + kind.name);
        if (typed != line.optionValues.end()) {
            settings.Set(kind, typed->second);
        }
    }
    settings.Set(*FindKind("timeout"), kLongestWaitSeconds);
    return settings;
}

}  // namespace

std::vector<CompletionWord> CompletionWords(const CommandDescription& program,
                                            const std::vector<std::string>& typed, const Session& session) {
    const TypedLine line = ReadTypedLine(program, typed);
    const GlobalSettings settings = TypedSettings(session.Settings(), line);
    Session typedSession(settings);
    Words words;
    try {
        typedSession.TakeSettings();
        words = PossibleWords(program, line, typedSession);
    } catch (const Failure&) {  // no place to report it
        return {};
    }
    words.erase(std::remove_if(words.begin(), words.end(),
                               [&line](const CompletionWord& word) {
                                   return word.word != kFileNames && word.word.rfind(line.last, 0) != 0;
                               }),
                words.end());
    return words;
}

}  // namespace client
