// Reads the body of an HTTP request, JSON or form, within limits.
#pragma once

#include "host/frameworkerrors.h"
#include "host/request.h"

#include <httplib.h>

#include <cstddef>
#include <optional>
#include <string>

namespace host {

class Uploads;

struct BodyLimits {
    std::size_t textBytes;  // of a body that is no form, or of a form's fields that are no files
    std::size_t fileBytes;  // of a form's files together

    // Of the whole body of this request.
    std::size_t TotalBytes(const httplib::Request& request) const;
};

// Reads the body into `request.body`, `request.upload` and `request.files`; the fields of a form become text
// parameters, and its files go to `uploads`. Returns the refusal when that fails: the body has then not been
// read to its end.
std::optional<Reply> ReadBody(const httplib::Request& from, const httplib::ContentReader& reader,
                              const BodyLimits& limits, Uploads& uploads, Request& request);

// Reads a body that is no form into `body`; a form is refused. Otherwise as ReadBody.
std::optional<Reply> ReadTextBody(const httplib::Request& from, const httplib::ContentReader& reader,
                                  std::size_t limitBytes, std::string& body);

// The refusal of a body that ends before its time.
Reply ReplyForPartialBody();

}  // namespace host
