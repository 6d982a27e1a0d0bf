// Reads the body of an HTTP request, JSON or form, within limits.
#pragma once

#include "host/frameworkerrors.h"
#include "host/request.h"

#include <httplib.h>

#include <optional>

namespace host {

// Reads the body into `request.body` and `request.upload`; the fields of a form become text parameters.
// Returns the refusal when that fails: the body has then not been read to its end.
std::optional<Reply> ReadBody(const httplib::Request& from, const httplib::ContentReader& reader,
                              std::size_t limitBytes, Request& request);

}  // namespace host
