#include "client/programruns.h"

#include "client/appliance.h"
#include "client/failure.h"
#include "client/jsontext.h"

namespace client {
namespace {

constexpr char kMove[] = "/bin/mv";
constexpr char kUnpack[] = "/bin/tar";
constexpr char kTarget[] = "/var/packages/Camvora/target/";
constexpr char kAddOnScripts[] = "/script/";  // which an add-on may have or not

constexpr int kNoSuchProgram = -2;

// An array, whatever may have gone wrong.
Json::Value ProgramsOf(const Appliance& host, const std::string& requestId) {
    try {
        return host.HasRecords() ? host.Programs(requestId) : Json::Value(Json::arrayValue);
    } catch (const Failure&) {  // what is known without them has to do
        return Json::Value(Json::arrayValue);
    }
}

// Whether it moved a new tree to its place.
bool IsInstall(const Json::Value& program, const std::string& service) {
    const Json::Value arguments = Member(program, "arguments");
    return Member(program, "path") == kMove && arguments.isArray() && arguments.size() == 3 &&
           arguments[2] == kTarget + service;
}

bool IsFailed(const Json::Value& program) {
    const Json::Value exitStatus = Member(program, "exitStatus");
    const bool isScript = LeafText(Member(program, "path")).find(kAddOnScripts) != std::string::npos;
    return exitStatus != Json::Value(0) && (exitStatus != Json::Value(kNoSuchProgram) || !isScript);
}

std::string EndOf(const Json::Value& exitStatus) {
    if (exitStatus == Json::Value(kNoSuchProgram)) {
        return "is not there";
    }
    return exitStatus == Json::Value(-1) ? "could not be run or did not end by itself"
                                         : "ended with exit status " + LeafText(exitStatus);
}

}  // namespace

std::optional<std::chrono::milliseconds> LastInstallTime(const Appliance& host, const std::string& service) {
    const Json::Value programs = ProgramsOf(host, "");
    Json::Value request;
    for (const Json::Value& program : programs) {
        if (IsInstall(program, service)) {
            request = Member(program, "request");
        }
    }
    if (request.isNull()) {
        return std::nullopt;
    }
    std::chrono::milliseconds total{0};
    for (const Json::Value& program : programs) {
        const Json::Value durationMs = Member(program, "durationMs");
        if (Member(program, "request") == request && Member(program, "path") != kUnpack &&
            durationMs.isInt64()) {
            total += std::chrono::milliseconds(durationMs.asInt64());
        }
    }
    return total;
}

Json::Value FailedPrograms(const Appliance& host, const std::string& requestId) {
    Json::Value failed(Json::arrayValue);
    if (requestId.empty()) {
        return failed;
    }
    for (const Json::Value& program : ProgramsOf(host, requestId)) {
        if (IsFailed(program)) {
            failed.append(program);
        }
    }
    return failed;
}

std::string ProgramText(const Json::Value& program) {
    std::string text = LeafText(Member(program, "path"));
    for (const Json::Value& argument : Member(program, "arguments")) {
        text += " " + LeafText(argument);
    }
    return text + " " + EndOf(Member(program, "exitStatus"));
}

}  // namespace client
