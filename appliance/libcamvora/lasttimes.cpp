#include "libcamvora/lasttimes.h"

#include "libcamvora/store.h"

#include <SQLiteCpp/Statement.h>
#include <SQLiteCpp/VariadicBind.h>

#include <cstdint>

namespace camvora {

std::map<std::string, std::time_t> LastTimes() {
    std::map<std::string, std::time_t> times;
    TheStore().Query([&times](SQLite::Database& database) {
        SQLite::Statement statement(database, "SELECT line, last FROM schedule");
        while (statement.executeStep()) {
            times[statement.getColumn(0).getString()] =
                static_cast<std::time_t>(statement.getColumn(1).getInt64());
        }
    });
    return times;
}

bool KeepLastTimes(const std::map<std::string, std::time_t>& times) {
    return TheStore().Write([&times](SQLite::Database& database) {
        database.exec("DELETE FROM schedule");
        for (const auto& [line, last] : times) {
            SQLite::Statement statement(database, "INSERT INTO schedule(line, last) VALUES(?, ?)");
            SQLite::bind(statement, line, std::int64_t{last});
            statement.exec();
        }
    });
}

}  // namespace camvora
