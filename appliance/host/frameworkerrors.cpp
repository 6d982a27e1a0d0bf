#include "host/frameworkerrors.h"

#include <cstddef>

namespace host {

namespace {

constexpr int kFirstCode = 1001;

struct ErrorEntry {
    int httpStatus;
    const char* text;
};

// docs/api.md has the same table.
constexpr ErrorEntry kErrors[] = {
    {404, "There is no such API"},
    {404, "The API has no such version"},
    {404, "The API has no such method"},
    {400, "The body is not valid JSON"},
    {400, "The body is not a JSON object"},
    {413, "The request is too large"},
    {415, "The body is of a type that is not accepted"},
    {503, "Too many requests are running"},
    {500, "The handler ended without an answer"},
    {500, "The handler crashed"},
    {500, "The handler failed with an exception"},
    {504, "The handler took too long and was ended"},
    {401, "The access token is missing or wrong"},
    {503, "Too many event streams are open"},
    {503, "The request server is away"},
    {404, "There is nothing at this path"},
    {405, "The path does not take this HTTP method"},
    {400, "The request is not valid"},
    {500, "The host failed"},
    {507, "There is not enough free space for the upload"},
    {500, "The upload could not be stored"},
    {403, "The pairing code is wrong or no longer valid"},
    {502, "The paired server does not answer"},
    {403, "The sign-in code is wrong or no longer valid"},
};

static_assert(sizeof(kErrors) / sizeof(kErrors[0]) ==
              static_cast<std::size_t>(FrameworkError::kWrongSignInCode) + 1);

}  // namespace

Reply ReplyFor(FrameworkError error, const std::string& detail) {
    const auto index = static_cast<std::size_t>(error);
    const ErrorEntry& entry = kErrors[index];
    Json::Value data(Json::objectValue);
    data["text"] = entry.text + (detail.empty() ? "." : ": " + detail);
    return ErrorReply(entry.httpStatus, kFirstCode + static_cast<int>(index), data);
}

}  // namespace host
