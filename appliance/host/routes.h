// What the host serves at which path.
#pragma once

#include "host/consolefiles.h"
#include "host/credentials.h"
#include "host/events.h"
#include "host/module.h"
#include "host/operationwatch.h"
#include "host/options.h"
#include "host/pairing.h"
#include "host/requestbody.h"
#include "host/requestclient.h"
#include "host/signin.h"
#include "host/uploadarea.h"

#include <httplib.h>

#include <cstdint>
#include <string>

namespace host {

// Answers HTTP requests. Used by all threads of the HTTP process at once.
class Routes {
public:
    // All references stay the caller's.
    Routes(const Module& module, const Credentials& credentials, const Options& options,
           const UploadArea& uploadArea, RequestClient& client, EventHub& events);

    // Has `server` answer its requests here. This object outlives the server.
    void AddTo(httplib::Server& server);

    // The size limit of the request's body, in bytes.
    std::size_t BodyLimit(const httplib::Request& request) const;

private:
    using Answer = void (Routes::*)(const httplib::Request&, httplib::Response&);
    struct Page;
    static const Page kPages[];
    static const Page* FindPage(const httplib::Request& request);
    static std::string MethodsAt(const std::string& path);

    httplib::Server::HandlerResponse AnswerEarly(const httplib::Request& request,
                                                 httplib::Response& response);
    void AnswerWithoutBody(const httplib::Request& request, httplib::Response& response);
    void AnswerPage(const httplib::Request& request, httplib::Response& response);
    void AnswerPost(const httplib::Request& request, httplib::Response& response,
                    const httplib::ContentReader& reader);
    void AnswerCall(std::int32_t row, const httplib::Request& request, httplib::Response& response,
                    const httplib::ContentReader& reader);

    void AnswerConsole(const httplib::Request& request, httplib::Response& response);
    void AnswerMakeSignInCode(const httplib::Request& request, httplib::Response& response);
    void AnswerSignIn(const httplib::Request& request, httplib::Response& response);
    void AnswerSignOut(const httplib::Request& request, httplib::Response& response);
    void AnswerAppliance(const httplib::Request& request, httplib::Response& response);
    void AnswerApis(const httplib::Request& request, httplib::Response& response);
    void AnswerHealth(const httplib::Request& request, httplib::Response& response);
    void AnswerOpenApi(const httplib::Request& request, httplib::Response& response);
    void AnswerLog(const httplib::Request& request, httplib::Response& response);
    void AnswerOperations(const httplib::Request& request, httplib::Response& response);
    void AnswerOperationLog(const httplib::Request& request, httplib::Response& response);
    void AnswerPrograms(const httplib::Request& request, httplib::Response& response);
    void AnswerReleases(const httplib::Request& request, httplib::Response& response);
    void AnswerDownloads(const httplib::Request& request, httplib::Response& response);
    void AnswerEvents(const httplib::Request& request, httplib::Response& response);
    void AnswerMakeCode(const httplib::Request& request, httplib::Response& response);
    void AnswerRedeemCode(const httplib::Request& request, httplib::Response& response);
    void AnswerConfirm(const httplib::Request& request, httplib::Response& response);
    void AnswerKeepHost(const httplib::Request& request, httplib::Response& response);
    void AnswerPairs(const httplib::Request& request, httplib::Response& response);
    void AnswerForget(const httplib::Request& request, httplib::Response& response);
    void AnswerRelay(const httplib::Request& request, httplib::Response& response);

    void RecordOperation(const std::string& method, const std::string& requestId, const Reply& reply,
                         UniqueFd connection);
    bool TakesBody(const httplib::Request& request) const;
    BodyLimits LimitsOf(const httplib::Request& request) const;
    Caller CallerOf(const httplib::Request& request) const;
    bool IsAuthorized(const httplib::Request& request) const;

    const Module& module_;
    const Credentials& credentials_;
    const Options& options_;
    const UploadArea& uploadArea_;
    RequestClient& client_;
    EventHub& events_;
    const ConsoleFiles consoleFiles_;
    SignIn signIn_;
    Pairing pairing_;
    OperationWatch operations_;
};

}  // namespace host
