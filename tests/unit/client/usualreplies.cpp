#include "usualreplies.h"

namespace {

constexpr char kOldRuns[] =
    R"({"programs":[{"request":"u","path":"/bin/sleep","arguments":[],"durationMs":60000},)"
    R"({"request":"v","path":"/bin/tar","arguments":[],"durationMs":9000},)"
    R"({"request":"v","path":"/s/S82camvora.sh","arguments":["stop"],"durationMs":2400},)"
    R"({"request":"v","path":"/bin/mv","arguments":["-f","/w/device_pack",)"
    R"("/var/packages/Camvora/target/device_pack"],"durationMs":1100}]})";
constexpr char kRuns[] =
    R"({"programs":[{"path":"/d/script/preinst","arguments":[],"exitStatus":-2},)"
    R"({"time":"2026-03-01T12:03:08.000Z","path":"/bin/mv","arguments":["-f","\u001b"],"exitStatus":1},)"
    R"({"path":"/bin/rm","arguments":[],"exitStatus":0},)"
    R"({"path":"/d/script/postinst","arguments":[],"exitStatus":-1}]})";
constexpr char kReleases[] =
    R"({"releases":[{"service":1,"version":"2.2-1","date":"2026-11-25","notes":"Better","size":3145728}]})";
constexpr char kLines[] = R"({"lines":[{"time":"T","source":"s","line":9,"function":"F","text":"why"}]})";

std::string Entry(const std::string& description, bool isRunning) {
    return "{" + description + R"(,"blRunning":)" + (isRunning ? "true}}" : "false}}");
}

}  // namespace

FakeReplies Usual(const FakeReplies& others) {
    FakeReplies replies = {
        {"List", ServiceList(true, true)},
        {"GetInfo", InTurn({Installed("2.1-9"), Installed("2.2-1")})},
        {"CheckEnableDone", Success(R"({"blDone":true})")},
        {"CheckUpdateInfo", Success(R"({"status":2})")},
        {"DownloadProgress", InTurn({Progress(1), Progress(2)})},
        {"Upload", Success(R"({"pkgInfo":{"fileName":"a","filePath":"/u/1"}})")},
        {"GetPkgInfo", Success(R"({"version":"2.2-1","maintainer":"Me","filePath":"/w/"})")},
        {"GET /releases", Success(kReleases)},
        {"GET /downloads", Success(R"({"downloads":[]})")},
        {"GET /programs", Success(kOldRuns)},
        {"GET /programs?request=r1", Success(kRuns)},
        {"GET /operationlog?request=r1", Success(R"({"entries":[]})")},
        {kLog, Success(kLines)},
    };
    for (const auto& [request, reply] : others) {
        replies[request] = reply;
    }
    return replies;
}

FakeReply ServiceList(bool isDevicePackRunning, bool isDisplayRunning) {
    return Success(R"({"list":[)" +
                   Entry(R"("service":1,"info":{"shortName":"device_pack","name":"DP","blHasPackages":true)",
                         isDevicePackRunning) +
                   "," +
                   Entry(R"("service":6,"info":{"shortName":"local_display","name":"LD")", isDisplayRunning) +
                   "]}");
}

FakeReply Installed(const std::string& version) {
    return Success(R"({"version":")" + version + R"(","blFactoryCopy":true,"blAutoUpdate":false})");
}

FakeReply Progress(int status, const std::string& version) {
    return Success(R"({"version":"device_pack )" + version + R"(","percent":9,"status":)" +
                   std::to_string(status) + "}");
}
