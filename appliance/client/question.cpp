#include "client/question.h"

#include "client/output.h"
#include "client/terminaltext.h"

#include <unistd.h>

#include <iostream>

namespace client {

bool CanAsk() {
    return isatty(STDIN_FILENO) == 1 && isatty(STDERR_FILENO) == 1;
}

bool IsAgreed(const std::string& text, const std::string& question) {
    (void)WriteWhole(STDERR_FILENO,
                     text + "\n" + Printable(question) + " [y/N] ");  // there is nowhere else to ask
    std::string answer;
    if (!std::getline(std::cin, answer)) {
        (void)WriteWhole(STDERR_FILENO, "\n");
    }
    return answer == "y" || answer == "Y" || answer == "yes";
}

}  // namespace client
