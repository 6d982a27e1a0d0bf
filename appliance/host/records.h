// Texts of any length over one end of a socket pair of type SOCK_SEQPACKET. A text travels as records; the
// last of them is marked, so that its end is known although further processes may hold the other end.
#pragma once

#include <string>

namespace host {

// Sends `text`. Returns false when nobody holds the other end any more.
bool SendText(int socket, const std::string& text);

// Sends word that the process that serves this connection has ended, with its wait status. Where it cannot
// be sent nobody needs it.
void SendEnded(int socket, int waitStatus);

enum class Received {
    kText,
    kEnded,     // the serving process ended before its text was complete
    kClosed,    // nobody holds the other end any more
    kTimedOut,  // the socket's own time limit has passed
};

// Waits for a whole text, or for what comes instead. On kText `text` is it, on kEnded `waitStatus` is set.
Received ReceiveText(int socket, std::string& text, int& waitStatus);

}  // namespace host
