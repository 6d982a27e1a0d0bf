#include "host/operationwatch.h"

#include <poll.h>
#include <sys/eventfd.h>

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <system_error>
#include <utility>

namespace host {

OperationWatch::OperationWatch(std::function<void(const std::string& requestId)> ended)
    : ended_(std::move(ended)), wakeUp_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (!wakeUp_.IsOpen()) {
        throw std::system_error(errno, std::generic_category(), "eventfd");
    }
    thread_ = std::thread([this] { Run(); });
}

OperationWatch::~OperationWatch() {
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        isStopped_ = true;
    }
    eventfd_write(wakeUp_.Get(), 1);
    thread_.join();
}

void OperationWatch::Follow(const std::string& requestId, UniqueFd connection) {
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        arrived_.push_back({requestId, std::move(connection)});
    }
    eventfd_write(wakeUp_.Get(), 1);
}

void OperationWatch::Run() {
    std::vector<Followed> all;
    while (!IsStopped()) {
        TakeArrived(all);
        std::vector<pollfd> waits = {{wakeUp_.Get(), POLLIN, 0}};
        for (const Followed& followed : all) {
            waits.push_back({followed.connection.Get(), 0, 0});  // only its end
        }
        (void)poll(waits.data(), waits.size(), -1);
        eventfd_t ignored = 0;
        (void)eventfd_read(wakeUp_.Get(), &ignored);
        for (std::size_t i = all.size(); i > 0; --i) {
            if (waits[i].revents != 0) {
                ended_(all[i - 1].requestId);
                all.erase(all.begin() + static_cast<std::ptrdiff_t>(i) - 1);
            }
        }
    }
}

void OperationWatch::TakeArrived(std::vector<Followed>& all) {
    const std::lock_guard<std::mutex> lock(mutex_);
    std::move(arrived_.begin(), arrived_.end(), std::back_inserter(all));
    arrived_.clear();
}

bool OperationWatch::IsStopped() {
    const std::lock_guard<std::mutex> lock(mutex_);
    return isStopped_;
}

}  // namespace host
