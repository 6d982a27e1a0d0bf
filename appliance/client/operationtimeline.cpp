#include "client/operationtimeline.h"

#include "client/appliance.h"
#include "client/jsontext.h"
#include "client/localtime.h"
#include "client/operationlog.h"
#include "client/operationrecord.h"
#include "client/plainwords.h"
#include "client/programruns.h"
#include "client/table.h"

#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

namespace client {
namespace {

Json::Value Moment(const std::string& time, const char* kind, const std::string& text) {
    Json::Value moment;
    moment["time"] = time;
    moment["kind"] = kind;
    moment["text"] = text;
    return moment;
}

std::string TimeOf(const Json::Value& item) {
    return LeafText(Member(item, "time"));
}

std::string LogText(const Json::Value& line) {
    return LeafText(Member(line, "function")) + ": " + LeafText(Member(line, "text"));
}

std::vector<Json::Value> MomentsOf(const Appliance& host, const std::string& requestId) {
    std::vector<Json::Value> moments;
    for (const Json::Value& line : host.Log(requestId)) {
        moments.push_back(Moment(TimeOf(line), "log", LogText(line)));
    }
    for (const Json::Value& program : host.Programs(requestId)) {
        moments.push_back(Moment(TimeOf(program), "program", ProgramText(program)));
    }
    for (const Json::Value& entry : host.LogEntriesOf(requestId)) {
        moments.push_back(Moment(TimeOf(entry), "entry", EntryText(entry)));
    }
    // All times are of the same form and in UTC.
    std::stable_sort(moments.begin(), moments.end(), [](const Json::Value& one, const Json::Value& other) {
        return TimeOf(one) < TimeOf(other);
    });
    return moments;
}

Json::Value EndOf(const Json::Value& operation) {
    const std::chrono::milliseconds duration(Member(operation, "durationMs").asInt64());
    return Moment(TimeAfter(LeafText(Member(operation, "begin")), duration),
                  IsRunning(operation) ? "now" : "end",
                  OutcomeWords(operation) + " after " + DurationWords(duration));
}

}  // namespace

Json::Value TimelineOf(const Appliance& host, const Json::Value& operation) {
    Json::Value timeline(Json::arrayValue);
    timeline.append(
        Moment(LeafText(Member(operation, "begin")), "begin",
               LeafText(Member(operation, "method")) + " by " + LeafText(Member(operation, "who"))));
    for (const Json::Value& moment : MomentsOf(host, LeafText(Member(operation, "request")))) {
        timeline.append(moment);
    }
    if (Member(operation, "durationMs").isInt64()) {  // else nobody saw its end
        timeline.append(EndOf(operation));
    }
    return timeline;
}

Table TimelineTable(const Json::Value& timeline) {
    Table table({"Time", "What", "Text"});
    table.KeepWhole();
    for (const Json::Value& moment : timeline) {
        table.AddRow({LocalTime(TimeOf(moment), "%H:%M:%S", true), LeafText(Member(moment, "kind")),
                      LeafText(Member(moment, "text"))});
    }
    return table;
}

}  // namespace client
