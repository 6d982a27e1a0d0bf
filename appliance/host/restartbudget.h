// How often a process may be started again before that is given up.
#pragma once

#include <chrono>
#include <deque>

namespace host {

class RestartBudget {
public:
    // Takes note of one restart at `now`. Returns false when there were too many in a short time.
    bool Spend(std::chrono::steady_clock::time_point now);

private:
    std::deque<std::chrono::steady_clock::time_point> recent_;
};

}  // namespace host
