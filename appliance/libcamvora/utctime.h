// Points in time as texts.
#pragma once

#include <ctime>
#include <string>

namespace camvora {

// The present time in UTC with milliseconds, as in "2026-03-01T12:00:00.123Z".
std::string UtcTimeText();

// That point in time, counted from 1970, in the same form.
std::string UtcTimeText(const timespec& time);

}  // namespace camvora
