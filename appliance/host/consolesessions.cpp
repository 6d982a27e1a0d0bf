#include "host/consolesessions.h"

#include "host/cookies.h"
#include "host/decimal.h"
#include "host/requestids.h"

#include "libcamvora/hmac.h"

#include <openssl/crypto.h>

#include <optional>

namespace host {

namespace {

constexpr char kNamePrefix[] = "camvora-session-";
constexpr std::size_t kNameDigits = 8;

}  // namespace

ConsoleSessions::ConsoleSessions(const std::string& token)
    : token_(token), name_(kNamePrefix + Proof("name of the cookie").substr(0, kNameDigits)) {}

std::string ConsoleSessions::Begin(std::time_t now) const {
    const std::string session = std::to_string(now + kLifeS) + "." + NewRequestId();
    return Cookie(session + "." + Proof(session), kLifeS);
}

std::string ConsoleSessions::End(const std::string& cookies, std::time_t now) {
    const std::string session = SessionIn(cookies);
    if (IsGenuine(session, now)) {
        const std::lock_guard<std::mutex> lock(mutex_);
        ended_.erase(ended_.begin(), ended_.lower_bound(std::to_string(now)));  // they begin with their end
        ended_.insert(session);
    }
    return Cookie("", 0);
}

bool ConsoleSessions::IsCarriedBy(const std::string& cookies, std::time_t now) const {
    const std::string session = SessionIn(cookies);
    if (!IsGenuine(session, now)) {
        return false;
    }
    const std::lock_guard<std::mutex> lock(mutex_);
    return ended_.count(session) == 0;
}

std::string ConsoleSessions::SessionIn(const std::string& cookies) const {
    const auto all = ParseCookies(cookies);
    const auto session = all.find(name_);
    return session == all.end() ? "" : session->second;
}

// Its form is END.NUMBER.PROOF.
bool ConsoleSessions::IsGenuine(const std::string& session, std::time_t now) const {
    const std::string signedPart = session.substr(0, session.rfind('.'));
    const std::string expected = signedPart + "." + Proof(signedPart);
    const std::optional<long long> endS = ParseDecimal(session.substr(0, session.find('.')));
    return session.size() == expected.size() &&
           CRYPTO_memcmp(session.data(), expected.data(), expected.size()) == 0 && endS && *endS > now;
}

std::string ConsoleSessions::Proof(const std::string& text) const {
    return camvora::HmacSha256(token_, text);
}

std::string ConsoleSessions::Cookie(const std::string& value, std::time_t lifeS) const {
    return name_ + "=" + value + "; Path=/; Max-Age=" + std::to_string(lifeS) + "; HttpOnly; SameSite=Strict";
}

}  // namespace host
