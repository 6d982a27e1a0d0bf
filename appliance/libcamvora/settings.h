// Boolean settings.
#pragma once

#include "libcamvora/state.h"

#include <string>

namespace camvora {

// Whether this server is a CMS host.
inline constexpr char kCmsHostSetting[] = "cms_host";

// The boolean setting `key` in `state`; `defaultValue` when it is absent or no boolean.
bool IsSettingEnabled(const State& state, const std::string& key, bool defaultValue);

}  // namespace camvora
