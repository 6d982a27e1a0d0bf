// Showing what happens on the appliance, over losses of the connection.
#pragma once

#include <functional>

namespace client {

class Session;

// Says once that the connection was lost, and once that it is there again.
class Reconnector {
public:
    explicit Reconnector(const Session& session) : session_(session) {}

    // Calls `show` again and again, with a pause between, until nobody reads standard output any more. `show`
    // returns, or throws Failure, when the connection is lost.
    //   throws  Failure of `show` when the appliance has never answered, or when time does not mend it
    void Run(const std::function<void()>& show);

    // Called by `show` when the appliance has answered.
    void SetConnected();

private:
    void SetLost();

    const Session& session_;
    bool hasBeenConnected_ = false;
    bool isLost_ = false;
};

}  // namespace client
