// Whether bytes are text.
#pragma once

#include <string>

namespace host {

// True when `bytes` is UTF-8 in its shortest form, without surrogates and nothing above U+10FFFF.
bool IsUtf8(const std::string& bytes);

}  // namespace host
