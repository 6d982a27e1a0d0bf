#include "host/requestbody.h"

#include "host/bodysize.h"

#include <json/writer.h>
#include <strings.h>

#include <cstdint>
#include <map>
#include <string>

namespace host {

namespace {

constexpr std::size_t kFieldOverheadBytes = 256;  // what a field takes besides its name and text

using Fields = std::map<std::string, std::string>;

// The fields of a form as JSON text. Bytes that are no text stay as they are, to be refused with the rest.
std::string ToJsonText(const Fields& fields) {
    Json::Value object(Json::objectValue);
    for (const auto& [name, text] : fields) {
        object[name] = text;
    }
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    builder["emitUTF8"] = true;
    return Json::writeString(builder, object);
}

// Counts bytes up to a limit.
class ByteBudget {
public:
    explicit ByteBudget(std::size_t limitBytes) : left_(limitBytes) {}

    bool Spend(std::size_t sizeBytes) {
        isExceeded_ = isExceeded_ || sizeBytes > left_;
        left_ -= isExceeded_ ? 0 : sizeBytes;
        return !isExceeded_;
    }
    bool IsExceeded() const { return isExceeded_; }

private:
    std::size_t left_;
    bool isExceeded_ = false;
};

Reply ReplyForPartialBody(const ByteBudget& budget) {
    return budget.IsExceeded() ? ReplyFor(FrameworkError::kTooLarge)
                               : ReplyFor(FrameworkError::kBadRequest, "the body is incomplete or damaged");
}

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
    return isWhole ? std::nullopt : std::optional(ReplyForPartialBody(budget));
}

std::optional<Reply> ReadForm(const httplib::ContentReader& reader, std::size_t limitBytes,
                              std::string& body) {
    ByteBudget budget(limitBytes);
    Fields fields;
    std::string* text = nullptr;
    bool hasFile = false;
    const auto beginField = [&](const httplib::MultipartFormData& field) {
        hasFile = !field.filename.empty();
        text = &fields[field.name];
        text->clear();
        return !hasFile && budget.Spend(kFieldOverheadBytes + field.name.size());
    };
    const auto addToField = [&](const char* bytes, std::size_t sizeBytes) {
        text->append(bytes, sizeBytes);
        return budget.Spend(sizeBytes);
    };
    const bool isWhole = reader(beginField, addToField);
    if (hasFile) {
        return ReplyFor(FrameworkError::kUnsupportedMediaType, "file uploads are not accepted by this build");
    }
    body = ToJsonText(fields);
    return isWhole ? std::nullopt : std::optional(ReplyForPartialBody(budget));
}

bool IsOfType(const httplib::Request& request, const std::string& type) {
    return strncasecmp(request.get_header_value("Content-Type").c_str(), type.c_str(), type.size()) == 0;
}

}  // namespace

std::optional<Reply> ReadBody(const httplib::Request& from, const httplib::ContentReader& reader,
                              std::size_t limitBytes, Request& request) {
    if (!HasBody(from)) {
        return std::nullopt;
    }
    if (AnnouncedSize(from) > limitBytes) {
        return ReplyFor(FrameworkError::kTooLarge);
    }
    request.upload = from.is_multipart_form_data();
    if (request.upload) {
        return ReadForm(reader, limitBytes, request.body);
    }
    if (IsOfType(from, "multipart/")) {
        return ReplyFor(FrameworkError::kUnsupportedMediaType);
    }
    return ReadPlain(reader, limitBytes, request.body);
}

}  // namespace host
