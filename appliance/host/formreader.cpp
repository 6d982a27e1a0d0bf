#include "host/formreader.h"

#include "host/jsontext.h"

namespace host {

namespace {

constexpr std::size_t kFieldOverheadBytes = 256;  // what a field takes besides its names and text

}  // namespace

FormReader::FormReader(const BodyLimits& limits, Uploads& uploads)
    : texts_(limits.textBytes), files_(limits.fileBytes), uploads_(uploads) {}

std::optional<Reply> FormReader::Read(const httplib::ContentReader& reader) {
    const bool isWhole =
        reader([this](const auto& field) { return BeginField(field); },
               [this](const char* bytes, std::size_t sizeBytes) { return AddToField(bytes, sizeBytes); });
    if (texts_.IsExceeded() || files_.IsExceeded()) {
        return ReplyFor(FrameworkError::kTooLarge);
    }
    if (failure_) {
        return ReplyFor(*failure_);
    }
    if (!isWhole) {
        return ReplyForPartialBody();
    }
    return Take(uploads_.Finish()) ? std::nullopt : std::optional(ReplyFor(*failure_));
}

std::string FormReader::FieldsText() const {
    Json::Value object(Json::objectValue);
    for (const auto& [name, text] : fields_) {
        object[name] = text;
    }
    return ToRawJsonText(object);
}

bool FormReader::BeginField(const httplib::MultipartFormData& field) {
    if (!texts_.Spend(kFieldOverheadBytes + field.name.size() + field.filename.size())) {
        return false;
    }
    if (!field.filename.empty()) {
        text_ = nullptr;
        return Take(uploads_.Begin(field.name, field.filename));
    }
    text_ = &fields_[field.name];
    text_->clear();
    return true;
}

bool FormReader::AddToField(const char* bytes, std::size_t sizeBytes) {
    if (text_ == nullptr) {
        return files_.Spend(sizeBytes) && Take(uploads_.Append(bytes, sizeBytes));
    }
    text_->append(bytes, sizeBytes);
    return texts_.Spend(sizeBytes);
}

// Returns true when there is no failure.
bool FormReader::Take(std::optional<FrameworkError> failure) {
    failure_ = failure;
    return !failure;
}

}  // namespace host
