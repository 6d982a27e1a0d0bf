// Where a pid file is written before it gets its name.
#pragma once

#include <string>

namespace camvora {

// The name beside `pidFile` under which it is written; left behind by a process that is killed there.
inline std::string FreshPidFile(const std::string& pidFile) {
    return pidFile + ".new";
}

}  // namespace camvora
