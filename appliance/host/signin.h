// The pages by which somebody signs in to the web console.
#pragma once

#include "host/consolesessions.h"
#include "host/onetimecodes.h"
#include "host/reply.h"

#include <string>

namespace host {

// Used by all threads of the HTTP process at once.
class SignIn {
public:
    // `token` is the owner's access token.
    explicit SignIn(const std::string& token) : sessions_(token) {}

    // For the owner: a one-time code for whoever shall sign in.
    Reply MakeCode();

    // For whoever has a code, in the JSON text `body`: begins a session; `cookie` becomes the value of the
    // Set-Cookie header then.
    Reply Begin(const std::string& body, std::string& cookie);

    ConsoleSessions& Sessions() { return sessions_; }
    const ConsoleSessions& Sessions() const { return sessions_; }

private:
    ConsoleSessions sessions_;
    OneTimeCodes codes_;
};

}  // namespace host
