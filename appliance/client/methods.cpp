// camvoractl methods [METHOD]
#include "client/command.h"
#include "client/commands.h"
#include "client/failure.h"
#include "client/jsontext.h"
#include "client/plainwords.h"
#include "client/session.h"
#include "client/table.h"

#include "interface/methodtable.h"

#include <memory>

namespace client {
namespace {

// A method that the appliance has.
struct ServedMethod {
    Json::Value api;
    Json::Value version;
    std::string name;
    const interface::Method* description;  // null where this program does not know it
};

bool IsDescribed(const Json::Value& api) {
    return Member(api, "api") == interface::kApi && Member(api, "version") == interface::kVersion;
}

std::vector<ServedMethod> ServedMethods(const Appliance& host) {
    const Json::Value apis = Member(host.Methods(), "apis");
    if (!apis.isArray()) {
        throw Failure(ExitStatus::kFailed, "The list of methods failed: the answer holds no APIs");
    }
    std::vector<ServedMethod> methods;
    for (const Json::Value& api : apis) {
        for (const Json::Value& method : Member(api, "methods")) {
            const std::string name = LeafText(method);
            methods.push_back({Member(api, "api"), Member(api, "version"), name,
                               IsDescribed(api) ? interface::FindMethod(name) : nullptr});
        }
    }
    return methods;
}

// As it is typed for "call"; in brackets where it may be left out.
std::string ParameterWords(const interface::Field& field) {
    return field.byDefault == nullptr ? std::string(field.name) + "=" : "[" + std::string(field.name) + "=]";
}

std::string ParameterWords(const ServedMethod& method) {
    std::string words;
    for (const interface::Field& field : method.description->parameters) {
        words += (words.empty() ? "" : " ") + ParameterWords(field);
    }
    return words;
}

Json::Value Document(const interface::Field& field, bool isParameter) {
    Json::Value document;
    document["name"] = field.name;
    document["type"] = WordFor(field.type);
    document["meaning"] = field.meaning;
    Json::Value byDefault;
    if (isParameter) {
        document["required"] = field.byDefault == nullptr;
    }
    if (field.byDefault != nullptr && ParseJson(field.byDefault, byDefault)) {
        document["default"] = byDefault;
    }
    return document;
}

Json::Value Documents(const std::vector<interface::Field>& fields, bool isParameter) {
    Json::Value documents(Json::arrayValue);
    for (const interface::Field& field : fields) {
        documents.append(Document(field, isParameter));
    }
    return documents;
}

bool DoesChange(const ServedMethod& method) {
    return method.description->effect != interface::Effect::kNone;
}

Json::Value Document(const ServedMethod& method) {
    Json::Value document;
    document["api"] = method.api;
    document["version"] = method.version;
    document["method"] = method.name;
    if (method.description != nullptr) {
        document["summary"] = method.description->summary;
        document["changes"] = DoesChange(method);
        document["parameters"] = Documents(method.description->parameters, true);
        document["answers"] = method.description->answers;
        document["members"] = Documents(method.description->members, false);
    }
    return document;
}

void ShowAll(Session& session) {
    Json::Value data;
    data["methods"] = Json::Value(Json::arrayValue);
    Table table({"Method", "What it does", "Parameters"});
    for (const ServedMethod& method : ServedMethods(session.Host())) {
        data["methods"].append(Document(method));
        const bool isKnown = method.description != nullptr;
        table.AddRow(
            {method.name, isKnown ? method.description->summary : "", isKnown ? ParameterWords(method) : ""});
    }
    session.Print(data, table);
}

ServedMethod FindServed(const Appliance& host, const std::string& name) {
    for (const ServedMethod& method : ServedMethods(host)) {
        if (method.name == name) {
            return method;
        }
    }
    throw Failure(ExitStatus::kNotFound,
                  "The appliance has no method \"" + name + "\". \"camvoractl methods\" shows all");
}

void AddFields(Table& table, const char* label, const std::vector<interface::Field>& fields) {
    for (const interface::Field& field : fields) {
        table.AddRow(
            {label, std::string(field.name) + ", " + WordFor(field.type) + ": " + field.meaning +
                        (field.byDefault == nullptr ? "" : std::string(". Default: ") + field.byDefault)});
    }
}

Table DescriptionTable(const ServedMethod& method) {
    Table table;
    table.AddRow({"Method", method.name});
    table.AddRow({"API", LeafText(method.api) + ", version " + LeafText(method.version)});
    if (method.description == nullptr) {
        table.AddRow({"Description", "this program knows none"});
        return table;
    }
    table.AddRow({"What it does", method.description->summary});
    table.AddRow({"Changes something", YesNo(DoesChange(method))});
    AddFields(table, "Parameter", method.description->parameters);
    table.AddRow({"Answers", method.description->answers});
    AddFields(table, "Member", method.description->members);
    return table;
}

void ShowOne(Session& session, const std::string& name) {
    const ServedMethod method = FindServed(session.Host(), name);
    session.Print(Document(method), DescriptionTable(method));
}

}  // namespace

void AddMethods(Command program, Session& session) {
    Command command = program.Add("methods", "Show the web API's methods, or all about one");
    command.Explain(
        "Of one method, its parameters and its answer are shown. Parameters in brackets may be left out.");
    const auto name = std::make_shared<std::string>();
    command.OptionalArgument("METHOD", *name, "Name of the method");
    command.Run([&session, name] { name->empty() ? ShowAll(session) : ShowOne(session, *name); });
}

}  // namespace client
