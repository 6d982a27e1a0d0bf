// An interrupt that is to be answered by more than the end of the program.
#pragma once

namespace client {

// While it lives, the first interrupt (SIGINT) is only noted; a second one ends the program as ever. There is
// one at a time.
class DeferredInterrupt {
public:
    DeferredInterrupt();
    ~DeferredInterrupt();
    DeferredInterrupt(const DeferredInterrupt&) = delete;
    DeferredInterrupt& operator=(const DeferredInterrupt&) = delete;

    // True when an interrupt has been noted.
    bool HasCome() const;

    // Notes an interrupt. Returns false when the program has to end. Safe in a signal handler.
    static bool Note();
};

}  // namespace client
