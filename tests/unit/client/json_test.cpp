// "--json": what every command writes is as its schema says.
#include "support/jsonschema.h"
#include "support/packages.h"

#include "usualreplies.h"

#include <gtest/gtest.h>
#include <json/reader.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <sstream>

namespace {

const std::string kDescription =
    R"({"service":1,"name":"DP","shortName":"device_pack","status":1,"statusName":"started","blRunning":true,)"
    R"("version":"2.2-1","blHasPackages":true,"blFactoryCopy":true,"blAutoUpdate":true,"pid":8,"since":"T"})";
const std::string kLogEntry =
    R"({"id":4,"time":"T","request":"r1","who":"client","event":7,"number":0,"texts":["a","",""]})";
const std::string kDoneOperation =
    R"({"id":12,"request":"r1","who":"client","method":"Update","service":1,"fromVersion":"2.1-9",)"
    R"("toVersion":"2.2-1","outcome":"done","begin":"2026-03-01T12:03:07.123Z","durationMs":5,"code":0,)"
    R"("problem":""})";
const std::string kDownloadRecord =
    R"({"downloads":[{"service":1,"version":"2.2-1","status":2,"bytes":1,"size":4,"problem":""}]})";
const std::string kEventStream = "id: 4\nevent: snapshot\ndata: {\"lastNotification\":4,\"services\":[" +
                                 kDescription +
                                 "]}\n\nevent: state\ndata: {\"services\":[]}\n\n"
                                 "id: 5\nevent: notification\ndata: "
                                 "{\"id\":5,\"time\":\"T\",\"type\":24,\"texts\":[\"1\",\"1\",\"0\"]}\n\n";

FakeReplies RepliesForAll() {
    return Usual({
        {"List", Success(R"({"list":[{"service":1,"info":)" + kDescription + "}]}")},
        {"GetInfo", Success(kDescription)},
        {"GetAppsStatus", Success(R"({"appsStatus":{"a":{"title":"A","path":"a","blEnabled":true}}})")},
        {"GET /api",
         Success(R"({"apis":[{"api":"ORVA.Camvora.AddOns","version":1,"methods":["List","X"]}]})")},
        {"GET /downloads", Success(kDownloadRecord)},
        {"GET /operationlog", Success(R"({"entries":[)" + kLogEntry + "]}")},
        {"GET /operationlog?after=4", Success(R"({"entries":[]})")},
        {"GET /operationlog?request=r1", Success(R"({"entries":[)" + kLogEntry + "]}")},
        {"GET /operations", Success(R"({"operations":[)" + kDoneOperation + "]}")},
        {"GET /operations?id=12", Success(R"({"operations":[)" + kDoneOperation + "]}")},
        {"GET /operations?request=r1", Success(R"({"operations":[)" + kDoneOperation + "]}")},
        {"GET /events", InTurn({{200, kEventStream, "", false, "text/event-stream"},
                                {200, ": here\n\n", "", true, "text/event-stream"}})},
        {"GET /pairs", Success(R"({"pairs":[{"name":"r","role":"server","address":"http://r:1"}]})")},
        {"POST /pairing/codes", Success(R"({"code":"A-B","validS":600})")},
        {"POST /pairing", Success(R"({"name":"r","secretIn":"a","secretOut":"b"})")},
        {"POST /session/codes", Success(R"({"code":"A-B","validS":600})")},
    });
}

struct JsonCase {
    std::string command;
    std::string line;          // "@" stands for the folder with files, "%" for the appliance's address
    FakeReplies replies = {};  // other than those above
    bool isStream = false;     // it is interrupted when it has asked twice
    std::size_t documents = 1;
};

const JsonCase kJsonCases[] = {
    {"list", "list"},
    {"status", "status 1"},
    {"start", "start device_pack"},
    {"stop", "stop 1 --no-wait"},
    {"restart", "restart 1 --no-wait"},
    {"apps", "apps"},
    {"updates", "updates"},
    {"update", "update 1 --yes"},
    {"update", "update 1 --dry-run"},
    {"update", "update 1 --yes", {{"CheckUpdateInfo", Success(R"({"status":1})")}}},
    {"download", "download 1"},
    {"download", "download 1", {{"CheckUpdateInfo", Success(R"({"status":3})")}}},
    {"cancel", "cancel 1"},
    {"auto-update", "auto-update 1 on"},
    {"restore", "restore 1 --dry-run"},
    {"restore", "restore 1 --yes"},
    {"install", "install @/x.spk --dry-run"},
    {"install", "install @/x.spk --yes"},
    {"upload", "upload @/x.spk 1"},
    {"check", "check @/x.spk"},
    {"pkg build", "pkg build @/source -o @/y.spk"},
    {"feed key", "feed key @/new.key"},
    {"feed build", "feed build @/feed --key @/feed.key"},
    {"events", "events", {}, true, 2},
    {"operations", "operations"},
    {"operations", "operations 12"},
    {"wait", "wait r1"},
    {"log", "log"},
    {"log", "log r1"},
    {"log", "log --follow", {}, true},
    {"console", "console"},
    {"pair code", "pair code r"},
    {"pair join", "pair join % A-B"},
    {"pair list", "pair list"},
    {"pair remove", "pair remove r"},
    {"methods", "methods"},
    {"methods", "methods List"},
    {"call", "call List"},
    {"settings", "settings"},
    {"completion", "completion bash"},
    {"man", "man"},
    {"error", "status none"},
    {"error", "list --timeout 0"},
};

std::string Replaced(std::string line, char sign, const std::string& text) {
    const std::size_t place = line.find(sign);
    return place == std::string::npos ? line : Replaced(line.replace(place, 1, text), sign, text);
}

std::string SchemaOf(const std::string& command) {
    return std::string(SCHEMAS "/") + Replaced(command, ' ', "-") + ".json";
}

class JsonTest : public testing::TestWithParam<JsonCase> {
protected:
    JsonTest() {
        dir_.Write("x.spk", MakeDevicePack());
        dir_.Write("feed/x.spk", MakeDevicePack());
        dir_.Write("source/package.conf", std::string(kDevicePackInfo) + kGoodConf);
        dir_.Write("source/tree/a", "a");
        StartClient("feed key " + dir_.PathOf("feed.key")).Wait();
    }

    std::string Output() const {
        FakeReplies replies = RepliesForAll();
        for (const auto& [request, reply] : GetParam().replies) {
            replies[request] = reply;
        }
        FakeAppliance appliance(std::move(replies));
        const std::string files = Replaced(GetParam().line, '@', dir_.Path());
        const Program run = appliance.Start(Replaced(files, '%', appliance.Url()) + " --json");
        if (GetParam().isStream) {
            appliance.AwaitRequests(2);
            kill(run.Pid(), SIGINT);
        }
        return run.Wait().out;
    }

    TemporaryFolder dir_;
};

TEST_P(JsonTest, IsAsItsSchemaSays) {
    std::istringstream output(Output());
    std::size_t documents = 0;
    for (std::string line; std::getline(output, line); ++documents) {
        Json::Value document;
        std::istringstream(line) >> document;
        EXPECT_EQ("", SchemaProblems(document, SchemaOf(GetParam().command))) << line;
    }
    EXPECT_EQ(GetParam().documents, documents);
}

INSTANTIATE_TEST_SUITE_P(All, JsonTest, testing::ValuesIn(kJsonCases), [](const auto& c) {
    return Replaced(Replaced(c.param.command, ' ', "_"), '-', "_") + "_" + std::to_string(c.index);
});

TEST(JsonSchemaTest, CoverEveryCommand) {
    for (const std::string& command : AllCommands()) {
        EXPECT_TRUE(std::filesystem::exists(SchemaOf(command))) << command;
        EXPECT_TRUE(std::any_of(std::begin(kJsonCases), std::end(kJsonCases), [&command](const JsonCase& c) {
            return c.command == command;
        })) << command;
    }
}

}  // namespace
