#include "host/routes.h"

#include "host/appliancestate.h"
#include "host/bodysize.h"
#include "host/callpath.h"
#include "host/decimal.h"
#include "host/downloads.h"
#include "host/frameworkerrors.h"
#include "host/httpreply.h"
#include "host/jsontext.h"
#include "host/operationend.h"
#include "host/operationlog.h"
#include "host/operations.h"
#include "host/programs.h"
#include "host/relay.h"
#include "host/releases.h"
#include "host/uploads.h"

#include "interface/openapi.h"
#include "libcamvora/diagnosticlog.h"
#include "platform/log.h"

#include <algorithm>
#include <chrono>
#include <iterator>
#include <utility>

namespace host {

namespace {

using HandlerResponse = httplib::Server::HandlerResponse;

// Paths of more than one page.
constexpr char kConsolePaths[] = "/console/";
constexpr char kRelayedCalls[] = "/servers/";

constexpr char kSetCookie[] = "Set-Cookie";

void RefuseHttpMethod(httplib::Response& response, const std::string& allowed) {
    response.set_header("Allow", allowed);
    Write(response, ReplyFor(FrameworkError::kWrongHttpMethod));
}

// A browser sends the cookie along with whatever another page at this address, on another port, makes it
// send. What such a page has it read it cannot see, so it must only not change anything.
bool IsOfConsole(const httplib::Request& request) {
    if (request.method == "GET") {
        return true;
    }
    const std::string origin = request.get_header_value("Origin");
    const std::string host = request.get_header_value("Host");
    return origin == "http://" + host || origin == "https://" + host;
}

void AnswerNotAuthorized(httplib::Response& response) {
    response.set_header("WWW-Authenticate", "Bearer");
    Write(response, ReplyFor(FrameworkError::kNotAuthorized));
}

}  // namespace

struct Routes::Page {
    const char* httpMethod;
    const char* path;
    bool needsToken;
    Answer answer;

    bool IsAt(const std::string& requested) const {
        if (path == kRelayedCalls) {
            return FindRelayTarget(requested).has_value();
        }
        return path == kConsolePaths ? requested.rfind(path, 0) == 0 : requested == path;
    }
};

// Everything else is a method of the module, called with POST.
const Routes::Page Routes::kPages[] = {
    // clang-format off
    {"GET", "/", false, &Routes::AnswerConsole},
    {"GET", kConsolePaths, false, &Routes::AnswerConsole},
    {"POST", "/session/codes", true, &Routes::AnswerMakeSignInCode},
    {"POST", "/session", false, &Routes::AnswerSignIn},
    {"DELETE", "/session", false, &Routes::AnswerSignOut},
    {"GET", "/appliance", true, &Routes::AnswerAppliance},
    {"GET", "/api", false, &Routes::AnswerApis},
    {"GET", "/api/openapi.json", false, &Routes::AnswerOpenApi},
    {"GET", "/health", false, &Routes::AnswerHealth},
    {"GET", "/log", true, &Routes::AnswerLog},
    {"GET", "/operations", true, &Routes::AnswerOperations},
    {"GET", "/operationlog", true, &Routes::AnswerOperationLog},
    {"GET", "/programs", true, &Routes::AnswerPrograms},
    {"GET", "/releases", true, &Routes::AnswerReleases},
    {"GET", "/downloads", true, &Routes::AnswerDownloads},
    {"GET", "/events", true, &Routes::AnswerEvents},
    {"POST", "/pairing/codes", true, &Routes::AnswerMakeCode},
    {"POST", "/pairing", false, &Routes::AnswerRedeemCode},
    {"POST", "/pairing/confirmation", false, &Routes::AnswerConfirm},
    {"POST", "/pairs", true, &Routes::AnswerKeepHost},
    {"GET", "/pairs", true, &Routes::AnswerPairs},
    {"DELETE", "/pairs", true, &Routes::AnswerForget},
    {"POST", kRelayedCalls, true, &Routes::AnswerRelay},
    // clang-format on
};

Routes::Routes(const Module& module, const Credentials& credentials, const Options& options,
               const UploadArea& uploadArea, RequestClient& client, EventHub& events)
    : module_(module),
      credentials_(credentials),
      options_(options),
      uploadArea_(uploadArea),
      client_(client),
      events_(events),
      consoleFiles_(options.consoleFolder),
      signIn_(credentials.ClientToken()),
      operations_(RecordOutcome) {}

void Routes::AddTo(httplib::Server& server) {
    server.set_pre_routing_handler(
        [this](const auto& request, auto& response) { return AnswerEarly(request, response); });
    server.Post(".*", [this](const auto& request, auto& response, const auto& reader) {
        AnswerPost(request, response, reader);
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

const Routes::Page* Routes::FindPage(const httplib::Request& request) {
    const Page* page = std::find_if(std::begin(kPages), std::end(kPages), [&](const Page& p) {
        return request.method == p.httpMethod && p.IsAt(request.path);
    });
    return page == std::end(kPages) ? nullptr : page;
}

// What the page at `path` can be asked with; empty when there is none.
std::string Routes::MethodsAt(const std::string& path) {
    std::string methods;
    for (const Page& page : kPages) {
        if (page.IsAt(path)) {
            methods += (methods.empty() ? "" : ", ") + std::string(page.httpMethod);
        }
    }
    return methods;
}

// Answers all but requests whose bodies are to be read.
HandlerResponse Routes::AnswerEarly(const httplib::Request& request, httplib::Response& response) {
    const bool isWellFramed = FramingOf(request) != BodyFraming::kInvalid;
    if (isWellFramed && TakesBody(request)) {
        return HandlerResponse::Unhandled;
    }
    if (HasBody(request)) {
        AnnounceClose(response);
    }
    if (isWellFramed) {
        AnswerWithoutBody(request, response);
    } else {
        Write(response, ReplyFor(FrameworkError::kBadRequest, "the size of the body is not clear"));
    }
    return HandlerResponse::Handled;
}

bool Routes::TakesBody(const httplib::Request& request) const {
    if (request.method != "POST") {
        return false;
    }
    if (std::holds_alternative<std::int32_t>(FindMethod(module_, request.path))) {
        return true;
    }
    const Page* page = FindPage(request);
    return page != nullptr && (!page->needsToken || IsAuthorized(request));
}

void Routes::AnswerWithoutBody(const httplib::Request& request, httplib::Response& response) {
    const auto method = FindMethod(module_, request.path);
    const auto* problem = std::get_if<FrameworkError>(&method);
    if (problem == nullptr) {
        RefuseHttpMethod(response, "POST");
    } else if (*problem != FrameworkError::kNotFound) {
        Write(response, ReplyFor(*problem));
    } else {
        AnswerPage(request, response);
    }
}

void Routes::AnswerPage(const httplib::Request& request, httplib::Response& response) {
    const Page* page = FindPage(request);
    const std::string methods = page == nullptr ? MethodsAt(request.path) : "";
    if (page != nullptr && page->needsToken && !IsAuthorized(request)) {
        AnswerNotAuthorized(response);
    } else if (page != nullptr) {
        (this->*page->answer)(request, response);
    } else if (methods.empty()) {
        Write(response, ReplyFor(FrameworkError::kNotFound));
    } else {
        RefuseHttpMethod(response, methods);
    }
}

void Routes::AnswerPost(const httplib::Request& request, httplib::Response& response,
                        const httplib::ContentReader& reader) {
    const auto method = FindMethod(module_, request.path);
    if (const auto* row = std::get_if<std::int32_t>(&method)) {
        AnswerCall(*row, request, response, reader);
        return;
    }
    httplib::Request whole = request;
    if (auto refusal = ReadTextBody(request, reader, LimitsOf(request).textBytes, whole.body)) {
        AnnounceClose(response);
        Write(response, std::move(*refusal));
        return;
    }
    AnswerPage(whole, response);
}

void Routes::AnswerCall(std::int32_t row, const httplib::Request& request, httplib::Response& response,
                        const httplib::ContentReader& reader) {
    Request call;
    call.row = row;
    call.caller = CallerOf(request);
    call.cookies = request.get_header_value("Cookie");
    Uploads uploads(uploadArea_, AnnouncedSize(request));
    if (auto refusal = ReadBody(request, reader, LimitsOf(request), uploads, call)) {
        AnnounceClose(response);
        Write(response, std::move(*refusal));
        return;
    }
    const std::string requestId = GiveRequestId(response);
    UniqueFd connection;
    Reply reply = client_.Call(requestId, call, connection);
    if (IsSuccess(reply)) {
        uploads.Keep();
    }
    RecordOperation(module_.Rows().at(static_cast<std::size_t>(row)).method, requestId, reply,
                    std::move(connection));
    Write(response, std::move(reply));
}

void Routes::RecordOperation(const std::string& method, const std::string& requestId, const Reply& reply,
                             UniqueFd connection) {
    if (IsDetached(method) && IsSuccess(reply)) {
        operations_.Follow(requestId, std::move(connection));
    } else if (IsOperation(method)) {
        RecordAnswered(requestId, reply);
    }
}

void Routes::AnswerConsole(const httplib::Request& request, httplib::Response& response) {
    if (!consoleFiles_.Answer(request.path, request, response)) {
        Write(response, ReplyFor(FrameworkError::kNotFound));
    }
}

// A session must not beget further ones.
void Routes::AnswerMakeSignInCode(const httplib::Request& request, httplib::Response& response) {
    if (CallerOf(request) == Caller::kClient) {
        Write(response, signIn_.MakeCode());
    } else {
        AnswerNotAuthorized(response);
    }
}

// Somebody else's page must not use up wrong codes, and with them the right ones.
void Routes::AnswerSignIn(const httplib::Request& request, httplib::Response& response) {
    if (request.has_header("Origin") && !IsOfConsole(request)) {
        AnswerNotAuthorized(response);
        return;
    }
    std::string cookie;
    Write(response, signIn_.Begin(request.body, cookie));
    if (!cookie.empty()) {
        response.set_header(kSetCookie, cookie);
    }
}

void Routes::AnswerSignOut(const httplib::Request& request, httplib::Response& response) {
    const std::string cookie = IsOfConsole(request) ? request.get_header_value("Cookie") : "";
    Write(response, SuccessReply(Json::Value()));
    response.set_header(kSetCookie, signIn_.Sessions().End(cookie));
}

void Routes::AnswerAppliance(const httplib::Request& /*request*/, httplib::Response& response) {
    Write(response, ReplyWithAppliance());
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

// A document of its own form, without the envelope.
void Routes::AnswerOpenApi(const httplib::Request& /*request*/, httplib::Response& response) {
    Write(response, {200, ToRawJsonText(interface::OpenApiDocument())});
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

void Routes::AnswerOperationLog(const httplib::Request& request, httplib::Response& response) {
    Write(response, ReplyWithOperationLog(request));
}

void Routes::AnswerPrograms(const httplib::Request& request, httplib::Response& response) {
    Write(response, ReplyWithPrograms(request));
}

void Routes::AnswerReleases(const httplib::Request& /*request*/, httplib::Response& response) {
    Write(response, ReplyWithReleases());
}

void Routes::AnswerDownloads(const httplib::Request& /*request*/, httplib::Response& response) {
    Write(response, ReplyWithDownloads());
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
        [this, request, stream, next = std::move(snapshot)](std::size_t, httplib::DataSink& sink) mutable {
            const std::string text = next.empty() ? stream->Next() : std::exchange(next, "");
            if (text.empty() || !IsAuthorized(request)) {
                sink.done();
                return true;
            }
            return sink.write(text.data(), text.size());
        });
}

void Routes::AnswerMakeCode(const httplib::Request& request, httplib::Response& response) {
    Write(response, pairing_.MakeCode(request.body));
}

void Routes::AnswerRedeemCode(const httplib::Request& request, httplib::Response& response) {
    Write(response, pairing_.RedeemCode(request.body));
}

void Routes::AnswerConfirm(const httplib::Request& request, httplib::Response& response) {
    Write(response, pairing_.Confirm(request.body));
}

void Routes::AnswerKeepHost(const httplib::Request& request, httplib::Response& response) {
    Write(response, Pairing::KeepHost(request.body));
}

void Routes::AnswerPairs(const httplib::Request& /*request*/, httplib::Response& response) {
    Write(response, Pairing::List());
}

void Routes::AnswerForget(const httplib::Request& request, httplib::Response& response) {
    Write(response, pairing_.Forget(request.get_param_value("name")));
}

// Takes no place of a request: the server that is called may call this one for its part.
void Routes::AnswerRelay(const httplib::Request& request, httplib::Response& response) {
    Write(response, Relay(*FindRelayTarget(request.path), request.body, GiveRequestId(response),
                          std::chrono::seconds(options_.requestTimeS)));
}

std::size_t Routes::BodyLimit(const httplib::Request& request) const {
    return LimitsOf(request).TotalBytes(request);
}

// What a stranger may have parsed or stored before the module refuses it is little.
BodyLimits Routes::LimitsOf(const httplib::Request& request) const {
    if (IsAuthorized(request)) {
        return {options_.bodyLimitBytes, options_.uploadLimitBytes};
    }
    return {std::min(options_.bodyLimitBytes, options_.strangerBodyLimitBytes),
            std::min(options_.uploadLimitBytes, options_.strangerBodyLimitBytes)};
}

Caller Routes::CallerOf(const httplib::Request& request) const {
    const Caller caller = credentials_.Identify(request.get_header_value("Authorization"));
    const bool isConsole = caller == Caller::kStranger && IsOfConsole(request) &&
                           signIn_.Sessions().IsCarriedBy(request.get_header_value("Cookie"));
    return isConsole ? Caller::kConsole : caller;
}

// To all that the host serves itself.
bool Routes::IsAuthorized(const httplib::Request& request) const {
    const Caller caller = CallerOf(request);
    return caller == Caller::kClient || caller == Caller::kConsole;
}

}  // namespace host
