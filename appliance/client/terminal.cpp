#include "client/terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

namespace client {
namespace {

std::string Variable(const char* name) {
    const char* value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe): nobody changes the environment
    return value == nullptr ? "" : value;
}

bool KnowsSequences() {
    const std::string kind = Variable("TERM");
    return !kind.empty() && kind != "dumb";
}

}  // namespace

Terminal TerminalAt(int descriptor) {
    if (isatty(descriptor) == 0) {
        return {};
    }
    struct winsize size {};
    const bool isKnown = ioctl(descriptor, TIOCGWINSZ, &size) == 0;
    const bool hasColour = KnowsSequences() && Variable("NO_COLOR").empty();
    return {isKnown ? size.ws_col : std::size_t{0}, hasColour, KnowsSequences()};
}

const char* SequenceFor(Colour colour) {
    switch (colour) {
        case Colour::kGreen:
            return "\x1B[32m";
        case Colour::kYellow:
            return "\x1B[33m";
        case Colour::kRed:
            return "\x1B[31m";
        default:
            return "\x1B[0m";
    }
}

}  // namespace client
