// What whoever interrupts the program has to know.
#pragma once

namespace client {

// While it lives, the end by an interrupt (SIGINT) comes with its text. There is one at a time.
class InterruptNote {
public:
    //   text  lines with their ends; must live as long as the program
    explicit InterruptNote(const char* text);
    ~InterruptNote();
    InterruptNote(const InterruptNote&) = delete;
    InterruptNote& operator=(const InterruptNote&) = delete;

    // The text of the one that lives, else an empty one. Safe in a signal handler.
    static const char* Present();
};

}  // namespace client
