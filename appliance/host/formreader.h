// Takes a form apart as it arrives: texts into memory, files into the upload area.
#pragma once

#include "host/bytebudget.h"
#include "host/frameworkerrors.h"
#include "host/requestbody.h"
#include "host/uploads.h"

#include <httplib.h>

#include <map>
#include <optional>
#include <string>

namespace host {

class FormReader {
public:
    // `uploads` stays the caller's.
    FormReader(const BodyLimits& limits, Uploads& uploads);

    // Reads the form to its end. Returns the refusal when that fails.
    std::optional<Reply> Read(const httplib::ContentReader& reader);

    // The fields that are no files as JSON text; of equal names the last one counts.
    std::string FieldsText() const;

private:
    bool BeginField(const httplib::MultipartFormData& field);
    bool AddToField(const char* bytes, std::size_t sizeBytes);
    bool Take(std::optional<FrameworkError> failure);

    ByteBudget texts_;
    ByteBudget files_;
    Uploads& uploads_;
    std::map<std::string, std::string> fields_;
    std::string* text_ = nullptr;  // of the field that is being read; null when that is a file
    std::optional<FrameworkError> failure_;
};

}  // namespace host
