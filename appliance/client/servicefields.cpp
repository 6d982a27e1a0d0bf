#include "client/servicefields.h"

#include "client/jsontext.h"
#include "client/plainwords.h"

namespace client {
namespace {

struct Field {
    const char* label;
    const char* member;
    std::string (*words)(const Json::Value& value);
};

constexpr Field kFields[] = {
    {"Name", "name", LeafText},
    {"Short name", "shortName", LeafText},
    {"Number", "service", LeafText},
    {"Running", "blRunning", YesNo},
    {"Status", "statusName", LeafText},
    {"Version", "version", LeafText},
    {"Packages", "blHasPackages", YesNo},
    {"Factory copy", "blFactoryCopy", YesNo},
    {"Automatic update", "blAutoUpdate", OnOff},
};

}  // namespace

std::vector<std::string> FieldLabels() {
    std::vector<std::string> labels;
    for (const Field& field : kFields) {
        labels.emplace_back(field.label);
    }
    return labels;
}

std::vector<std::string> FieldWords(const Json::Value& info) {
    std::vector<std::string> words;
    for (const Field& field : kFields) {
        words.push_back(field.words(Member(info, field.member)));
    }
    return words;
}

Colour StatusColour(const Json::Value& info) {
    constexpr int kStarted = 1;
    constexpr int kInProgress = 4;
    const Json::Value status = Member(info, "status");
    if (status == Json::Value(kInProgress)) {
        return Colour::kYellow;
    }
    if (Member(info, "blRunning") == Json::Value(true)) {
        return Colour::kGreen;
    }
    return status == Json::Value(kStarted) ? Colour::kRed : Colour::kNone;
}

}  // namespace client
