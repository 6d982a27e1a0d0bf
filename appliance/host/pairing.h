// The pages by which a CMS host and a recording server are paired.
#pragma once

#include "host/frameworkerrors.h"
#include "host/pairingcodes.h"

#include <string>

namespace host {

// Each function answers a page, whose parameters are the JSON text `body`. Used by all threads of the HTTP
// process at once. Secrets are in no log.
class Pairing {
public:
    // On the host, for its owner: a one-time code for the recording server "name".
    Reply MakeCode(const std::string& body);

    // On the host, for whoever has a code: keeps the recording server at "address", and answers with the
    // secrets as that server has to keep them.
    Reply RedeemCode(const std::string& body);

    // On the recording server, for its owner: keeps its CMS host, which is to be called "name" here.
    static Reply KeepHost(const std::string& body);

    // The paired servers, without secrets.
    static Reply List();

    // Forgets the pairs called `name`.
    static Reply Forget(const std::string& name);

private:
    PairingCodes codes_;
};

}  // namespace host
