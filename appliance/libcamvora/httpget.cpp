#include "libcamvora/httpget.h"

#include "libcamvora/weburl.h"

#include <algorithm>
#include <csignal>

namespace camvora {

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr milliseconds kConnectLimit{3000};  // for each address of the server, and each wait of a handshake
constexpr milliseconds kAfterWatch{200};
constexpr int kRedirectionLimit = 3;

// What is written to a server that has gone would end the process.
class PipeSignalIgnored {
public:
    PipeSignalIgnored() : before_(std::signal(SIGPIPE, SIG_IGN)) {}
    ~PipeSignalIgnored() { (void)std::signal(SIGPIPE, before_); }
    PipeSignalIgnored(const PipeSignalIgnored&) = delete;
    PipeSignalIgnored& operator=(const PipeSignalIgnored&) = delete;

private:
    void (*before_)(int);
};

struct Answer {
    HttpEnd end;
    std::string location;  // of a redirection
    bool isDeclined = false;
};

bool IsRedirection(int status) {
    return status == 301 || status == 302 || status == 303 || status == 307 || status == 308;
}

// The watch comes first, but it has to wait while a secure connection is made.
void SetLimits(httplib::Client& http, milliseconds period) {
    http.set_connection_timeout(std::min(period, kConnectLimit));
    http.set_read_timeout(period + kAfterWatch);
    http.set_write_timeout(period + kAfterWatch);
}

httplib::Request RequestFor(const HttpGet& get, const std::string& path) {
    httplib::Request request;
    request.method = "GET";
    request.path = path;
    request.headers = get.headers;
    request.set_header("Accept-Encoding", "identity");
    return request;
}

void Receive(const HttpGet& get, httplib::Request& request, ExchangeWatch& watch, Answer& answer) {
    request.response_handler = [&get, &answer](const httplib::Response& response) {
        answer.end.status = response.status;
        if (IsRedirection(response.status)) {
            answer.location = response.get_header_value("Location");
            return false;
        }
        answer.isDeclined = !get.onHead(response);
        return !answer.isDeclined;
    };
    request.content_receiver = [&get, &watch, &answer](const char* bytes, std::size_t sizeBytes,
                                                       std::uint64_t, std::uint64_t) {
        watch.Count(sizeBytes);
        answer.isDeclined = !get.onBytes(bytes, sizeBytes);
        return !answer.isDeclined;
    };
}

std::string WordsFor(httplib::Error error) {
    switch (error) {
        case httplib::Error::Connection:
        case httplib::Error::ConnectionTimeout:
            return "nobody answers there";
        case httplib::Error::SSLConnection:
        case httplib::Error::SSLLoadingCerts:
        case httplib::Error::SSLServerVerification:
            return "no secure connection is to be had";
        default:
            return "the connection ended without a whole answer";
    }
}

Answer Ask(const HttpGet& get, const WebUrl& url, milliseconds period) {
    httplib::Client http(url.origin);
    http.set_url_encode(false);
    http.set_decompress(false);
    SetLimits(http, period);
    Answer answer;
    httplib::Request request = RequestFor(get, url.path);
    ExchangeWatch watch(http, {period, get.pace.minBytes});
    Receive(get, request, watch, answer);
    const httplib::Result result = http.send(request);
    if (answer.isDeclined || !answer.location.empty()) {
        return answer;
    }
    if (watch.HasEnded()) {  // ended by it, an answer of unknown length looks whole
        answer.end.problem = "it is too slow";
    } else if (!result) {
        answer.end.problem = WordsFor(result.error());
    }
    return answer;
}

}  // namespace

HttpEnd Fetch(const HttpGet& get) {
    const PipeSignalIgnored ignored;
    const auto deadline = steady_clock::now() + get.pace.period;
    std::string address = get.url;
    for (int redirections = 0; redirections <= kRedirectionLimit; ++redirections) {
        const auto url = ParseWebUrl(address);
        if (!url) {
            return {0, "the address is none of the web"};
        }
        const auto left = std::chrono::ceil<milliseconds>(deadline - steady_clock::now());
        const Answer answer = Ask(get, *url, std::max(left, milliseconds(1)));
        if (answer.location.empty()) {
            return answer.end;
        }
        address = ResolveLocation(*url, answer.location);
    }
    return {0, "it redirects too often"};
}

}  // namespace camvora
