// The table of methods as an OpenAPI document, for programs that make clients or show the API.
#pragma once

#include <json/value.h>

namespace interface {

// An OpenAPI 3.1 document: a path for each method, and the envelopes of answers and errors.
Json::Value OpenApiDocument();

}  // namespace interface
