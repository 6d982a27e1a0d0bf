// What platform functions read from the database, at one moment.
#pragma once

#include <SQLiteCpp/Database.h>

#include <map>
#include <string>
#include <vector>

namespace camvora {

inline constexpr char kServerRole[] = "server";  // a recording server that is paired with this host
inline constexpr char kHostRole[] = "host";      // the CMS host of this recording server

// A paired server.
struct Pair {
    std::string name;  // as it is called here
    std::string role;
    std::string address;    // "http://HOST:PORT"
    std::string secretIn;   // what the other side uses towards us
    std::string secretOut;  // what we use towards it
};

struct State {
    std::map<std::string, std::string> settings;
    std::map<int, std::string> options;
    std::map<int, int> statuses;      // by service
    std::map<int, int> cameraOwners;  // by camera
    std::vector<Pair> pairs;
};

// Reads all of it. Inside a transaction of the caller it is of one moment. Throws std::exception when it
// cannot be read.
State ReadState(SQLite::Database& database);

}  // namespace camvora
