#include "libcamvora/operations.h"

#include "libcamvora/requestid.h"
#include "libcamvora/requestorigin.h"
#include "libcamvora/store.h"
#include "libcamvora/utctime.h"
#include "platform/services.h"

#include <SQLiteCpp/Statement.h>
#include <SQLiteCpp/VariadicBind.h>

#include <cstdint>
#include <utility>

namespace camvora {

namespace {

struct Plan {
    std::string method;
    int service;
};

std::optional<Plan>& ThePlan() {
    static std::optional<Plan> plan;
    return plan;
}

// The index of those that run knows the condition only as it stands.
constexpr char kIsRunning[] = "outcome = 'running'";

// Until the time ?1; a day has as many milliseconds.
constexpr char kMsSinceBegin[] = "CAST(round((julianday(?1) - julianday(begin)) * 86400000) AS INTEGER)";

Operation OperationOf(const SQLite::Statement& row) {
    return {row.getColumn(0).getInt64(),
            row.getColumn(1).getString(),
            row.getColumn(2).getString(),
            row.getColumn(3).getString(),
            row.getColumn(4).getInt(),
            row.getColumn(5).getString(),
            row.getColumn(6).getString(),
            row.getColumn(7).getInt64(),
            {row.getColumn(8).getString(), row.getColumn(9).getString(), row.getColumn(10).getInt(),
             row.getColumn(11).getString()}};
}

// Those that fulfil `condition`, whose parameters are from ?2 on.
template <class... Values>
std::vector<Operation> Select(const std::string& condition, const Values&... values) {
    std::vector<Operation> operations;
    TheStore().Query([&](SQLite::Database& database) {
        SQLite::Statement statement(
            database, std::string("SELECT id, request, who, method, service, from_version, begin,"
                                  " CASE WHEN ") +
                          kIsRunning + " THEN " + kMsSinceBegin +
                          " ELSE duration_ms END, outcome, to_version, code, problem FROM operations WHERE " +
                          condition);
        SQLite::bind(statement, UtcTimeText(), values...);
        while (statement.executeStep()) {
            operations.push_back(OperationOf(statement));
        }
    });
    return operations;
}

template <class Value>
std::optional<Operation> SelectOne(const std::string& condition, const Value& value) {
    std::vector<Operation> found = Select(condition, value);
    return found.empty() ? std::nullopt : std::make_optional(std::move(found.back()));
}

}  // namespace

std::string InstalledVersion(int service) {
    return GetServiceInfo(static_cast<ADDON_SERVICE>(service))["version"].asString();
}

void PlanOperation(const std::string& method, int service) {
    ThePlan() = {method, service};
}

void BeginPlannedOperation() {
    const std::optional<Plan> plan = std::exchange(ThePlan(), std::nullopt);
    if (!plan) {
        return;
    }
    const std::string installed = InstalledVersion(plan->service);
    (void)TheStore().WriteLater([&](SQLite::Database& database) {  // a failure is in the log
        SQLite::Statement insert(database,
                                 "INSERT INTO operations(request, who, method, service, from_version, begin)"
                                 " VALUES(?, ?, ?, ?, ?, ?)");
        SQLite::bind(insert, RequestId(), RequestOrigin(), plan->method, plan->service, installed,
                     UtcTimeText());
        insert.exec();
        SQLite::Statement drop(database, "DELETE FROM operations WHERE id <= last_insert_rowid() - ?");
        drop.bind(1, kOperationsKept);
        drop.exec();
    });
}

void SetOperationVersion(Store& store, const std::string& version) {
    (void)store.WriteLater([&](SQLite::Database& database) {
        SQLite::Statement statement(
            database,
            std::string("UPDATE operations SET to_version = ? WHERE request = ? AND ") + kIsRunning);
        SQLite::bind(statement, version, RequestId());
        statement.exec();
    });
}

void EndOperation(const std::string& requestId, const OperationEnd& end) {
    (void)TheStore().WriteLater([&](SQLite::Database& database) {
        SQLite::Statement statement(database,
                                    std::string("UPDATE operations SET duration_ms = ") + kMsSinceBegin +
                                        ", outcome = ?2, to_version = ?3, code = ?4, problem = ?5 WHERE "
                                        "request = ?6 AND " +
                                        kIsRunning);
        SQLite::bind(statement, UtcTimeText(), end.outcome, end.toVersion, end.code, end.problem, requestId);
        statement.exec();
    });
}

void LoseRunningOperations() {
    (void)TheStore().WriteLater([](SQLite::Database& database) {
        SQLite::Statement statement(database,
                                    std::string("UPDATE operations SET outcome = ? WHERE ") + kIsRunning);
        SQLite::bind(statement, kOperationLost);
        statement.exec();
    });
}

long long LastOperationId() {
    long long id = 0;
    TheStore().Query([&id](SQLite::Database& database) {
        id = database.execAndGet("SELECT coalesce(max(id), 0) FROM operations").getInt64();
    });
    return id;
}

std::vector<Operation> OperationsAfter(long long id, int limit) {
    return Select("id > ?2 ORDER BY id LIMIT ?3", std::int64_t{id}, limit);
}

std::vector<Operation> RunningOperations() {
    return Select(kIsRunning + std::string(" ORDER BY id"));
}

std::optional<Operation> FindOperation(long long id) {
    return SelectOne("id = ?2", std::int64_t{id});
}

std::optional<Operation> FindOperation(const std::string& requestId) {
    return SelectOne("request = ?2", requestId);
}

}  // namespace camvora
