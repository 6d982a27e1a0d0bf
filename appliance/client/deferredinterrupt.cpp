#include "client/deferredinterrupt.h"

#include <atomic>

namespace client {
namespace {

enum class State { kEnds, kWaits, kHasCome };

std::atomic<State> state = State::kEnds;
static_assert(std::atomic<State>::is_always_lock_free);

}  // namespace

DeferredInterrupt::DeferredInterrupt() {
    state = State::kWaits;
}

DeferredInterrupt::~DeferredInterrupt() {
    state = State::kEnds;
}

bool DeferredInterrupt::HasCome() const {
    return state == State::kHasCome;
}

bool DeferredInterrupt::Note() {
    State expected = State::kWaits;
    return state.compare_exchange_strong(expected, State::kHasCome);
}

}  // namespace client
