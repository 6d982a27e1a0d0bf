#include "host/requestbody.h"

#include "host/bodysize.h"
#include "host/bytebudget.h"
#include "host/formreader.h"
#include "host/uploads.h"

#include <strings.h>

#include <string>

namespace host {

namespace {

std::optional<Reply> ReadPlain(const httplib::ContentReader& reader, std::size_t limitBytes,
                               std::string& body) {
    ByteBudget budget(limitBytes);
    const bool isWhole = reader([&](const char* bytes, std::size_t sizeBytes) {
        if (!budget.Spend(sizeBytes)) {
            return false;
        }
        body.append(bytes, sizeBytes);
        return true;
    });
    if (budget.IsExceeded()) {
        return ReplyFor(FrameworkError::kTooLarge);
    }
    return isWhole ? std::nullopt : std::optional(ReplyForPartialBody());
}

std::optional<Reply> ReadForm(const httplib::ContentReader& reader, const BodyLimits& limits,
                              Uploads& uploads, Request& request) {
    FormReader form(limits, uploads);
    if (auto refusal = form.Read(reader)) {
        return refusal;
    }
    request.body = form.FieldsText();
    request.files = uploads.ToJsonText();
    return std::nullopt;
}

bool IsOfType(const httplib::Request& request, const std::string& type) {
    return strncasecmp(request.get_header_value("Content-Type").c_str(), type.c_str(), type.size()) == 0;
}

}  // namespace

std::size_t BodyLimits::TotalBytes(const httplib::Request& request) const {
    return request.is_multipart_form_data() ? textBytes + fileBytes : textBytes;
}

std::optional<Reply> ReadBody(const httplib::Request& from, const httplib::ContentReader& reader,
                              const BodyLimits& limits, Uploads& uploads, Request& request) {
    request.upload = HasBody(from) && from.is_multipart_form_data();
    if (!request.upload) {
        return ReadTextBody(from, reader, limits.textBytes, request.body);
    }
    if (AnnouncedSize(from) > limits.TotalBytes(from)) {
        return ReplyFor(FrameworkError::kTooLarge);
    }
    return ReadForm(reader, limits, uploads, request);
}

std::optional<Reply> ReadTextBody(const httplib::Request& from, const httplib::ContentReader& reader,
                                  std::size_t limitBytes, std::string& body) {
    if (!HasBody(from)) {
        return std::nullopt;
    }
    if (AnnouncedSize(from) > limitBytes) {
        return ReplyFor(FrameworkError::kTooLarge);
    }
    if (IsOfType(from, "multipart/")) {
        return ReplyFor(FrameworkError::kUnsupportedMediaType);
    }
    return ReadPlain(reader, limitBytes, body);
}

Reply ReplyForPartialBody() {
    return ReplyFor(FrameworkError::kBadRequest, "the body is incomplete or damaged");
}

}  // namespace host
