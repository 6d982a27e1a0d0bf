// What a command that takes time is doing, on standard error.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

namespace client {

// Shows one step at a time: on a terminal that can rewrite a line as a spinner with the elapsed seconds, or
// as a bar, which leaves nothing behind; anywhere else as a line per step.
class Progress {
public:
    // Shows nothing at all when `isShown` is false.
    explicit Progress(bool isShown);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    // Goes on to the step that `text` describes: any bytes, no line end.
    void Step(const std::string& text);

    // Tells how much of the present step is done, from 0 to 1. Only a terminal shows it, as a bar.
    //   words  shown behind the step, instead of the elapsed seconds; empty for those
    void SetDone(double share, const std::string& words = "");

private:
    void Spin();
    std::string Line(std::size_t turn) const;

    const std::chrono::steady_clock::time_point begin_ = std::chrono::steady_clock::now();
    const bool isShown_;
    std::mutex mutex_;
    std::condition_variable end_;
    bool isEnded_ = false;
    std::string step_;
    std::optional<double> done_;
    std::string words_;
    std::thread spinner_;  // only on a terminal
};

}  // namespace client
