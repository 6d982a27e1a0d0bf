#include "client/failure.h"

#include "client/jsontext.h"
#include "client/loglines.h"
#include "client/table.h"
#include "client/terminaltext.h"

namespace client {
namespace {

std::string Details(const Json::Value& data) {
    Table table;
    for (const Leaf& leaf : Leaves(data)) {
        if (leaf.path != "text") {  // stands in the sentence
            table.AddRow({leaf.path, leaf.text});
        }
    }
    return data.empty() ? "" : table.Text();
}

std::string LogText(const Json::Value& log) {
    Table table;
    AddLogLines(table, log);
    return log.empty() ? "" : "The appliance logged:\n" + table.Text();
}

}  // namespace

std::string FailureText(const Failure& failure) {
    std::string text = "camvoractl: " + Printable(failure.what()) + "\n" + Details(failure.data);
    if (!failure.requestId.empty()) {
        text += "The request was " + Printable(failure.requestId) + "\n";
    }
    return text + LogText(failure.log);
}

Json::Value FailureDocument(const Failure& failure) {
    Json::Value document;
    Json::Value& error = document["error"];
    error["status"] = static_cast<int>(failure.status);
    error["text"] = failure.what();
    error["code"] = failure.code;
    error["data"] = failure.data;
    error["request"] = failure.requestId;
    error["log"] = failure.log.isArray() ? failure.log : Json::Value(Json::arrayValue);
    return document;
}

}  // namespace client
