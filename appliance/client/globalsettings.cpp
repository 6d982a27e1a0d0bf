#include "client/globalsettings.h"

#include "client/failure.h"
#include "client/keyvalue.h"
#include "client/plainfile.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstdlib>
#include <iterator>
#include <sstream>

namespace client {
namespace {

constexpr int kLongestTimeoutSeconds = 24 * 60 * 60;

constexpr const char* kOnWords[] = {"yes", "on", "true", "1"};
constexpr const char* kOffWords[] = {"no", "off", "false", "0"};

template <std::size_t Count>
bool IsAmong(const std::string& value, const char* const (&words)[Count]) {
    return std::any_of(std::begin(words), std::end(words),
                       [&value](const char* word) { return value == word; });
}

std::string ProblemOfFlag(const std::string& value) {
    return IsAmong(value, kOnWords) || IsAmong(value, kOffWords)
               ? ""
               : "\"" + value + "\" is neither \"yes\" nor \"no\"";
}

std::string ProblemOfText(const std::string& /*value*/) {
    return "";
}

std::string ProblemOfTimeout(const std::string& value) {
    int seconds = 0;
    const char* end = value.data() + value.size();
    const auto [stop, error] = std::from_chars(value.data(), end, seconds);
    const bool isGood =
        stop == end && error == std::errc() && seconds >= 1 && seconds <= kLongestTimeoutSeconds;
    return isGood ? ""
                  : "\"" + value + "\" is no number of seconds from 1 to " +
                        std::to_string(kLongestTimeoutSeconds);
}

// The name becomes a part of the address.
std::string ProblemOfServer(const std::string& value) {
    const bool isName = std::all_of(value.begin(), value.end(), [](unsigned char c) {
        return std::isalnum(c) != 0 || c == '.' || c == '_' || c == '-';
    });
    return isName && !value.empty() ? "" : "\"" + value + "\" cannot be the name of a server";
}

std::string KnownNames() {
    std::string names;
    for (const SettingKind& kind : kSettingKinds) {
        names += (names.empty() ? "" : ", ") + std::string(kind.name);
    }
    return names;
}

const SettingKind* FindKind(const std::string& name) {
    const auto* found = std::find_if(kSettingKinds.begin(), kSettingKinds.end(),
                                     [&name](const SettingKind& kind) { return name == kind.name; });
    return found == kSettingKinds.end() ? nullptr : found;
}

const char* Variable(const char* name) {
    const char* value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe): nobody changes the environment
    return value == nullptr ? "" : value;
}

}  // namespace

// In the order of the help.
const std::array<SettingKind, kSettingCount> kSettingKinds = {{
    {"host", "CAMVORA_HOST", "http://HOST:PORT", "Address of the appliance, instead of the folder's",
     AddressProblem},
    {"dir", "CAMVORA_DIR", "DIR", "The appliance's folder. Default: the folder of this program",
     ProblemOfText},
    {"token-file", "CAMVORA_TOKEN_FILE", "FILE", "File of the token, instead of the folder's", ProblemOfText},
    {"server", "CAMVORA_SERVER", "NAME",
     "Call methods on this recording server, which is paired with the appliance", ProblemOfServer},
    {"timeout", "CAMVORA_TIMEOUT", "SECONDS",
     "Longest time to wait for a reply or an outcome. Default: 60, and longer where the work takes longer",
     ProblemOfTimeout},
    {"json", "CAMVORA_JSON", "", "Write JSON, errors too, to standard output", ProblemOfFlag},
    {"quiet", "CAMVORA_QUIET", "", "Write no progress and no remarks, only the outcome and errors",
     ProblemOfFlag},
}};

const SettingKind& KindOf(const char* name) {
    return *FindKind(name);
}

GlobalSettings::GlobalSettings() {
    const std::string file = SettingsFile();
    if (!file.empty()) {
        TakeFile(file);
    }
    TakeEnvironment();
}

void GlobalSettings::Set(const SettingKind& kind, const std::string& value) {
    At(kind) = {value, Source::kCommandLine, "the command line"};
}

GlobalOptions GlobalSettings::InForce() const {
    Check();
    GlobalOptions options;
    options.location.dir = Find("dir").value;
    options.location.url = UnlessHidden("host");
    options.location.tokenFile = UnlessHidden("token-file");
    options.server = Find("server").value;
    options.json = IsOn("json");
    options.quiet = IsOn("quiet");
    if (const std::string& seconds = Find("timeout").value; !seconds.empty()) {
        options.timeoutSeconds = std::stoi(seconds);
    }
    return options;
}

void GlobalSettings::Check() const {
    std::string problem = problem_;
    for (const SettingKind& kind : kSettingKinds) {
        const Setting& setting = Find(kind.name);
        const std::string own = setting.source == Source::kDefault ? "" : kind.problemOf(setting.value);
        if (problem.empty() && !own.empty()) {
            problem = setting.place + ": " + own;
        }
    }
    if (!problem.empty()) {
        throw Failure(ExitStatus::kUsage, problem);
    }
}

const Setting& GlobalSettings::Find(const char* name) const {
    return settings_.at(static_cast<std::size_t>(&KindOf(name) - kSettingKinds.data()));
}

bool GlobalSettings::IsOn(const char* name) const {
    return IsAmong(Find(name).value, kOnWords);
}

std::string GlobalSettings::UnlessHidden(const char* name) const {
    const Setting& setting = Find(name);
    return Find("dir").source > setting.source ? "" : setting.value;
}

void GlobalSettings::TakeEnvironment() {
    for (const SettingKind& kind : kSettingKinds) {
        const std::string value = Variable(kind.variable);
        if (!value.empty()) {
            At(kind) = {value, Source::kEnvironment, std::string(kind.variable) + " in the environment"};
        }
    }
}

void GlobalSettings::TakeFile(const std::string& path) {
    std::istringstream text(TextIn(path));
    std::string line;
    for (int number = 1; std::getline(text, line); ++number) {
        if (!IsRemark(line)) {
            TakeLine(line, path + ":" + std::to_string(number));
        }
    }
}

void GlobalSettings::TakeLine(const std::string& line, const std::string& place) {
    const std::string key = KeyOf(line);
    const SettingKind* kind = FindKind(key);
    if (kind == nullptr) {
        Note(place + ": \"" + line + "\" is no setting; those are " + KnownNames());
    } else if (At(*kind).source == Source::kFile) {
        Note(place + ": \"" + key + "\" stands there twice");
    } else {
        At(*kind) = {ValueOf(line, key, kKeyFileLimitBytes).value_or(""), Source::kFile, place};
    }
}

// There need not be one.
std::string GlobalSettings::TextIn(const std::string& path) {
    try {
        return PlainFile(path).Text(kKeyFileLimitBytes);
    } catch (const Failure& failure) {
        if (failure.status != ExitStatus::kNotFound) {
            Note(failure.what());
        }
        return "";
    }
}

void GlobalSettings::Note(const std::string& problem) {
    if (problem_.empty()) {
        problem_ = problem;
    }
}

Setting& GlobalSettings::At(const SettingKind& kind) {
    return settings_.at(static_cast<std::size_t>(&kind - kSettingKinds.data()));
}

std::string PrecedenceText() {
    std::string variables;
    for (const SettingKind& kind : kSettingKinds) {
        variables += (variables.empty() ? "" : ", ") + std::string(kind.variable);
    }
    return "Each of them can also be set in the environment (" + variables +
           ") and in the file $XDG_CONFIG_HOME/camvora/camvoractl.conf, or "
           "~/.config/camvora/camvoractl.conf, with "
           "lines as \"timeout=30\" or \"quiet=yes\". The command line comes before the environment, that "
           "before "
           "the file. A host or a file of the token that was set farther away than the folder does not "
           "count.";
}

std::string SettingsFile() {
    const std::string base = Variable("XDG_CONFIG_HOME");
    const std::string home = Variable("HOME");
    if (base.empty() && home.empty()) {
        return "";
    }
    return (base.empty() ? home + "/.config" : base) + "/camvora/camvoractl.conf";
}

}  // namespace client
