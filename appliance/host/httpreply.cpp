#include "host/httpreply.h"

#include "host/bodysize.h"
#include "host/exceptiontype.h"
#include "host/frameworkerrors.h"
#include "host/requestids.h"

#include "libcamvora/requestid.h"
#include "platform/log.h"

#include <utility>

namespace host {

namespace {

using HandlerResponse = httplib::Server::HandlerResponse;

constexpr char kRequestId[] = "X-Request-Id";
constexpr char kNoSniff[] = "X-Content-Type-Options";
constexpr char kConnection[] = "Connection";

FrameworkError ErrorOf(int httpStatus) {
    switch (httpStatus) {
        case 404:
            return FrameworkError::kNotFound;
        case 413:
        case 414:
            return FrameworkError::kTooLarge;
        default:
            return FrameworkError::kBadRequest;
    }
}

HandlerResponse CompleteError(const httplib::Request& /*request*/, httplib::Response& response) {
    if (response.body.empty()) {
        AnnounceClose(response);
        Write(response, ReplyFor(ErrorOf(response.status)));
    }
    return HandlerResponse::Handled;
}

void CompleteHead(const httplib::Request& request, httplib::Response& response) {
    if (!response.has_header(kRequestId)) {
        GiveRequestId(response);
    }
    response.headers.erase(kNoSniff);
    response.set_header(kNoSniff, "nosniff");
    response.headers.erase("Keep-Alive");  // the library's own numbers do not hold
    if (FramingOf(request) != BodyFraming::kSized || response.has_header(kConnection)) {
        AnnounceClose(response);
    }
}

void AnswerException(const httplib::Request& /*request*/, httplib::Response& response,
                     const std::exception_ptr& exception) {
    const std::string given = response.get_header_value(kRequestId);
    camvora::SetRequestId(given.empty() ? GiveRequestId(response) : given);
    CVPrintf(0, nullptr, nullptr, "host", __LINE__, __func__, "Failed with an exception of type %s\n",
             TypeName(exception).c_str());
    camvora::SetRequestId("");
    AnnounceClose(response);
    Write(response, ReplyFor(FrameworkError::kHostFailed));
}

}  // namespace

void Write(httplib::Response& response, Reply reply) {
    response.status = reply.httpStatus;
    response.body = std::move(reply.body);
    response.set_header("Content-Type", "application/json");
}

std::string GiveRequestId(httplib::Response& response) {
    std::string id = NewRequestId();
    response.set_header(kRequestId, id);
    return id;
}

void AnnounceClose(httplib::Response& response) {
    response.headers.erase(kConnection);  // the library's own may stand there
    response.set_header(kConnection, "close");
}

void CompleteReplies(httplib::Server& server) {
    server.set_error_handler(httplib::Server::HandlerWithResponse(CompleteError));
    server.set_exception_handler(AnswerException);
    server.set_post_routing_handler(CompleteHead);
}

}  // namespace host
