#include "libcamvora/state.h"

#include <SQLiteCpp/Statement.h>

namespace camvora {

namespace {

template <typename EachRow>
void ForEachRow(SQLite::Database& database, const char* query, EachRow eachRow) {
    SQLite::Statement statement(database, query);
    while (statement.executeStep()) {
        eachRow(statement);
    }
}

}  // namespace

State ReadState(SQLite::Database& database) {
    State state;
    ForEachRow(database, "SELECT key, value FROM settings", [&state](SQLite::Statement& row) {
        state.settings[row.getColumn(0).getString()] = row.getColumn(1).getString();
    });
    ForEachRow(database, "SELECT number, value FROM options", [&state](SQLite::Statement& row) {
        state.options[row.getColumn(0).getInt()] = row.getColumn(1).getString();
    });
    ForEachRow(database, "SELECT service, status FROM services", [&state](SQLite::Statement& row) {
        state.statuses[row.getColumn(0).getInt()] = row.getColumn(1).getInt();
    });
    ForEachRow(database, "SELECT camera, owner FROM cameras", [&state](SQLite::Statement& row) {
        state.cameraOwners[row.getColumn(0).getInt()] = row.getColumn(1).getInt();
    });
    ForEachRow(database, "SELECT name, role, address, secret_in, secret_out FROM pairs ORDER BY name, role",
               [&state](SQLite::Statement& row) {
                   state.pairs.push_back({row.getColumn(0).getString(), row.getColumn(1).getString(),
                                          row.getColumn(2).getString(), row.getColumn(3).getString(),
                                          row.getColumn(4).getString()});
               });
    return state;
}

}  // namespace camvora
