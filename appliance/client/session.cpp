#include "client/session.h"

#include "client/failure.h"
#include "client/jsontext.h"
#include "client/output.h"
#include "client/table.h"

#include <unistd.h>

#include <cstring>

namespace client {

Appliance& Session::Host() {
    if (!appliance_) {
        appliance_.emplace(FindHost());
    }
    return *appliance_;
}

Appliance Session::FindHost() const {
    return Appliance(HttpClient(FindLocation(), TimeLimit()), options_.server);
}

Location Session::FindLocation() const {
    return Locate(options_.location, ProgramDir());
}

std::string Session::Folder() const {
    return LocateFolder(options_.location, ProgramDir());
}

std::chrono::seconds Session::TimeLimit(std::chrono::seconds unlessGiven) const {
    return options_.timeoutSeconds ? std::chrono::seconds(*options_.timeoutSeconds) : unlessGiven;
}

void Session::Print(const Json::Value& data, const Table& table) const {
    const Terminal terminal = TerminalAt(STDOUT_FILENO);
    PrintText(data, table.Text(terminal));
    if (const std::size_t count = table.LeftOut(terminal); count > 0) {
        Say(std::to_string(count) + (count == 1 ? " column does" : " columns do") +
            " not fit; --json has all");
    }
}

void Session::PrintText(const Json::Value& data, const std::string& text) const {
    const int error = WriteWhole(STDOUT_FILENO, options_.json ? ToJson(data) + "\n" : text);
    if (error != 0) {
        throw Failure(ExitStatus::kFailed, std::string("Cannot write the outcome: ") + strerror(error));
    }
}

void Session::Say(const std::string& text) const {
    if (ShowsProgress()) {
        (void)WriteWhole(STDERR_FILENO, text + "\n");  // there is nowhere else to say it
    }
}

}  // namespace client
