#include "host/callpath.h"

#include <algorithm>
#include <vector>

namespace host {

namespace {

std::vector<std::string> Split(const std::string& path) {
    std::vector<std::string> pieces;
    std::size_t begin = 0;
    for (std::size_t end = 0; (end = path.find('/', begin)) != std::string::npos; begin = end + 1) {
        pieces.push_back(path.substr(begin, end - begin));
    }
    pieces.push_back(path.substr(begin));
    return pieces;
}

}  // namespace

std::variant<std::int32_t, FrameworkError> FindMethod(const Module& module, const std::string& path) {
    const std::vector<std::string> pieces = Split(path);
    if (pieces.size() != 5 || !pieces[0].empty() || pieces[1] != "api") {
        return FrameworkError::kNotFound;
    }
    FrameworkError problem = FrameworkError::kNoSuchApi;
    for (std::size_t i = 0; i < module.Rows().size(); ++i) {
        const MethodRow& row = module.Rows()[i];
        if (pieces[2] != row.api) {
            continue;
        }
        if (pieces[3] != "v" + std::to_string(row.version)) {
            problem = std::max(problem, FrameworkError::kNoSuchVersion);
            continue;
        }
        if (pieces[4] == row.method) {
            return static_cast<std::int32_t>(i);
        }
        problem = FrameworkError::kNoSuchMethod;
    }
    return problem;
}

}  // namespace host
