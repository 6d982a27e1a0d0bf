// What a command that takes time is doing, on standard error.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

namespace client {

// Shows one step at a time: on a terminal as a spinner with the elapsed seconds, which leaves nothing behind;
// anywhere else as a line per step.
class Progress {
public:
    // Shows nothing at all when `isShown` is false.
    explicit Progress(bool isShown);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    // Goes on to the step that `text` describes: any bytes, no line end.
    void Step(const std::string& text);

private:
    void Spin();

    const std::chrono::steady_clock::time_point begin_ = std::chrono::steady_clock::now();
    const bool isShown_;
    std::mutex mutex_;
    std::condition_variable end_;
    bool isEnded_ = false;
    std::string step_;
    std::thread spinner_;  // only on a terminal
};

}  // namespace client
