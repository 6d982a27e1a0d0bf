// What a command works with: the options for all commands, the appliance, and the places to write to.
#pragma once

#include "client/appliance.h"
#include "client/exitstatus.h"
#include "client/globalsettings.h"
#include "client/location.h"

#include <json/value.h>

#include <chrono>
#include <optional>
#include <string>

namespace client {

class Table;

class Session {
public:
    // The settings are the caller's, and live as long.
    explicit Session(const GlobalSettings& settings) : settings_(settings) {}

    // Puts the settings in force, once they are complete. Throws Failure as they do.
    void TakeSettings() { options_ = settings_.InForce(); }

    const GlobalSettings& Settings() const { return settings_; }

    // The appliance, found at the first call. Throws Failure as Locate does.
    Appliance& Host();

    // The appliance, found anew: its address changes when it is started again. Throws as Host does.
    Appliance FindHost() const;

    // The appliance's folder; empty when nothing says where it is. Throws Failure as LocateFolder does.
    std::string Folder() const;

    // Where the appliance is. Throws as Host does.
    Location FindLocation() const;

    // The longest time to wait for a reply or for the outcome of an action.
    //   unlessGiven  where the user has given none
    std::chrono::seconds TimeLimit(std::chrono::seconds unlessGiven = std::chrono::seconds(60)) const;

    // True when everything is written for programs.
    bool IsForPrograms() const { return options_.json; }

    // True when a person is to see what is going on.
    bool ShowsProgress() const { return !options_.json && !options_.quiet; }

    // Writes the outcome to standard output: `table` for people, who are told when columns do
    // not fit, `data` for programs. Throws Failure (kFailed) when it cannot be written. Call once, when the
    // outcome is whole; where there is no end of it, once for each piece.
    void Print(const Json::Value& data, const Table& table) const;

    // The same for text that is no table: lines that are written as they are.
    void PrintText(const Json::Value& data, const std::string& text) const;

    // Lets the program end with another status than kDone when its command is done.
    void EndWith(ExitStatus status) { endStatus_ = status; }
    ExitStatus EndStatus() const { return endStatus_; }

    // Tells a person something beside the outcome, on standard error; programs, and who wants it quiet, are
    // not told.
    void Say(const std::string& text) const;

private:
    const GlobalSettings& settings_;
    GlobalOptions options_;
    std::optional<Appliance> appliance_;
    ExitStatus endStatus_ = ExitStatus::kDone;
};

}  // namespace client
