// What requests do to the add-ons, from begin to end, for those who watch it or look back.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace camvora {

class Store;

inline constexpr int kOperationsKept = 10000;

// The outcomes; "running" before that.
inline constexpr char kOperationDone[] = "done";
inline constexpr char kOperationFailed[] = "failed";
inline constexpr char kOperationCancelled[] = "cancelled";
inline constexpr char kOperationLost[] = "lost";  // nobody was there to see its end

struct OperationEnd {
    std::string outcome;
    std::string toVersion;  // what it leads to; empty where that is no version, or not known
    int code = 0;           // of the error that was answered
    std::string problem;    // in words; empty where there are none
};

struct Operation {
    long long id = 0;  // grows by the order of the begins, never used twice
    std::string requestId;
    std::string who;  // made the request, see requestorigin.h
    std::string method;
    int service = 0;
    std::string fromVersion;   // what was installed when it began; empty for nothing
    std::string begin;         // UTC, as in "2026-03-01T12:00:00.123Z"
    long long durationMs = 0;  // so far, while it runs; 0 where its end was not seen
    OperationEnd end;
};

// Tells that the request of this process is an operation. It is recorded as soon as it is known who has made
// the request. Called by the request process before the handler.
void PlanOperation(const std::string& method, int service);

// Records the planned operation as running; does nothing where none is planned, or it is recorded already.
void BeginPlannedOperation();

// Records the version to which the running operation of this process will lead, where that is known before
// its end. Called by the process that works for it, with the store that it has open.
void SetOperationVersion(Store& store, const std::string& version);

// Records the end of the running operation that the request `requestId` is, if it is one.
void EndOperation(const std::string& requestId, const OperationEnd& end);

// What is installed of the service: a version, empty where that is nothing.
std::string InstalledVersion(int service);

// Records that all running operations have ended unseen. Called when the host starts.
void LoseRunningOperations();

// The id of the newest operation, 0 when there is none yet. Throws std::exception when the store cannot be
// read, as do the next four.
long long LastOperationId();

// At most `limit` of those with ids above `id`, in the order of their begins.
std::vector<Operation> OperationsAfter(long long id, int limit);
std::vector<Operation> RunningOperations();
std::optional<Operation> FindOperation(long long id);
std::optional<Operation> FindOperation(const std::string& requestId);

}  // namespace camvora
