// The tables of the database.
//
//   settings       texts by key; a boolean one is "yes" or "no"
//   options        texts of the web user interface by number
//   services       the last recorded status of each service
//   cameras        the recording server that owns the camera; 0 is this one
//   pairs          paired servers: role "server" for a recording server paired with this host, "host" for
//                  the CMS host of this recording server, of which there is at most one; the secrets that the
//                  other side uses towards us (secret_in) and that we use towards it (secret_out); its
//                  address
//   operation_log  what the appliance's owner is told
//   schedule       when each of its lines was last due and followed, in seconds since 1970
//   notifications  what connected clients are told
//   programs       what was run for requests, and how it ended
//   downloads      the last download of each service: how far it has come (APP_DOWNLOAD_STATUS), its file,
//   how many
//                  bytes of it have arrived, and why it failed
//   feeds          of the feed of each service: the last index that was taken, what the server calls it, who
//                  has signed it, its serial; and what the last check found in it
#pragma once

#include <SQLiteCpp/Database.h>

namespace camvora {

// The version of the tables that the database holds; 0 for an empty one.
int SchemaVersion(SQLite::Database& database);

// The version that this build works with.
int CurrentSchemaVersion();

// Brings the tables from any older version to the current one, in one transaction. Throws std::exception
// with the database unchanged when that fails or when the database is of a newer version.
void UpdateSchema(SQLite::Database& database);

}  // namespace camvora
