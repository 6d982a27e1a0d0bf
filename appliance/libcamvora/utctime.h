// Points in time as texts.
#pragma once

#include <string>

namespace camvora {

// The present time in UTC with milliseconds, as in "2026-03-01T12:00:00.123Z".
std::string UtcTimeText();

}  // namespace camvora
