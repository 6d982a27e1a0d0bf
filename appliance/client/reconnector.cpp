#include "client/reconnector.h"

#include "client/failure.h"
#include "client/output.h"
#include "client/session.h"

#include <unistd.h>

#include <thread>

namespace client {
namespace {

constexpr std::chrono::seconds kPauseBeforeRetry{1};

bool MayPass(ExitStatus status) {
    return status == ExitStatus::kUnreachable || status == ExitStatus::kBusy ||
           status == ExitStatus::kTimedOut;
}

}  // namespace

void Reconnector::Run(const std::function<void()>& show) {
    while (!IsReaderGone(STDOUT_FILENO)) {
        try {
            show();
        } catch (const Failure& failure) {
            if (!hasBeenConnected_ || !MayPass(failure.status)) {
                throw;
            }
        }
        if (!IsReaderGone(STDOUT_FILENO)) {
            SetLost();
            std::this_thread::sleep_for(kPauseBeforeRetry);
        }
    }
}

void Reconnector::SetConnected() {
    if (isLost_) {
        session_.Say("Connected again");
    }
    hasBeenConnected_ = true;
    isLost_ = false;
}

void Reconnector::SetLost() {
    if (!isLost_) {
        session_.Say("The connection was lost; trying to connect again");
        isLost_ = true;
    }
}

}  // namespace client
