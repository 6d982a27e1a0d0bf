#include "client/eventparser.h"

#include <utility>

namespace client {
namespace {

constexpr std::size_t kEventLimitBytes = 16U << 20U;

// The value of a field "name: value"; the one blank belongs to the form.
std::string_view ValueOf(std::string_view line, std::size_t colon) {
    const std::string_view value = colon == std::string_view::npos ? "" : line.substr(colon + 1);
    return value.substr(value.empty() || value.front() != ' ' ? 0 : 1);
}

}  // namespace

EventParser::EventParser(Handler handler) : handler_(std::move(handler)) {}

bool EventParser::Take(std::string_view piece) {
    rest_ += piece;
    std::size_t begin = 0;
    for (std::size_t end = 0; (end = rest_.find('\n', begin)) != std::string::npos; begin = end + 1) {
        const bool hasReturn = end > begin && rest_[end - 1] == '\r';
        TakeLine(std::string_view(rest_).substr(begin, end - begin - (hasReturn ? 1 : 0)));
    }
    rest_.erase(0, begin);
    return rest_.size() + event_.data.size() <= kEventLimitBytes;
}

void EventParser::TakeLine(std::string_view line) {
    if (line.empty()) {
        EndEvent();
        return;
    }
    const std::size_t colon = line.find(':');
    const std::string_view name = line.substr(0, colon);  // empty for a comment
    const std::string_view value = ValueOf(line, colon);
    if (name == "id") {
        event_.id = value;
    } else if (name == "event") {
        event_.name = value;
    } else if (name == "data") {
        event_.data += (hasData_ ? "\n" : "") + std::string(value);
        hasData_ = true;
    }
}

void EventParser::EndEvent() {
    if (hasData_) {
        handler_(event_);
    }
    event_.name.clear();
    event_.data.clear();
    hasData_ = false;
}

}  // namespace client
