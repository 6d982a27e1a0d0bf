// What the web API framework finds in this library.
#pragma once

#include "platform/webapi.h"

#include <cstdint>

// One row of the method table. The framework reads rows directly: the layout is fixed.
struct APIMethodEntry {
    const char* api;
    std::int32_t version;
    const char* method;
    void (*handler)(ORVA::APIRequest*, ORVA::APIResponse*);
};

static_assert(sizeof(void*) != 4 || sizeof(APIMethodEntry) == 16, "four 32-bit words a row");

// Serves one request: the answer is in `response` afterwards, or, for a method that is not in the
// table, nothing is. Both objects stay the framework's. Exceptions of a handler pass out to the caller.
// Called in the request process.
__attribute__((visibility("default"))) void Process(ORVA::APIRequest* request, ORVA::APIResponse* response);

extern "C" {

// The methods this library serves, one row each; a row of zeros ends the table.
__attribute__((visibility("default"))) extern const APIMethodEntry gTable[19];

// The first row of gTable; the same address on every call. Called by the framework when it has loaded
// the library.
__attribute__((visibility("default"))) const APIMethodEntry* GetAPITable();
}
