#include "fake/json.h"
#include "fake/script.h"

#include "cases.h"

#include <gtest/gtest.h>

#include <string>

namespace {

struct StatusCase {
    const char* name;
    ORVA::RequestContent request;
    const char* answers;
    Steps steps;  // after the admission
};

Steps Info(const std::string& service, const std::string& info) {
    return {"GetParam service 0", "GetServiceInfo " + service, "SetSuccess " + info};
}

Steps Apps(const std::string& language, const std::string& status) {
    return {R"(GetParam lang "")", "CVJsConfigParser " + language, "CVJsConfigParser::Parse",
            "CVJsConfigParser::GetAppsStatus", "SetSuccess {\"appsStatus\":" + status + "}"};
}

const StatusCase kStatusCases[] = {
    {"info_without_service", fake::Authorized("GetInfo"), R"({"GetServiceInfo":{}})", Info("0", "{}")},
    {"info", fake::Authorized("GetInfo", R"({"service":6})"), R"({"GetServiceInfo":{"a":[1]}})",
     Info("6", R"({"a":[1]})")},
    {"info_of_number_below_all", fake::Authorized("GetInfo", R"({"service":-1})"),
     R"({"GetServiceInfo":null})", Info("-1", "null")},
    {"info_of_largest_number", fake::Authorized("GetInfo", R"({"service":2147483647})"),
     R"({"GetServiceInfo":"odd"})", Info("2147483647", R"("odd")")},

    {"apps", fake::Authorized("GetAppsStatus", R"({"lang":"de"})"),
     R"({"CVJsConfigParser::GetAppsStatus":{"a":1}})", Apps("de", R"({"a":1})")},
    {"apps_after_failed_parse", fake::Authorized("GetAppsStatus"),
     R"({"CVJsConfigParser::Parse":false,"CVJsConfigParser::GetAppsStatus":null})", Apps("''", "null")},
};

using Status = TableTest<StatusCase>;

TEST_P(Status, PassesOnWhatThePlatformSays) {
    fake::AnswerEach(GetParam().answers);
    ExpectCalls(GetParam().request, GetParam().steps);
}

INSTANTIATE_TEST_SUITE_P(, Status, testing::ValuesIn(kStatusCases), CaseName<StatusCase>);

// Six answers of six kinds, to see that each goes on as it is and none is asked for twice.
TEST(List, DescribesEachServiceOnceInOrder) {
    const fake::Session session;
    for (const char* info : {R"({"a":1})", "null", "3", R"("four")", "[5]", "{}"}) {
        fake::AnswerOnce("GetServiceInfo", fake::ParseJson(info));
    }
    const std::string list = R"({"info":{"a":1},"service":1},{"info":null,"service":2},)"
                             R"({"info":3,"service":3},{"info":"four","service":4},)"
                             R"({"info":[5],"service":5},{"info":{},"service":6})";
    ExpectCalls(fake::Authorized("List"),
                {"GetServiceInfo 1", "GetServiceInfo 2", "GetServiceInfo 3", "GetServiceInfo 4",
                 "GetServiceInfo 5", "GetServiceInfo 6", R"(SetSuccess {"list":[)" + list + "]}"});
}

}  // namespace
