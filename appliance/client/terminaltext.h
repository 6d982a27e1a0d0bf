// Text of unknown origin made fit for a terminal.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace client {

// `text` with everything that would act on a terminal instead of being shown written as an escape: control
// characters (C0, DEL and C1), marks that turn the direction of writing, separators of lines, and bytes
// that are not UTF-8. The result is one line of valid UTF-8.
std::string Printable(std::string_view text);

// The number of code points in `text`, which must be valid UTF-8.
std::size_t WidthOf(std::string_view text);

// True when all of `text` is UTF-8 in its only valid form: no overlong sequence, no surrogate.
bool IsUtf8(std::string_view text);

}  // namespace client
