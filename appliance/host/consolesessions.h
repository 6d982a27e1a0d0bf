// The sessions of the web console: who has signed in shows a cookie instead of the access token.
#pragma once

#include <ctime>
#include <mutex>
#include <set>
#include <string>

namespace host {

// A session is kept nowhere: its cookie carries its end, and a proof that the owner of the access token has
// allowed it. So it outlives a new start of the host, and ends with the token. Only those that were ended are
// remembered, until the next start. Used by all threads at once.
class ConsoleSessions {
public:
    static constexpr std::time_t kLifeS = 43200;  // 12 hours

    // `token` is the owner's access token.
    explicit ConsoleSessions(const std::string& token);

    // The value of the Set-Cookie header that begins a session.
    std::string Begin(std::time_t now = std::time(nullptr)) const;

    // Ends the session that `cookies`, the value of a Cookie header, has, if it has one. Returns the value of
    // the Set-Cookie header that makes the browser forget it.
    std::string End(const std::string& cookies, std::time_t now = std::time(nullptr));

    // True when `cookies` has a session that has not ended. How much of a wrong one is right takes the same
    // time.
    bool IsCarriedBy(const std::string& cookies, std::time_t now = std::time(nullptr)) const;

private:
    std::string Proof(const std::string& text) const;
    std::string Cookie(const std::string& value, std::time_t lifeS) const;

    // The session in a Cookie header; empty where there is none.
    std::string SessionIn(const std::string& cookies) const;
    bool IsGenuine(const std::string& session, std::time_t now) const;

    std::string token_;
    std::string name_;  // one per appliance: a browser sends its cookies to all ports of an address
    mutable std::mutex mutex_;
    std::set<std::string> ended_;
};

}  // namespace host
