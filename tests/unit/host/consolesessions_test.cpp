// Sessions of the web console.
#include "host/consolesessions.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using host::ConsoleSessions;

constexpr std::time_t kNow = 1'800'000'000;

// What a browser sends back of it.
std::string Sent(const std::string& setCookie) {
    return setCookie.substr(0, setCookie.find(';'));
}

TEST(ConsoleSessions, LastTwelveHoursAndNoLongerThanTheToken) {
    const ConsoleSessions sessions("token");
    const std::string cookie = Sent(sessions.Begin(kNow));
    EXPECT_TRUE(ConsoleSessions("token").IsCarriedBy("a=b; " + cookie, kNow));
    EXPECT_TRUE(sessions.IsCarriedBy(cookie, kNow + ConsoleSessions::kLifeS - 1));
    EXPECT_FALSE(sessions.IsCarriedBy(cookie, kNow + ConsoleSessions::kLifeS));
    const std::string value = cookie.substr(cookie.find('='));
    ConsoleSessions others("another token");
    EXPECT_FALSE(others.IsCarriedBy(Sent(others.End("")) + value.substr(1), kNow));
}

TEST(ConsoleSessions, EndOneByOne) {
    ConsoleSessions sessions("token");
    const std::string first = Sent(sessions.Begin(kNow));
    const std::string second = Sent(sessions.Begin(kNow));
    sessions.End("a=b; " + first, kNow);
    EXPECT_FALSE(sessions.IsCarriedBy(first, kNow));
    EXPECT_TRUE(sessions.IsCarriedBy(second, kNow));
}

TEST(ConsoleSessions, AreNotMadeUp) {
    ConsoleSessions sessions("token");
    const std::string cookie = Sent(sessions.Begin(kNow));
    const std::string name = cookie.substr(0, cookie.find('=') + 1);
    const std::string rest = cookie.substr(cookie.find('.'));
    for (const std::string& wrong :
         {std::string(), name, name + ".", name + rest, name + "9999999999" + rest,
          cookie.substr(0, cookie.size() - 1), cookie + "0", Sent(sessions.End(""))}) {
        EXPECT_FALSE(sessions.IsCarriedBy(wrong, kNow)) << wrong;
    }
}

}  // namespace
