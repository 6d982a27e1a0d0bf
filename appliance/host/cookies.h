// The cookies of a request.
#pragma once

#include <map>
#include <string>

namespace host {

// Reads the value of a Cookie header, "name=value; name=value". Of equal names the first one counts; what is
// not of that form is passed over.
std::map<std::string, std::string> ParseCookies(const std::string& header);

}  // namespace host
