// Waits for the ends of operations that go on after their answers.
#pragma once

#include "host/uniquefd.h"

#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace host {

// Has one thread. Used by all threads of the HTTP process at once.
class OperationWatch {
public:
    // `ended` is called in the watch's thread with the request's id, once for each operation.
    explicit OperationWatch(std::function<void(const std::string& requestId)> ended);

    // Operations that still go on are not waited for.
    ~OperationWatch();
    OperationWatch(const OperationWatch&) = delete;
    OperationWatch& operator=(const OperationWatch&) = delete;

    // Waits until no process holds the other end of `connection` any more: those that work for the request
    // have inherited it.
    void Follow(const std::string& requestId, UniqueFd connection);

private:
    struct Followed {
        std::string requestId;
        UniqueFd connection;
    };

    void Run();
    void TakeArrived(std::vector<Followed>& all);
    bool IsStopped();

    const std::function<void(const std::string& requestId)> ended_;
    UniqueFd wakeUp_;
    std::mutex mutex_;  // of what follows
    std::vector<Followed> arrived_;
    bool isStopped_ = false;
    std::thread thread_;
};

}  // namespace host
