#include "fake/script.h"

#include "fake/json.h"

#include <deque>
#include <map>

namespace fake {
namespace {

std::map<std::string, std::deque<Json::Value>> once;
std::map<std::string, Json::Value> always;

}  // namespace

void Answer(const std::string& function, const Json::Value& answer) {
    always[function] = answer;
}

void AnswerEach(const std::string& answers) {
    const Json::Value parsed = ParseJson(answers);
    for (const std::string& function : parsed.getMemberNames()) {
        Answer(function, parsed[function]);
    }
}

void AnswerOnce(const std::string& function, const Json::Value& answer) {
    once[function].push_back(answer);
}

Json::Value NextAnswer(const std::string& function, const Json::Value& otherwise) {
    std::deque<Json::Value>& queue = once[function];
    if (!queue.empty()) {
        Json::Value answer = queue.front();
        queue.pop_front();
        return answer;
    }
    const auto found = always.find(function);
    return found == always.end() ? otherwise : found->second;
}

void ClearScript() {
    once.clear();
    always.clear();
}

}  // namespace fake
