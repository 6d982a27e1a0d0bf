// A web API module: the shared library and the table of the methods it serves.
#pragma once

#include "platform/webapi.h"

#include <cstdint>
#include <string>
#include <vector>

namespace host {

// One row of a module's table, as the module lays it out.
struct MethodRow {
    const char* api;
    std::int32_t version;
    const char* method;
    void (*handler)(ORVA::APIRequest*, ORVA::APIResponse*);
};

class Module {
public:
    // Loads the library, which stays loaded, and reads its table up to the row of zeros.
    // Throws std::runtime_error when either cannot be done or the table makes no sense.
    explicit Module(const std::string& path);

    // A module of these rows, which stay the caller's.
    const std::vector<MethodRow>& Rows() const { return rows_; }

private:
    std::vector<MethodRow> rows_;
};

}  // namespace host
