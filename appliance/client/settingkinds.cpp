#include "client/settingkinds.h"

#include "client/location.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <iterator>
#include <system_error>

namespace client {
namespace {

constexpr int kLongestTimeoutSeconds = 24 * 60 * 60;

constexpr const char* kOnWords[] = {"yes", "on", "true", "1"};
constexpr const char* kOffWords[] = {"no", "off", "false", "0"};

template <std::size_t Count>
bool IsAmong(const std::string& value, const char* const (&words)[Count]) {
    return std::any_of(std::begin(words), std::end(words),
                       [&value](const char* word) { return value == word; });
}

std::string ProblemOfFlag(const std::string& value) {
    return IsAmong(value, kOnWords) || IsAmong(value, kOffWords)
               ? ""
               : "\"" + value + "\" is neither \"yes\" nor \"no\"";
}

std::string ProblemOfText(const std::string& /*value*/) {
    return "";
}

std::string ProblemOfTimeout(const std::string& value) {
    int seconds = 0;
    const char* end = value.data() + value.size();
    const auto [stop, error] = std::from_chars(value.data(), end, seconds);
    const bool isGood =
        stop == end && error == std::errc() && seconds >= 1 && seconds <= kLongestTimeoutSeconds;
    return isGood ? ""
                  : "\"" + value + "\" is no number of seconds from 1 to " +
                        std::to_string(kLongestTimeoutSeconds);
}

// The name becomes a part of the address.
std::string ProblemOfServer(const std::string& value) {
    const bool isName = std::all_of(value.begin(), value.end(), [](unsigned char c) {
        return std::isalnum(c) != 0 || c == '.' || c == '_' || c == '-';
    });
    return isName && !value.empty() ? "" : "\"" + value + "\" cannot be the name of a server";
}

}  // namespace

// In the order of the help.
const std::array<SettingKind, kSettingCount> kSettingKinds = {{
    {"host", "CAMVORA_HOST", "http://HOST:PORT", "Address of the appliance, instead of the folder's",
     AddressProblem},
    {"dir", "CAMVORA_DIR", "DIR", "The appliance's folder. Default: the folder of this program",
     ProblemOfText},
    {"token-file", "CAMVORA_TOKEN_FILE", "FILE", "File that holds the token, instead of the folder's",
     ProblemOfText},
    {"server", "CAMVORA_SERVER", "NAME",
     "Call methods on this recording server, which is paired with the appliance", ProblemOfServer},
    {"timeout", "CAMVORA_TIMEOUT", "SECONDS",
     "Longest time to wait for a reply or an outcome. Default: 60, and longer where the work takes longer",
     ProblemOfTimeout},
    {"json", "CAMVORA_JSON", "", "Write JSON, errors too, to standard output", ProblemOfFlag},
    {"quiet", "CAMVORA_QUIET", "", "Write no progress and no remarks, only the outcome and errors",
     ProblemOfFlag},
}};

const SettingKind* FindKind(const std::string& name) {
    const auto* found = std::find_if(kSettingKinds.begin(), kSettingKinds.end(),
                                     [&name](const SettingKind& kind) { return name == kind.name; });
    return found == kSettingKinds.end() ? nullptr : found;
}

bool IsOnWord(const std::string& value) {
    return IsAmong(value, kOnWords);
}

}  // namespace client
