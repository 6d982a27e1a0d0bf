// Opening the database.
#pragma once

#include <SQLiteCpp/Database.h>

#include <string>

namespace camvora {

// Opens the database at `path`; makes it (with mode 0600) and its folder if absent, and brings its tables up
// to date. Several processes may do so at once.
//   busyLimitMs  the longest wait of each statement for other processes
// Throws std::exception when it cannot be opened, is no database, or is of a newer version.
// The connection is for one process and one thread at a time; it must not be carried across a fork.
SQLite::Database OpenDatabase(const std::string& path, int busyLimitMs);

}  // namespace camvora
