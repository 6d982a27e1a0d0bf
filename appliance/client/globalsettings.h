// The options for all commands, and where each has its value from: the command line comes before the
// environment, that before the settings file.
#pragma once

#include "client/location.h"
#include "client/settingkinds.h"

#include <array>
#include <cstddef>
#include <optional>
#include <string>

namespace client {

struct GlobalOptions {
    LocationOptions location;
    std::optional<int> timeoutSeconds;  // of one request; the command's own where nothing is given
    bool json = false;                  // write for programs
    bool quiet = false;                 // write nothing beside the outcome
    std::string server;  // paired with the appliance, on which methods are called; empty for none
};

enum class Source { kDefault, kFile, kEnvironment, kCommandLine };

struct Setting {
    std::string value;
    Source source = Source::kDefault;
    std::string place;  // in words, as in "CAMVORA_DIR in the environment"
};

class GlobalSettings {
public:
    // Takes what the environment and the settings file say. What is wrong with them is told by InForce.
    GlobalSettings();

    // Takes what the command line says, which has been checked.
    void Set(const SettingKind& kind, const std::string& value);

    // The options as they are in force. A folder overrides a host, a file of the token or a server from
    // a lower source, too: they belong to another appliance.
    //   throws  Failure (kUsage) for what the environment or the file should not say
    GlobalOptions InForce() const;

    // What is in force; `name` is one of the table.
    const Setting& Find(const char* name) const;
    bool IsOn(const char* name) const;

private:
    void TakeFile(const std::string& path);
    void TakeLine(const std::string& line, const std::string& place);
    void TakeEnvironment();
    std::string TextIn(const std::string& path);
    void Note(const std::string& problem);
    void Check() const;
    Setting& At(const SettingKind& kind);
    std::string UnlessHidden(const char* name) const;

    std::array<Setting, kSettingCount> settings_;
    std::string problem_;  // of the file; empty for none
};

// How the sources rank, and what they are, in sentences for people.
std::string PrecedenceText();

// The settings file: "camvora/camvoractl.conf" below XDG_CONFIG_HOME, else below ".config" in the home
// folder; empty where there is neither.
std::string SettingsFile();

}  // namespace client
