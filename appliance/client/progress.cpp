#include "client/progress.h"

#include "client/output.h"
#include "client/terminal.h"
#include "client/terminaltext.h"

#include <unistd.h>

#include <string_view>

namespace client {
namespace {

constexpr std::chrono::milliseconds kTurn{125};
constexpr std::string_view kSigns = "|/-\\";
constexpr std::size_t kBarWidth = 20;
constexpr char kClearLine[] = "\r\x1B[K";

void Write(const std::string& text) {
    (void)WriteWhole(STDERR_FILENO, text);  // there is nowhere else to show it
}

std::string Bar(double share) {
    const auto filled = static_cast<std::size_t>(share * kBarWidth);
    const auto percent = static_cast<int>(share * 100);
    return "[" + std::string(filled, '#') + std::string(kBarWidth - filled, ' ') + "] " +
           std::to_string(percent) + " %";
}

}  // namespace

Progress::Progress(bool isShown) : isShown_(isShown) {
    if (isShown_ && TerminalAt(STDERR_FILENO).canRewrite) {
        spinner_ = std::thread([this] { Spin(); });
    }
}

Progress::~Progress() {
    if (!spinner_.joinable()) {
        return;
    }
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        isEnded_ = true;
    }
    end_.notify_one();
    spinner_.join();
}

void Progress::Step(const std::string& text) {
    if (isShown_ && !spinner_.joinable()) {
        Write(Printable(text) + "\n");
        return;
    }
    const std::lock_guard<std::mutex> lock(mutex_);
    step_ = Printable(text);
    done_.reset();
    words_.clear();
}

void Progress::SetDone(double share, const std::string& words) {
    const std::lock_guard<std::mutex> lock(mutex_);
    done_ = share;
    words_ = words;
}

void Progress::Spin() {
    std::unique_lock<std::mutex> lock(mutex_);
    std::size_t turn = 0;
    while (!end_.wait_for(lock, kTurn, [this] { return isEnded_; })) {
        const std::size_t columns = TerminalAt(STDERR_FILENO).columns;
        const std::string line = Line(turn++);
        Write(kClearLine + (columns > 1 ? Shortened(line, columns - 1) : line));
    }
    Write(kClearLine);
}

std::string Progress::Line(std::size_t turn) const {
    const auto elapsed =
        std::chrono::duration_cast<std::chrono::seconds>(std::chrono::steady_clock::now() - begin_);
    const std::string tail =
        " " + step_ + " (" + (words_.empty() ? std::to_string(elapsed.count()) + " s" : words_) + ")";
    return done_ ? Bar(*done_) + tail : std::string(1, kSigns[turn % kSigns.size()]) + tail;
}

}  // namespace client
