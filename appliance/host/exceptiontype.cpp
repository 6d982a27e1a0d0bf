#include "host/exceptiontype.h"

#include <cxxabi.h>

#include <cstdlib>
#include <memory>
#include <typeinfo>

namespace host {

std::string TypeName(const std::exception_ptr& exception) {
    if (exception == nullptr) {
        return "unknown";
    }
    const std::type_info* type = exception.__cxa_exception_type();
    int status = 0;
    const std::unique_ptr<char, decltype(&std::free)> name(
        abi::__cxa_demangle(type->name(), nullptr, nullptr, &status), &std::free);
    return name == nullptr ? type->name() : name.get();
}

}  // namespace host
