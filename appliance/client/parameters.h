// The parameters of a call as they are typed: name=value.
#pragma once

#include <json/value.h>

#include <string>
#include <vector>

namespace client {

// Makes the object of parameters. A value that is JSON counts as JSON, any other as text.
//   throws  Failure (kUsage) for a word without "=" or name, a name given twice, or bytes that are not UTF-8
Json::Value ParseParameters(const std::vector<std::string>& words);

}  // namespace client
