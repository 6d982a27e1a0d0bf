#include "client/services.h"

#include "client/appliance.h"
#include "client/failure.h"
#include "client/jsontext.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <limits>
#include <optional>
#include <system_error>

namespace client {
namespace {

std::string Lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char byte) { return static_cast<char>(std::tolower(byte)); });
    return text;
}

// The number of characters to insert, remove or replace (Levenshtein), row by row.
std::size_t EditDistance(const std::string& from, const std::string& to) {
    std::vector<std::size_t> row(to.size() + 1);
    for (std::size_t column = 0; column < row.size(); ++column) {
        row[column] = column;
    }
    for (std::size_t line = 1; line <= from.size(); ++line) {
        std::size_t diagonal = row[0];
        row[0] = line;
        for (std::size_t column = 1; column < row.size(); ++column) {
            const std::size_t replaced = diagonal + (from[line - 1] == to[column - 1] ? 0 : 1);
            diagonal = row[column];
            row[column] = std::min({replaced, row[column] + 1, row[column - 1] + 1});
        }
    }
    return row.back();
}

// A name that was begun but not finished is as near as one with a single slip.
std::size_t Distance(const std::string& typed, const std::string& name) {
    const bool isBeginning = !typed.empty() && name.compare(0, typed.size(), typed) == 0;
    return isBeginning ? 1 : EditDistance(typed, name);
}

std::vector<std::string> NearestNames(const std::vector<Service>& services, const std::string& typed) {
    std::size_t nearest = std::max<std::size_t>(2, typed.size() / 3);
    std::vector<std::string> names;
    for (const Service& service : services) {
        const std::size_t distance = Distance(Lower(typed), Lower(service.shortName));
        if (distance < nearest) {
            names.clear();
            nearest = distance;
        }
        if (distance == nearest) {
            names.push_back(service.shortName);
        }
    }
    return names;
}

std::string Alternatives(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names) {
        text += (text.empty() ? "\"" : " or \"") + name + "\"";
    }
    return text;
}

// Nothing when `text` is no number at all.
std::optional<int> ParseNumber(const std::string& text) {
    int number = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (stop != end || error == std::errc::invalid_argument) {
        return std::nullopt;
    }
    if (error == std::errc::result_out_of_range) {
        throw Failure(ExitStatus::kUsage, text + " is beyond the numbers a service can have");
    }
    return number;
}

Service FindByNumber(const std::vector<Service>& services, int number) {
    for (const Service& service : services) {
        if (service.number == number) {
            return service;
        }
    }
    throw Failure(ExitStatus::kNotFound,
                  "There is no service " + std::to_string(number) + ". \"camvoractl list\" shows all");
}

// Those of whom `member` of their info is true.
std::vector<Service> ServicesWith(const char* member, const Json::Value& listData) {
    Json::Value chosen;
    chosen["list"] = Json::Value(Json::arrayValue);
    for (const Json::Value& entry : EntriesIn(listData)) {
        if (Member(Member(entry, "info"), member) == Json::Value(true)) {
            chosen["list"].append(entry);
        }
    }
    return ServicesIn(chosen);
}

}  // namespace

Json::Value EntriesIn(const Json::Value& listData) {
    Json::Value list = Member(listData, "list");
    if (!list.isArray()) {
        throw Failure(ExitStatus::kFailed, "List failed: the answer holds no list");
    }
    return list;
}

std::vector<Service> ServicesIn(const Json::Value& listData) {
    std::vector<Service> services;
    for (const Json::Value& entry : EntriesIn(listData)) {
        const Json::Value number = Member(entry, "service");
        const Json::Value shortName = Member(Member(entry, "info"), "shortName");
        if (number.isInt() && shortName.isString()) {
            services.push_back(
                {number.asInt(), shortName.asString(), LeafText(Member(Member(entry, "info"), "name"))});
        }
    }
    return services;
}

std::vector<Service> RunningServicesIn(const Json::Value& listData) {
    return ServicesWith("blRunning", listData);
}

std::vector<Service> ServicesWithPackagesIn(const Json::Value& listData) {
    return ServicesWith("blHasPackages", listData);
}

Json::Value InfoOf(const Json::Value& listData, const Service& service) {
    for (const Json::Value& entry : EntriesIn(listData)) {
        if (Member(entry, "service") == Json::Value(service.number)) {
            return Member(entry, "info");
        }
    }
    return {};
}

std::string NamesOf(const std::vector<Service>& services) {
    std::string names;
    for (const Service& service : services) {
        names += (names.empty() ? "" : ", ") + service.name;
    }
    return names;
}

Service FindByName(const std::vector<Service>& services, const std::string& name) {
    for (const Service& service : services) {
        if (service.shortName == name) {
            return service;
        }
    }
    const std::vector<std::string> nearest = NearestNames(services, name);
    throw Failure(ExitStatus::kNotFound,
                  "There is no service \"" + name + "\". " +
                      (nearest.empty() ? "\"camvoractl list\" shows all"
                                       : "Did you mean " + Alternatives(nearest) + "?"));
}

Service ResolveListedService(const Appliance& appliance, const std::string& text) {
    const std::optional<int> number = ParseNumber(text);
    const std::vector<Service> services = ServicesIn(appliance.Call("List", Json::objectValue));
    return number ? FindByNumber(services, *number) : FindByName(services, text);
}

int ResolveService(const Appliance& appliance, const std::string& text) {
    const std::optional<int> number = ParseNumber(text);
    return number ? *number : ResolveListedService(appliance, text).number;
}

}  // namespace client
