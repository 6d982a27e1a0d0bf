// Writing to standard output and standard error.
#pragma once

#include <string_view>

namespace client {

// Writes all of `text`; an interrupt (SIGINT) that arrives meanwhile acts after the last byte.
//   descriptor  1, 2 or a file
//   returns     0, also when the reader has gone away (EPIPE), else the errno of the write that failed
[[nodiscard]] int WriteWhole(int descriptor, std::string_view text);

// True when `descriptor` is a pipe or socket that nobody reads any more.
bool IsReaderGone(int descriptor);

}  // namespace client
