#include "client/plainwords.h"

#include "client/jsontext.h"

namespace client {
namespace {

struct NumberWord {
    int number;
    const char* word;
};

constexpr NumberWord kStatusWords[] = {
    {0, "stopped"},
    {1, "started"},
    {4, "in progress"},
};

std::string BoolWord(const Json::Value& value, const char* whenTrue, const char* whenFalse) {
    if (!value.isBool()) {
        return LeafText(value);
    }
    return value.asBool() ? whenTrue : whenFalse;
}

}  // namespace

std::string YesNo(const Json::Value& value) {
    return BoolWord(value, "yes", "no");
}

std::string OnOff(const Json::Value& value) {
    return BoolWord(value, "on", "off");
}

std::string StatusWord(const Json::Value& value) {
    for (const NumberWord& row : kStatusWords) {
        if (value == Json::Value(row.number)) {
            return row.word;
        }
    }
    return LeafText(value);
}

}  // namespace client
