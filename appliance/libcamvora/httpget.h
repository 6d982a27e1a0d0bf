// Fetching a file from a web server that is not trusted.
#pragma once

#include "libcamvora/exchangewatch.h"

#include <httplib.h>

#include <functional>
#include <string>

namespace camvora {

struct HttpGet {
    std::string url;
    httplib::Headers headers;
    Pace pace;  // of all redirections together, too
    // Shown the head of the answer; false when its body is not wanted, which ends the exchange.
    std::function<bool(const httplib::Response&)> onHead;
    // Given the body as it arrives; false to end the exchange.
    std::function<bool(const char* bytes, std::size_t sizeBytes)> onBytes;
};

struct HttpEnd {
    int status = 0;       // 0 when no head arrived
    std::string problem;  // why no whole answer arrived; empty also when one of the functions ended it
};

// Fetches `get.url`, through three redirections at most. Blocks; any thread may call, and a thread more runs
// meanwhile.
HttpEnd Fetch(const HttpGet& get);

}  // namespace camvora
