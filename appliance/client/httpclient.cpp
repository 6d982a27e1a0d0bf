#include "client/httpclient.h"

#include "client/earlyreply.h"
#include "client/failure.h"
#include "client/formfile.h"
#include "client/watchdog.h"

#include <httplib.h>

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

namespace client {
namespace {

constexpr std::chrono::seconds kConnectLimit{10};
constexpr std::chrono::seconds kSilenceLimit{30};  // a living stream carries something every few seconds
constexpr char kStreamType[] = "text/event-stream";
constexpr std::size_t kReplyLimitBytes = 16U << 20U;
constexpr std::size_t kSentBytes = 64U << 10U;

httplib::Request MakeRequest(const char* method, const std::string& path, const std::string& body,
                             const std::string& token) {
    httplib::Request request;
    request.method = method;
    request.path = path;
    request.body = body;
    if (!body.empty()) {
        request.set_header("Content-Type", "application/json");
    }
    if (!token.empty()) {
        request.set_header("Authorization", "Bearer " + token);
    }
    return request;
}

bool IsStream(const httplib::Response& response) {
    return response.status == 200 && response.get_header_value("Content-Type").rfind(kStreamType, 0) == 0;
}

// Returns false when the reply is too large.
bool Append(HttpReply& reply, const char* data, std::size_t size) {
    reply.body.append(data, size);
    return reply.body.size() <= kReplyLimitBytes;
}

bool IsWithoutConnection(httplib::Error error) {
    return error == httplib::Error::Connection || error == httplib::Error::ConnectionTimeout;
}

Failure NotAnswering(const Location& location) {
    const std::string hint = location.hint.empty() ? "" : "; " + location.hint;
    return {ExitStatus::kUnreachable, "No appliance answers at " + location.url + hint};
}

Failure TimedOut(const Location& location, std::chrono::seconds timeLimit) {
    return {ExitStatus::kTimedOut, "No whole reply from " + location.url + " within " +
                                       std::to_string(timeLimit.count()) +
                                       " s. The appliance may still be at work; --timeout waits longer"};
}

Failure BrokenOff(const Location& location, httplib::Error error) {
    if (error == httplib::Error::Canceled) {
        return {ExitStatus::kFailed, "The reply from " + location.url + " is too large"};
    }
    if (error == httplib::Error::Write) {
        return {ExitStatus::kFailed, "The appliance at " + location.url +
                                         " took only a part of what was sent. It may have no room for it, or "
                                         "a limit on its size"};
    }
    return {ExitStatus::kUnreachable,
            "The connection to " + location.url +
                " ended without a whole reply. The appliance may have done its work"};
}

// One request and its reply.
class Exchange {
public:
    Exchange(const Location& location, std::chrono::seconds timeLimit)
        : location_(location),
          timeLimit_(timeLimit),
          http_(location.url),
          watchdog_(timeLimit, [this] { http_.stop(); }) {
        http_.set_connection_timeout(std::min(timeLimit, kConnectLimit));
        http_.set_read_timeout(2 * timeLimit);  // the watchdog comes first: this one starts anew at each byte
        http_.set_write_timeout(2 * timeLimit);
    }

    // Lets the time limit begin anew.
    void Restart() { watchdog_.Restart(); }

    // Called while a request is sent. True when its reply has come already: the rest need not be sent.
    bool IsAnswered() {
        early_ = TakeEarlyReply(http_.socket(), kReplyLimitBytes);
        return early_.has_value();
    }

    HttpReply Send(httplib::Request request);

private:
    const Location& location_;
    const std::chrono::seconds timeLimit_;
    httplib::Client http_;
    Watchdog watchdog_;
    std::optional<HttpReply> early_;
};

HttpReply Exchange::Send(httplib::Request request) {
    HttpReply reply;
    request.content_receiver = [&reply](const char* data, std::size_t size, std::uint64_t, std::uint64_t) {
        return Append(reply, data, size);
    };
    const httplib::Result result = http_.send(request);
    if (early_) {
        return *early_;
    }
    if (IsWithoutConnection(result.error())) {
        throw NotAnswering(location_);
    }
    // Ended by the watchdog, a reply of unknown length looks whole.
    if (watchdog_.HasExpired()) {
        throw TimedOut(location_, timeLimit_);
    }
    if (!result) {
        throw BrokenOff(location_, result.error());
    }
    reply.status = result->status;
    reply.requestId = result->get_header_value("X-Request-Id");
    return reply;
}

}  // namespace

HttpClient::HttpClient(Location location, std::chrono::seconds timeLimit)
    : location_(std::move(location)), timeLimit_(timeLimit) {}

HttpReply HttpClient::Get(const std::string& path,
                          const std::multimap<std::string, std::string>& query) const {
    const std::string target = query.empty() ? path : httplib::append_query_params(path, query);
    return Exchange(location_, timeLimit_).Send(MakeRequest("GET", target, "", location_.token));
}

HttpReply HttpClient::Delete(const std::string& path,
                             const std::multimap<std::string, std::string>& query) const {
    const std::string target = httplib::append_query_params(path, query);
    return Exchange(location_, timeLimit_).Send(MakeRequest("DELETE", target, "", location_.token));
}

HttpReply HttpClient::Listen(const std::string& path, const std::string& lastEventId,
                             const PieceReceiver& receive) const {
    httplib::Client http(location_.url);
    http.set_connection_timeout(std::min(timeLimit_, kConnectLimit));
    http.set_read_timeout(kSilenceLimit);

    HttpReply reply;
    httplib::Request request = MakeRequest("GET", path, "", location_.token);
    if (!lastEventId.empty()) {
        request.set_header("Last-Event-ID", lastEventId);
    }
    request.response_handler = [&reply](const httplib::Response& response) {
        reply.status = response.status;
        reply.requestId = response.get_header_value("X-Request-Id");
        reply.isStream = IsStream(response);
        return true;
    };
    request.content_receiver = [&](const char* data, std::size_t size, std::uint64_t, std::uint64_t) {
        return reply.isStream ? receive({data, size}) : Append(reply, data, size);
    };
    const httplib::Result result = http.send(request);
    if (IsWithoutConnection(result.error())) {
        throw NotAnswering(location_);
    }
    if (!result && !reply.isStream) {
        throw BrokenOff(location_, result.error());
    }
    return reply;
}

HttpClient HttpClient::Within(std::chrono::seconds timeLimit) const {
    return {location_, timeLimit};
}

HttpReply HttpClient::Post(const std::string& path, const std::string& body) const {
    return Exchange(location_, timeLimit_).Send(MakeRequest("POST", path, body, location_.token));
}

HttpReply HttpClient::PostFile(const std::string& path, const FormFile& file,
                               const SentReceiver& sent) const {
    Exchange exchange(location_, timeLimit_);
    httplib::Request request = MakeRequest("POST", path, "", location_.token);
    request.set_header("Content-Type", file.ContentType());
    request.content_length_ = file.SizeBytes();
    request.content_provider_ = [&](std::size_t offset, std::size_t leftBytes, httplib::DataSink& sink) {
        if (exchange.IsAnswered()) {
            return false;
        }
        std::array<char, kSentBytes> piece;
        const std::size_t size = file.ReadAt(offset, piece.data(), std::min(piece.size(), leftBytes));
        exchange.Restart();
        if (!sink.write(piece.data(), size)) {
            return !exchange.IsAnswered();  // where it is not, the library knows what is wrong
        }
        sent(offset + size);
        return true;
    };
    return exchange.Send(std::move(request));
}

}  // namespace client
