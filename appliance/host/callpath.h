// The paths under which a module's methods are called: /api/<api>/v<version>/<method>.
#pragma once

#include "host/frameworkerrors.h"
#include "host/module.h"

#include <cstdint>
#include <string>
#include <variant>

namespace host {

// The row of the method that `path` names, or why there is none; kNotFound when the path is not of that form.
std::variant<std::int32_t, FrameworkError> FindMethod(const Module& module, const std::string& path);

}  // namespace host
