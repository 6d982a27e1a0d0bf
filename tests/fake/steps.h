// The lines of a journal that a test expects, put together from parts.
#pragma once

#include <string>
#include <vector>

namespace fake {

using Steps = std::vector<std::string>;

inline Steps operator+(Steps first, const Steps& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

}  // namespace fake
