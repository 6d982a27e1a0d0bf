// Central management: this server as a CMS host or as a recording server paired with one.
// Implemented by the package library; called in the request process.
#pragma once

#include <json/value.h>

#include <string>

// What a relay hook towards a CMS host works on. The module relays nothing and never looks inside.
struct CmsRelayParams;
struct CmsRelayTarget;

// True when this server is a CMS host.
bool IsCmsHost();

// True when this server is a recording server that is paired with a CMS host.
bool IsCmsPaired();

// The number of the recording server that owns the camera; 0 when it is this server's own.
int GetCamOwnerHxId(int cameraId);

// True when `cookie` proves that the caller is a recording server paired with this host and made the
// proof at `timestamp`, not long ago.
bool IsAuthPairMatch(const std::string& cookie, const std::string& timestamp);

// The same question asked by a recording server about its CMS host.
class SlaveHXAuthentication {
public:
    // True when `cookie` proves that the caller is the CMS host that this server is paired with and made
    // the proof at `timestamp`, not long ago.
    bool IsAuthByPairMatch(const std::string& cookie, const std::string& timestamp);
};

// A request object for SendWebAPIToHost, to which the caller adds the method's parameters as members.
Json::Value GetJsonAPIInfo(const std::string& api, const std::string& method, int version);

// Sends `request` to the paired CMS host and waits for the answer.
//   request     from GetJsonAPIInfo, with parameters
//   authorize   true: with the pair's credentials
//   reply       filled with the framework's reply object; untouched on failure
//   timeLimitS  the longest wait, in seconds
//   proxy       null for none
//   flags       0
//   returns     0 when a reply arrived, whatever it says
int SendWebAPIToHost(const Json::Value& request, bool authorize, Json::Value& reply, int timeLimitS,
                     const char* proxy, int flags);
