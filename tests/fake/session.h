// One test's use of the fake.
#pragma once

namespace fake {

// While it lives, calls are recorded and answered from the script. Journal and script are empty at first. One
// at a time.
class Session {
public:
    Session();
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;
};

}  // namespace fake
