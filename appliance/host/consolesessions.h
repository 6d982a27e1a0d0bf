// The sessions of the web console: who has signed in shows a cookie instead of the access token.
#pragma once

#include <ctime>
#include <string>

namespace host {

// A session is kept nowhere: its cookie carries its end, and a proof that the owner of the access token has
// allowed it. So it outlives a new start of the host, and ends with the token. Used by all threads at once.
class ConsoleSessions {
public:
    static constexpr std::time_t kLifeS = 43200;  // 12 hours

    // `token` is the owner's access token.
    explicit ConsoleSessions(const std::string& token);

    // The value of the Set-Cookie header that begins a session, or that ends the one of this browser.
    std::string Begin(std::time_t now = std::time(nullptr)) const;
    std::string End() const;

    // True when `cookies`, the value of a Cookie header, has a session that has not ended. How much of a
    // wrong one is right takes the same time.
    bool IsCarriedBy(const std::string& cookies, std::time_t now = std::time(nullptr)) const;

private:
    std::string Proof(const std::string& text) const;
    std::string Cookie(const std::string& value, std::time_t lifeS) const;

    std::string token_;
    std::string name_;  // one per appliance: a browser sends its cookies to all ports of an address
};

}  // namespace host
