// Reading a stream of server-sent events.
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace client {

struct Event {
    std::string id;    // of the last event that had one
    std::string name;  // empty for none
    std::string data;
};

// Puts events together from the pieces in which they arrive. One object per connection.
class EventParser {
public:
    using Handler = std::function<void(const Event& event)>;

    explicit EventParser(Handler handler);

    // Takes the next piece and calls the handler for each event that has become whole. Comments and unknown
    // fields are passed over. Returns false when the event under way is larger than any of the appliance.
    [[nodiscard]] bool Take(std::string_view piece);

private:
    void TakeLine(std::string_view line);
    void EndEvent();

    Handler handler_;
    std::string rest_;  // the beginning of a line
    Event event_;
    bool hasData_ = false;
};

}  // namespace client
