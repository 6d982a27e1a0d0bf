// The lock by which others see that a daemon runs, whatever became of its pid file.
#pragma once

#include <string>

namespace camvora {

// True while some process, this one included, holds a lock on the file at `path`.
bool IsLockHeld(const std::string& path);

}  // namespace camvora
