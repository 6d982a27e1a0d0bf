#include "client/globalsettings.h"

#include "client/failure.h"
#include "client/keyvalue.h"
#include "client/plainfile.h"

#include <cstdlib>
#include <sstream>

namespace client {
namespace {

std::string KnownNames() {
    std::string names;
    for (const SettingKind& kind : kSettingKinds) {
        names += (names.empty() ? "" : ", ") + std::string(kind.name);
    }
    return names;
}

const char* Variable(const char* name) {
    const char* value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe): nobody changes the environment
    return value == nullptr ? "" : value;
}

}  // namespace

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
    options.server = UnlessHidden("server");
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
    return settings_.at(static_cast<std::size_t>(FindKind(name) - kSettingKinds.data()));
}

bool GlobalSettings::IsOn(const char* name) const {
    return IsOnWord(Find(name).value);
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
    return "All but --version and --help can also be set in the environment (" + variables +
           ") and in the file $XDG_CONFIG_HOME/camvora/camvoractl.conf, or "
           "~/.config/camvora/camvoractl.conf, "
           "with lines such as \"timeout=30\" or \"quiet=yes\". The command line overrides the environment, "
           "and the environment the file; an empty variable counts as none. A folder also overrides the "
           "host, token file and server of the "
           "sources below its own.";
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
