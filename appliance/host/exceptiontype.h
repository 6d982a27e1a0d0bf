// The types of exceptions, for the log: what an exception says may hold parameters of a request.
#pragma once

#include <exception>
#include <string>

namespace host {

// The name of the type as it stands in the source, with its namespaces; "unknown" for what no C++ code threw.
std::string TypeName(const std::exception_ptr& exception);

}  // namespace host
