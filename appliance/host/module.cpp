#include "host/module.h"

#include <dlfcn.h>

#include <stdexcept>

namespace host {

namespace {

constexpr std::size_t kRowLimit = 1000;  // a table without an end is damaged

using GetTable = const MethodRow* (*)();

GetTable LoadTableFunction(const std::string& path) {
    void* library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) {
        throw std::runtime_error(std::string("cannot load the module: ") + dlerror());
    }
    void* symbol = dlsym(library, "GetAPITable");
    if (symbol == nullptr) {
        throw std::runtime_error(path + " is no web API module: it has no GetAPITable");
    }
    return reinterpret_cast<GetTable>(symbol);
}

bool IsEnd(const MethodRow& row) {
    return row.api == nullptr && row.version == 0 && row.method == nullptr && row.handler == nullptr;
}

bool IsComplete(const MethodRow& row) {
    return row.api != nullptr && row.method != nullptr && row.handler != nullptr;
}

}  // namespace

Module::Module(const std::string& path) {
    const MethodRow* row = LoadTableFunction(path)();
    for (; row != nullptr && !IsEnd(*row); ++row) {
        if (!IsComplete(*row) || rows_.size() == kRowLimit) {
            throw std::runtime_error(path + ": row " + std::to_string(rows_.size()) +
                                     " of its table is damaged");
        }
        rows_.push_back(*row);
    }
    if (rows_.empty()) {
        throw std::runtime_error(path + " serves no method");
    }
}

}  // namespace host
