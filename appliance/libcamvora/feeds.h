// What is known of the feed of each service.
#pragma once

#include "libcamvora/checkedreleases.h"
#include "platform/services.h"

#include <SQLiteCpp/Database.h>

#include <optional>
#include <string>
#include <vector>

namespace camvora {

struct Feed {
    std::string url;    // of the index
    std::string keyId;  // of the key that has signed it
    long long serial = 0;
    std::string etag;  // the server's names for this state of the index; empty when it gave none
    std::string lastModified;
    std::string index;  // the whole file
    CheckedRelease newest;
};

// What the last successful check of the service kept; nothing when there was none.
// These throw std::exception when the database cannot be read or written.
std::optional<Feed> FindFeed(SQLite::Database& database, ADDON_SERVICE service);

// Called inside a transaction.
void KeepFeed(SQLite::Database& database, ADDON_SERVICE service, const Feed& feed);

std::vector<CheckedService> CheckedServices(SQLite::Database& database);

}  // namespace camvora
