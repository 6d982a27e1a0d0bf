// An appliance's folder and host, and camvoractl run against them.
#pragma once

#include "fakehost.h"
#include "programrun.h"
#include "support/temporaryfolder.h"

#include <map>
#include <string>
#include <vector>

// The name of the address file below an appliance's folder.
inline constexpr char kAddressFile[] = "var/packages/Camvora/target/@CVData/run/address";

inline constexpr char kList[] = "POST /api/ORVA.Camvora.AddOns/v1/List";
inline constexpr char kGetInfo[] = "POST /api/ORVA.Camvora.AddOns/v1/GetInfo";
inline constexpr char kGetApps[] = "POST /api/ORVA.Camvora.AddOns/v1/GetAppsStatus";
inline constexpr char kRestart[] = "POST /api/ORVA.Camvora.AddOns/v1/Restart";
inline constexpr char kEnable[] = "POST /api/ORVA.Camvora.AddOns/v1/Enable";
inline constexpr char kDisable[] = "POST /api/ORVA.Camvora.AddOns/v1/Disable";
inline constexpr char kCheckDone[] = "POST /api/ORVA.Camvora.AddOns/v1/CheckEnableDone";
inline constexpr char kEvents[] = "GET /events";
inline constexpr char kMethods[] = "GET /api";
inline constexpr char kLog[] = "GET /log?request=r1";

// The reply of request "r1" with that JSON as its data, or as its error.
FakeReply Success(const std::string& data);
FakeReply Error(int httpStatus, const std::string& error);

// These replies one after the other; there is at least one.
FakeReply InTurn(const std::vector<FakeReply>& replies);

class FakeAppliance {
public:
    // The token is "secret".
    explicit FakeAppliance(std::map<std::string, FakeReply> replies);

    const std::string& Dir() const { return dir_.Path(); }
    FakeHost& Host() { return host_; }

    // Runs camvoractl in UTC, with CAMVORA_DIR naming this appliance; `line` is split at blanks. In what the
    // program writes, the host's address is replaced by "URL".
    Outcome Run(const std::string& line) const;

    // Starts it in the same way.
    ProgramRun Start(const std::string& line) const;

private:
    FakeHost host_;
    TemporaryFolder dir_;
};
