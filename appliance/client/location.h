// Where the appliance is and what opens it.
#pragma once

#include <string>

namespace client {

// What the caller said; empty where nothing was said.
struct LocationOptions {
    std::string dir;        // the appliance's folder
    std::string url;        // instead of the address found in the folder
    std::string tokenFile;  // instead of the token found in the folder
};

struct Location {
    std::string url;    // "http://HOST:PORT"
    std::string token;  // empty when there is none to send
    std::string hint;   // how to get an appliance that does not answer to answer; may be empty
};

// What is wrong with the address `url`, which is to be as in "http://HOST:PORT"; empty for nothing.
std::string AddressProblem(const std::string& url);

// Finds the appliance.
//   programDir  the folder this program lies in: the appliance's where it holds a token and `options` name
//               no other
//   throws      Failure: kUsage when nothing says where the appliance is or the address is no http address,
//               kUnreachable when it is not running, kNotAuthorised when the token cannot be read
Location Locate(const LocationOptions& options, const std::string& programDir);

// The appliance's folder, empty when nothing says where it is; arguments as above. Throws Failure
// (kUnreachable) when it is no folder.
std::string LocateFolder(const LocationOptions& options, const std::string& programDir);

// The folder of the running program; empty when the system does not tell.
std::string ProgramDir();

}  // namespace client
