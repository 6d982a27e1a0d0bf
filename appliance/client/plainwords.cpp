#include "client/plainwords.h"

#include "client/jsontext.h"

namespace client {
namespace {

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

}  // namespace client
