#include "host/programs.h"

#include "libcamvora/programlog.h"

namespace host {

namespace {

constexpr int kLimit = 1000;

Json::Value ToJson(const camvora::ProgramRun& run) {
    Json::Value entry(Json::objectValue);
    entry["id"] = Json::Int64{run.id};
    entry["time"] = run.time;
    entry["request"] = run.requestId;
    entry["path"] = run.path;
    entry["arguments"] = Json::Value(Json::arrayValue);
    for (const std::string& argument : run.arguments) {
        entry["arguments"].append(argument);
    }
    entry["exitStatus"] = run.exitStatus;
    entry["durationMs"] = Json::Int64{run.durationMs};
    entry["peakMemoryKiB"] = Json::Int64{run.peakMemoryKiB};
    return entry;
}

}  // namespace

Reply ReplyWithPrograms(const httplib::Request& request) {
    const std::string requestId = request.get_param_value("request");
    Json::Value data(Json::objectValue);
    data["programs"] = Json::Value(Json::arrayValue);
    for (const camvora::ProgramRun& run : camvora::ProgramRunsOf(requestId, kLimit)) {
        data["programs"].append(ToJson(run));
    }
    return SuccessReply(data);
}

}  // namespace host
