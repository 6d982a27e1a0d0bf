// Plays the appliance, over HTTP and with a folder: answers what a test wants, well-formed or not.
#pragma once

#include "support/program.h"
#include "support/temporaryfolder.h"

#include <httplib.h>

#include <condition_variable>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

// The name of the address file below an appliance's folder.
inline constexpr char kAddressFile[] = "var/packages/Camvora/target/@CVData/run/address";

// The log of the request that "Success" and "Error" answer.
inline constexpr char kLog[] = "GET /log?request=r1";

struct FakeReply {
    int status = 200;
    std::string body;
    std::string requestId = "";
    bool isEndless = false;  // the body repeats, slowly, as long as somebody listens
    std::string type = "application/json";
    std::vector<FakeReply> next = {};  // to the same request again; the last one stays
};

// The reply of request "r1" with that JSON as its data, or as its error.
FakeReply Success(const std::string& data);
FakeReply Error(int httpStatus, const std::string& error);

// These replies one after the other; there is at least one.
FakeReply InTurn(const std::vector<FakeReply>& replies);

// By the method of the module, or by "METHOD /path?query". Everything else is done, with nothing to report.
using FakeReplies = std::map<std::string, FakeReply>;

// Starts camvoractl; `line` is split at blanks.
Program StartClient(const std::string& line, const std::vector<std::string>& environment = {});

// What a shell is offered in place of the last word of the line, "" for an empty one.
std::vector<std::string> Offered(const std::string& line, const std::string& last,
                                 const std::vector<std::string>& environment = {});

// All commands, and of those that have some below them these, as in "pkg build".
std::vector<std::string> AllCommands();

// Listens on a free loopback port while it lives. The token is "secret".
class FakeAppliance {
public:
    explicit FakeAppliance(FakeReplies replies);
    ~FakeAppliance();
    FakeAppliance(const FakeAppliance&) = delete;
    FakeAppliance& operator=(const FakeAppliance&) = delete;

    // Its folder.
    const std::string& Dir() const { return dir_.Path(); }

    // "http://127.0.0.1:PORT".
    const std::string& Url() const { return url_; }

    // The same in UTC, with CAMVORA_DIR naming this appliance.
    Program Start(const std::string& line) const;

    // The same until its end.
    Outcome Run(const std::string& line) const { return Start(line).Wait(); }

    // What a shell makes of the script, in which the client is "camvoractl".
    Outcome RunInShell(const std::string& script) const;

    // The client at a terminal of 70 columns, on which that was typed. All that it shows is the standard
    // output.
    //   settings  of its environment, as in "A=1 B=2"
    Outcome RunAtTerminal(const std::string& line, const std::string& typed = "",
                          const std::string& settings = "") const;

    // What arrived so far, one text each: the request named as above, "Authorization", and the body, the
    // files of a form as "field=name:content", or the "Last-Event-ID", with blanks between.
    std::vector<std::string> Requests();

    // These return when so many have arrived, or one that begins so.
    void AwaitRequests(std::size_t count);
    void AwaitRequest(const std::string& beginning);

private:
    void Answer(const httplib::Request& request, httplib::Response& response);
    FakeReply TakeReply(const httplib::Request& request);

    FakeReplies replies_;
    std::mutex mutex_;
    std::condition_variable arrived_;
    std::vector<std::string> requests_;
    TemporaryFolder dir_;
    std::string url_;
    httplib::Server server_;
    std::thread thread_;
};
