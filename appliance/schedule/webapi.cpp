#include "schedule/webapi.h"

#include "libcamvora/paths.h"
#include "libcamvora/plainfile.h"
#include "libcamvora/replytext.h"
#include "platform/files.h"

#include <httplib.h>
#include <json/value.h>

#include <thread>

namespace schedule {

namespace {

constexpr std::chrono::milliseconds kLookEvery{200};
constexpr std::chrono::hours kInstallLimit{3};  // the web framework gives up earlier
constexpr std::size_t kLineLimitBytes = 4096;
constexpr char kUpdatePath[] = "/api/ORVA.Camvora.AddOns/v1/Update";

std::string LineOf(const char* path) {
    const std::string text = camvora::ReadPlainFile(path, kLineLimitBytes).value_or("");
    return text.substr(0, text.find('\n'));
}

std::string Problem(const Json::Value& reply) {
    return "the answer was error " + JsonWrite(reply["error"]["code"], true);
}

}  // namespace

std::optional<WebApi> AwaitWebApi(std::chrono::seconds limit) {
    const auto deadline = std::chrono::steady_clock::now() + limit;
    do {
        WebApi api{LineOf(camvora::kAddressFile), LineOf(camvora::kScheduleTokenFile)};
        if (!api.url.empty() && !api.token.empty()) {
            return api;
        }
        std::this_thread::sleep_for(kLookEvery);
    } while (std::chrono::steady_clock::now() < deadline);
    return std::nullopt;
}

std::string Install(const WebApi& api, ADDON_SERVICE service) {
    httplib::Client client(api.url);
    client.set_bearer_token_auth(api.token);
    client.set_read_timeout(kInstallLimit);
    Json::Value params(Json::objectValue);
    params["service"] = static_cast<int>(service);
    const httplib::Result result = client.Post(kUpdatePath, JsonWrite(params, true), "application/json");
    if (!result) {
        return "no answer: " + httplib::to_string(result.error());
    }
    const std::optional<Json::Value> reply = camvora::ParseReply(result->body);
    if (!reply || !reply->isObject() || !(*reply)["success"].isBool()) {
        return "the answer is none";
    }
    return (*reply)["success"].asBool() ? "" : Problem(*reply);
}

}  // namespace schedule
