#include "libcamvora/weburl.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

namespace {

using camvora::ParseWebUrl;

TEST(WebUrl, IsTakenApart) {
    const std::map<std::string, std::string> kParts = {
        {"http://h", "http://h /"},
        {"https://h:8443/a/b?c#d", "https://h:8443 /a/b?c"},
        {"http://[::1]:80/", "http://[::1]:80 /"},
        {"http://[::1]?x", "http://[::1] /?x"},
    };
    for (const auto& [text, parts] : kParts) {
        const auto url = ParseWebUrl(text);
        EXPECT_EQ(parts, url ? url->origin + " " + url->path : "") << text;
    }
    for (const char* text : {"", "h", "ftp://h/", "http://", "http:///a", "http://u@h/", "http://h:/",
                             "http://h:999999/", "http://h:8x/", "http://h/a b", "http://h/\n"}) {
        EXPECT_FALSE(ParseWebUrl(text)) << text;
    }
}

TEST(WebUrl, IsLeftByARedirection) {
    const auto base = ParseWebUrl("http://h:1/a/b?c=/d");
    const std::map<std::string, std::string> kTargets = {
        {"https://i/x", "https://i/x"},
        {"//i/x", "http://i/x"},
        {"/x", "http://h:1/x"},
        {"x", "http://h:1/a/x"},
        {"?x=://", "http://h:1/a/b?x=://"},
        {"/x y", "http://h:1/x%20y"},
    };
    for (const auto& [location, target] : kTargets) {
        EXPECT_EQ(target, camvora::ResolveLocation(*base, location));
    }
}

}  // namespace
