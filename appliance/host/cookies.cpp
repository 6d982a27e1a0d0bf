#include "host/cookies.h"

#include <sstream>

namespace host {

namespace {

std::string Trim(const std::string& text) {
    const std::size_t first = text.find_first_not_of(" \t");
    if (first == std::string::npos) {
        return "";
    }
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

}  // namespace

std::map<std::string, std::string> ParseCookies(const std::string& header) {
    std::map<std::string, std::string> cookies;
    std::istringstream pairs(header);
    for (std::string pair; std::getline(pairs, pair, ';');) {
        const std::size_t equals = pair.find('=');
        if (equals != std::string::npos) {
            cookies.emplace(Trim(pair.substr(0, equals)), Trim(pair.substr(equals + 1)));
        }
    }
    return cookies;
}

}  // namespace host
