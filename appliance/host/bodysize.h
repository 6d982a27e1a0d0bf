// Where the body of an HTTP request ends.
#pragma once

#include <httplib.h>

#include <cstdint>
#include <optional>

namespace host {

enum class BodyFraming {
    kSized,    // by the announced size; also where there is no body
    kChunked,  // the body tells itself
    kInvalid,  // the head contradicts itself, or cannot be understood
};

BodyFraming FramingOf(const httplib::Request& request);

// The announced size in bytes, 0 where none is.
std::uint64_t AnnouncedSize(const httplib::Request& request);

// True when a body follows the head, or may follow.
bool HasBody(const httplib::Request& request);

}  // namespace host
