// The pages by which a CMS host and a recording server are paired.
#pragma once

#include "host/frameworkerrors.h"
#include "host/onetimecodes.h"

#include "libcamvora/pairs.h"

#include <chrono>
#include <map>
#include <mutex>
#include <string>

namespace host {

// Each function answers a page, whose parameters are the JSON text `body`. Used by all threads of the HTTP
// process at once. Secrets are in no log.
class Pairing {
public:
    // On the host, for its owner: a one-time code for the recording server "name".
    Reply MakeCode(const std::string& body);

    // On the host, for whoever has a code: makes a pair with the recording server at "address", and answers
    // with its name and the secrets as that server has to keep them. The host does not keep it yet.
    Reply RedeemCode(const std::string& body);

    // On the host, for the recording server "name" which has kept its pair, and shows its "secretOut": keeps
    // the pair.
    Reply Confirm(const std::string& body);

    // On the recording server, for its owner: keeps its CMS host, which is to be called "name" here.
    static Reply KeepHost(const std::string& body);

    // The paired servers, without secrets: "name", "role" and "address" of each.
    static Json::Value Pairs();
    static Reply List();

    // Forgets the pairs called `name`.
    Reply Forget(const std::string& name);

private:
    struct Made {
        camvora::Pair server;
        std::chrono::steady_clock::time_point until;  // it can be confirmed
    };

    void DropOutdated();  // with the mutex held

    OneTimeCodes codes_;
    std::mutex mutex_;
    std::map<std::string, Made> made_;  // by name; each can be confirmed again: its answer may be lost
};

}  // namespace host
