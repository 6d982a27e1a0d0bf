#include "client/refusal.h"

#include "client/jsontext.h"

namespace client {
namespace {

struct Reason {
    const char* section;
    const char* key;
    const char* words;  // "%1" to "%3" stand for the parameters
};

constexpr Reason kReasons[] = {
    {"localdisplay", "invalid_file", "it is no valid package for this service"},
    {"device_pack", "plat_not_support", "it is not for the platform of this appliance, which is %1"},
    {"device_pack", "cv_ver_too_old", "it needs Camvora %1 or newer"},
    {"addons", "forbid_downgrade", "%1 has to be %2 or newer, and this is %3"},
    {"device_pack", "sel_file", "no file arrived"},
};

std::string Param(const Json::Value& errInfo, char number) {
    const std::string name = std::string("param") + number;
    return LeafText(Member(errInfo, name.c_str()));
}

// A parameter may hold any text, "%1" included.
std::string Filled(const std::string& words, const Json::Value& errInfo) {
    std::string filled;
    for (std::size_t at = 0; at < words.size(); ++at) {
        if (words[at] == '%') {
            filled += Param(errInfo, words[++at]);
        } else {
            filled += words[at];
        }
    }
    return filled;
}

// Empty for an unknown one.
std::string WordsFor(const Json::Value& errInfo) {
    for (const Reason& reason : kReasons) {
        if (Member(errInfo, "sec") == reason.section && Member(errInfo, "key") == reason.key) {
            return Filled(reason.words, errInfo);
        }
    }
    return "";
}

}  // namespace

Failure Refusal(Failure failure, const std::string& file, bool isForPrograms) {
    const Json::Value errInfo = Member(failure.data, "errinfo");
    if (!errInfo.isObject()) {
        return failure;
    }
    const std::string words = WordsFor(errInfo);
    const std::string given = LeafText(Member(errInfo, "sec")) + "/" + LeafText(Member(errInfo, "key"));
    Failure refusal(ExitStatus::kRefused,
                    "The appliance does not take " + file + ": " + (words.empty() ? given : words));
    refusal.code = failure.code;
    refusal.requestId = failure.requestId;
    refusal.log = failure.log;
    if (words.empty() || isForPrograms) {
        refusal.data = failure.data;
    }
    return refusal;
}

}  // namespace client
