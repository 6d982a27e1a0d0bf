#include "host/routes.h"

#include "host/bodysize.h"
#include "host/callpath.h"
#include "host/decimal.h"
#include "host/frameworkerrors.h"
#include "host/httpreply.h"
#include "host/operations.h"
#include "host/requestbody.h"

#include "libcamvora/diagnosticlog.h"
#include "platform/log.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace host {

namespace {

using HandlerResponse = httplib::Server::HandlerResponse;

void RefuseHttpMethod(httplib::Response& response, const char* allowed) {
    response.set_header("Allow", allowed);
    Write(response, ReplyFor(FrameworkError::kWrongHttpMethod));
}

void AnswerNotAuthorized(httplib::Response& response) {
    response.set_header("WWW-Authenticate", "Bearer");
    Write(response, ReplyFor(FrameworkError::kNotAuthorized));
}

}  // namespace

struct Routes::Page {
    const char* path;
    bool needsToken;
    Answer answer;
};

// All of them are read with GET; everything else is a method of the module, called with POST.
const Routes::Page Routes::kPages[] = {
    // clang-format off
    {"/api", false, &Routes::AnswerApis},
    {"/health", false, &Routes::AnswerHealth},
    {"/log", true, &Routes::AnswerLog},
    {"/operations", true, &Routes::AnswerOperations},
    {"/events", true, &Routes::AnswerEvents},
    // clang-format on
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
        if (AnnouncedSize(request) > BodyLimit(request)) {
            AnnounceClose(response);
            Write(response, ReplyFor(FrameworkError::kTooLarge));
            return response.status;
        }
        return 100;
    });
    CompleteReplies(server);
}

// Answers all but calls of methods that exist: only their bodies are read.
HandlerResponse Routes::AnswerEarly(const httplib::Request& request, httplib::Response& response) {
    const auto method = FindMethod(module_, request.path);
    const auto* problem = std::get_if<FrameworkError>(&method);
    const bool isWellFramed = FramingOf(request) != BodyFraming::kInvalid;
    if (problem == nullptr && request.method == "POST" && isWellFramed) {
        return HandlerResponse::Unhandled;
    }
    if (HasBody(request)) {
        AnnounceClose(response);
    }
    if (!isWellFramed) {
        Write(response, ReplyFor(FrameworkError::kBadRequest, "the size of the body is not clear"));
    } else if (problem == nullptr) {
        RefuseHttpMethod(response, "POST");
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
        RefuseHttpMethod(response, "GET");
    } else if (page->needsToken && !IsAuthorized(request)) {
        AnswerNotAuthorized(response);
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
    if (auto refusal = ReadBody(request, reader, BodyLimit(request), call)) {
        AnnounceClose(response);
        Write(response, std::move(*refusal));
        return;
    }
    Write(response, client_.Call(GiveRequestId(response), call));
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
    Write(response, client_.Ping(GiveRequestId(response)));
}

void Routes::AnswerLog(const httplib::Request& request, httplib::Response& response) {
    if (!request.has_param("request")) {
        Write(response, ReplyFor(FrameworkError::kBadRequest, "the parameter \"request\" is missing"));
        return;
    }
    Json::Value data(Json::objectValue);
    data["lines"] = camvora::LogLinesOfRequest(request.get_param_value("request"));
    Write(response, SuccessReply(data));
}

void Routes::AnswerOperations(const httplib::Request& request, httplib::Response& response) {
    Write(response, ReplyWithOperations(request));
}

void Routes::AnswerEvents(const httplib::Request& request, httplib::Response& response) {
    const std::shared_ptr<EventStream> stream =
        events_.Open(ParseDecimal(request.get_header_value("Last-Event-ID")));
    if (stream == nullptr) {
        Write(response, ReplyFor(FrameworkError::kTooManyStreams));
        return;
    }
    std::string snapshot = stream->Next();
    if (snapshot.empty()) {
        Write(response, ReplyFor(FrameworkError::kHostFailed, "its state cannot be read"));
        return;
    }
    response.set_header("Cache-Control", "no-cache");
    response.set_chunked_content_provider(
        "text/event-stream",
        [stream, next = std::move(snapshot)](std::size_t, httplib::DataSink& sink) mutable {
            const std::string text = next.empty() ? stream->Next() : std::exchange(next, "");
            if (text.empty()) {
                sink.done();
                return true;
            }
            return sink.write(text.data(), text.size());
        });
}

// What a stranger may have parsed before the module refuses it is little.
std::size_t Routes::BodyLimit(const httplib::Request& request) const {
    return IsAuthorized(request) ? options_.bodyLimitBytes
                                 : std::min(options_.bodyLimitBytes, options_.strangerBodyLimitBytes);
}

bool Routes::IsAuthorized(const httplib::Request& request) const {
    return token_.IsCarriedBy(request.get_header_value("Authorization"));
}

}  // namespace host
