#include "client/interruptnote.h"

#include <atomic>

namespace client {
namespace {

std::atomic<const char*> present = "";
static_assert(std::atomic<const char*>::is_always_lock_free);

}  // namespace

InterruptNote::InterruptNote(const char* text) {
    present = text;
}

InterruptNote::~InterruptNote() {
    present = "";
}

const char* InterruptNote::Present() {
    return present;
}

}  // namespace client
