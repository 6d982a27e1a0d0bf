#include "client/deferredinterrupt.h"

#include <atomic>

namespace client {
namespace {

enum class State { kEnds, kWaits, kHasCome };

std::atomic<State> interrupt = State::kEnds;
static_assert(std::atomic<State>::is_always_lock_free);

}  // namespace

DeferredInterrupt::DeferredInterrupt() {
    interrupt = State::kWaits;
}

DeferredInterrupt::~DeferredInterrupt() {
    interrupt = State::kEnds;
}

bool DeferredInterrupt::HasCome() const {
    return interrupt == State::kHasCome;
}

bool DeferredInterrupt::Note() {
    State expected = State::kWaits;
    return interrupt.compare_exchange_strong(expected, State::kHasCome);
}

}  // namespace client
