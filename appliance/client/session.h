// What a command works with: the global options, the appliance, and the places to write to.
#pragma once

#include "client/appliance.h"
#include "client/location.h"

#include <json/value.h>

#include <optional>
#include <string>

namespace client {

class Table;

struct GlobalOptions {
    LocationOptions location;
    int timeoutSeconds = 60;  // of one request
    bool json = false;        // write for programs
};

class Session {
public:
    // The options are the caller's and may be filled until the first call.
    explicit Session(const GlobalOptions& options);

    // The appliance, found at the first call. Throws Failure as Locate does.
    Appliance& Host();

    // Writes the outcome to standard output: `table` for people, `data` for programs. Throws Failure
    // (kFailed) when it cannot be written. Call once, when the outcome is whole.
    void Print(const Json::Value& data, const Table& table) const;

    // Tells a person something beside the outcome, on standard error; programs are not told.
    void Say(const std::string& text) const;

private:
    const GlobalOptions& options_;
    std::optional<Appliance> appliance_;
};

}  // namespace client
