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

// The columns that `text`, which must be printable, takes on a terminal: two for a wide character as of
// Chinese, none for one that combines with the one before.
std::size_t WidthOf(std::string_view text);

// `text`, which must be printable, in at most so many columns: one that is wider is cut and ends with an
// ellipsis.
std::string Shortened(std::string_view text, std::size_t columns);

// True when all of `text` is UTF-8 in its only valid form: no overlong sequence, no surrogate.
bool IsUtf8(std::string_view text);

}  // namespace client
