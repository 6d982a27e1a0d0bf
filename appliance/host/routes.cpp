#include "host/routes.h"

#include "host/callpath.h"
#include "host/frameworkerrors.h"
#include "host/requestbody.h"
#include "host/requestids.h"

#include "libcamvora/diagnosticlog.h"
#include "platform/log.h"

#include <algorithm>
#include <charconv>
#include <iterator>

namespace host {

namespace {

using HandlerResponse = httplib::Server::HandlerResponse;

constexpr char kRequestIdHeader[] = "X-Request-Id";

void Write(httplib::Response& response, Reply reply) {
    response.status = reply.httpStatus;
    response.body = std::move(reply.body);
    response.set_header("Content-Type", "application/json");
}

// Gives the library's own refusals the form of all others.
HandlerResponse CompleteError(const httplib::Request& /*request*/, httplib::Response& response) {
    if (!response.body.empty()) {
        return HandlerResponse::Handled;
    }
    response.set_header("Connection", "close");
    switch (response.status) {
        case 404:
            Write(response, ReplyFor(FrameworkError::kNotFound));
            break;
        case 413:
        case 414:
            Write(response, ReplyFor(FrameworkError::kTooLarge));
            break;
        default:
            Write(response, ReplyFor(FrameworkError::kBadRequest));
            break;
    }
    return HandlerResponse::Handled;
}

void CompleteHead(const httplib::Request& request, httplib::Response& response) {
    if (!response.has_header(kRequestIdHeader)) {
        response.set_header(kRequestIdHeader, NewRequestId());
    }
    response.headers.erase("Keep-Alive");
    if (request.has_header("Transfer-Encoding") && !response.has_header("Connection")) {
        response.set_header("Connection", "close");  // the end of such a body is not kept track of
    }
}

void AnswerException(const httplib::Request& /*request*/, httplib::Response& response,
                     const std::exception_ptr& /*exception*/) {
    response.set_header("Connection", "close");
    Write(response, ReplyFor(FrameworkError::kHostFailed));
}

std::optional<long long> LastEventId(const httplib::Request& request) {
    const std::string text = request.get_header_value("Last-Event-ID");
    long long id = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), id);
    const bool isNumber =
        !text.empty() && result.ec == std::errc() && result.ptr == text.data() + text.size();
    return isNumber && id >= 0 ? std::optional(id) : std::nullopt;
}

void AnswerNotAuthorized(httplib::Response& response) {
    response.set_header("WWW-Authenticate", "Bearer");
    Write(response, ReplyFor(FrameworkError::kNotAuthorized));
}

}  // namespace

struct Routes::Page {
    const char* path;
    Answer answer;
};

// All of them are read with GET; everything else is a method of the module, called with POST.
const Routes::Page Routes::kPages[] = {
    {"/api", &Routes::AnswerApis},
    {"/health", &Routes::AnswerHealth},
    {"/log", &Routes::AnswerLog},
    {"/events", &Routes::AnswerEvents},
};

Routes::Routes(const Module& module, const AccessToken& token, const Options& options, RequestClient& client,
               EventHub& events)
    : module_(module), token_(token), options_(options), client_(client), events_(events) {}

void Routes::AddTo(httplib::Server& server) {
    server.set_pre_routing_handler(
        [this](const auto& request, auto& response) { return AnswerEarly(request, response); });
    server.Post(".*", [this](const auto& request, auto& response, const auto& reader) {
        AnswerCall(request, response, reader);
    });
    server.set_expect_100_continue_handler([this](const auto& request, auto& response) {
        if (IsAnnouncedTooLarge(request, options_.bodyLimitBytes)) {
            Write(response, ReplyFor(FrameworkError::kTooLarge));
            return response.status;
        }
        return 100;
    });
    server.set_error_handler(httplib::Server::HandlerWithResponse(CompleteError));
    server.set_exception_handler(AnswerException);
    server.set_post_routing_handler(CompleteHead);
}

// Answers all but calls of methods that exist: only their bodies are read.
HandlerResponse Routes::AnswerEarly(const httplib::Request& request, httplib::Response& response) {
    const auto method = FindMethod(module_, request.path);
    const auto* problem = std::get_if<FrameworkError>(&method);
    if (problem == nullptr && request.method == "POST") {
        return HandlerResponse::Unhandled;
    }
    if (HasBody(request)) {
        response.set_header("Connection", "close");
    }
    if (problem == nullptr) {
        Write(response, ReplyFor(FrameworkError::kWrongHttpMethod));
    } else if (*problem != FrameworkError::kNotFound) {
        Write(response, ReplyFor(*problem));
    } else {
        AnswerPage(request, response);
    }
    return HandlerResponse::Handled;
}

void Routes::AnswerPage(const httplib::Request& request, httplib::Response& response) {
    const Page* page = std::find_if(std::begin(kPages), std::end(kPages),
                                    [&](const Page& p) { return request.path == p.path; });
    if (page == std::end(kPages)) {
        Write(response, ReplyFor(FrameworkError::kNotFound));
    } else if (request.method != "GET") {
        Write(response, ReplyFor(FrameworkError::kWrongHttpMethod));
    } else {
        (this->*page->answer)(request, response);
    }
}

void Routes::AnswerCall(const httplib::Request& request, httplib::Response& response,
                        const httplib::ContentReader& reader) {
    Request call;
    call.row = std::get<std::int32_t>(FindMethod(module_, request.path));
    call.authorized = IsAuthorized(request);
    call.cookies = request.get_header_value("Cookie");
    if (auto refusal = ReadBody(request, reader, options_.bodyLimitBytes, call)) {
        response.set_header("Connection", "close");
        Write(response, std::move(*refusal));
        return;
    }
    const std::string requestId = NewRequestId();
    response.set_header(kRequestIdHeader, requestId);
    Write(response, client_.Call(requestId, call));
}

void Routes::AnswerApis(const httplib::Request& /*request*/, httplib::Response& response) {
    Json::Value apis(Json::arrayValue);
    for (const MethodRow& row : module_.Rows()) {
        auto api = std::find_if(apis.begin(), apis.end(), [&](const Json::Value& known) {
            return known["api"] == row.api && known["version"] == row.version;
        });
        Json::Value& entry = api == apis.end() ? apis.append(Json::Value(Json::objectValue)) : *api;
        entry["api"] = row.api;
        entry["version"] = row.version;
        entry["methods"].append(row.method);
    }
    Json::Value data(Json::objectValue);
    data["apis"] = apis;
    Write(response, SuccessReply(data));
}

void Routes::AnswerHealth(const httplib::Request& /*request*/, httplib::Response& response) {
    Write(response, client_.Call(NewRequestId(), Request()));
}

void Routes::AnswerLog(const httplib::Request& request, httplib::Response& response) {
    if (!IsAuthorized(request)) {
        AnswerNotAuthorized(response);
        return;
    }
    if (!request.has_param("request")) {
        Write(response, ReplyFor(FrameworkError::kBadRequest, "the parameter \"request\" is missing"));
        return;
    }
    Json::Value data(Json::objectValue);
    data["lines"] = camvora::LogLinesOfRequest(request.get_param_value("request"));
    Write(response, SuccessReply(data));
}

void Routes::AnswerEvents(const httplib::Request& request, httplib::Response& response) {
    if (!IsAuthorized(request)) {
        AnswerNotAuthorized(response);
        return;
    }
    const std::shared_ptr<EventStream> stream = events_.Open(LastEventId(request));
    if (stream == nullptr) {
        Write(response, ReplyFor(FrameworkError::kTooManyStreams));
        return;
    }
    response.set_header("Cache-Control", "no-cache");
    response.set_chunked_content_provider("text/event-stream",
                                          [stream](std::size_t, httplib::DataSink& sink) {
                                              const std::string text = stream->Next();
                                              if (text.empty()) {
                                                  sink.done();
                                                  return true;
                                              }
                                              return sink.write(text.data(), text.size());
                                          });
}

bool Routes::IsAuthorized(const httplib::Request& request) const {
    return token_.IsCarriedBy(request.get_header_value("Authorization"));
}

}  // namespace host
