// What the framework answers when it is not the module that answers.
#pragma once

#include "host/reply.h"

#include <string>

namespace host {

// Ordered as the table in frameworkerrors.cpp; the first has the code 1001.
enum class FrameworkError {
    kNoSuchApi,
    kNoSuchVersion,
    kNoSuchMethod,
    kMalformedJson,
    kNotAnObject,
    kTooLarge,
    kUnsupportedMediaType,
    kTooBusy,
    kNoAnswer,
    kHandlerCrashed,
    kHandlerThrew,
    kTimedOut,
    kNotAuthorized,
    kTooManyStreams,
    kRequestServerAway,
    kNotFound,
    kWrongHttpMethod,
    kBadRequest,
    kHostFailed,
    kNoSpace,
    kUploadNotStored,
    kWrongPairingCode,
    kServerAway,
    kWrongSignInCode,
};

// The answer for `error`; its data is {"text": ...}, a sentence for people, with `detail` where given.
Reply ReplyFor(FrameworkError error, const std::string& detail = "");

}  // namespace host
