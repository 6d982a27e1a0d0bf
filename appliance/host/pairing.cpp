#include "host/pairing.h"

#include "host/jsonparams.h"

#include <openssl/crypto.h>

#include <algorithm>
#include <initializer_list>
#include <optional>
#include <vector>

namespace host {

namespace {

struct Member {
    const char* name;
    bool (*isValid)(const std::string& text);
    std::string& text;
};

bool IsShortText(const std::string& text) {
    constexpr std::size_t kLimitBytes = 100;
    return !text.empty() && text.size() <= kLimitBytes;
}

// Reads these texts from the JSON object `body`. Returns the refusal when one is missing or not valid.
std::optional<Reply> ReadMembers(const std::string& body, std::initializer_list<Member> members) {
    Json::Value params;
    if (auto refusal = ReadParams(body, params)) {
        return refusal;
    }
    for (const Member& member : members) {
        const Json::Value& value = params[member.name];
        if (!value.isString() || !member.isValid(value.asString())) {
            return ReplyFor(FrameworkError::kBadRequest,
                            std::string("\"") + member.name + "\" is missing or not valid");
        }
        member.text = value.asString();
    }
    return std::nullopt;
}

Reply ReplyForKeeping(const camvora::Pair& pair, const Json::Value& data) {
    return camvora::KeepPair(pair) ? SuccessReply(data)
                                   : ReplyFor(FrameworkError::kHostFailed, "the pair could not be stored");
}

}  // namespace

Reply Pairing::MakeCode(const std::string& body) {
    std::string name;
    if (auto refusal = ReadMembers(body, {{"name", camvora::IsPairName, name}})) {
        return *refusal;
    }
    Json::Value data(Json::objectValue);
    data["code"] = codes_.Make(name);
    data["validS"] = Json::Int64{OneTimeCodes::kValidity.count()};
    return SuccessReply(data);
}

Reply Pairing::RedeemCode(const std::string& body) {
    std::string code;
    camvora::Pair server;
    if (auto refusal = ReadMembers(
            body, {{"code", IsShortText, code}, {"address", camvora::IsPairAddress, server.address}})) {
        return *refusal;
    }
    const std::optional<std::string> name = codes_.Redeem(code);
    if (!name) {
        return ReplyFor(FrameworkError::kWrongPairingCode);
    }
    server.name = *name;
    server.role = camvora::kServerRole;
    server.secretIn = camvora::NewPairSecret();
    server.secretOut = camvora::NewPairSecret();
    Json::Value data(Json::objectValue);
    data["name"] = server.name;
    data["secretIn"] = server.secretOut;
    data["secretOut"] = server.secretIn;
    const std::lock_guard<std::mutex> lock(mutex_);
    DropOutdated();
    made_[server.name] = {server, std::chrono::steady_clock::now() + OneTimeCodes::kValidity};
    return SuccessReply(data);
}

// The secret tells who confirms: the code has been used, and the token is not the recording server's.
Reply Pairing::Confirm(const std::string& body) {
    std::string name;
    std::string secret;
    if (auto refusal = ReadMembers(
            body, {{"name", camvora::IsPairName, name}, {"secretOut", camvora::IsPairSecret, secret}})) {
        return *refusal;
    }
    const std::lock_guard<std::mutex> lock(mutex_);
    DropOutdated();
    const auto made = made_.find(name);
    if (made == made_.end() ||
        CRYPTO_memcmp(secret.data(), made->second.server.secretIn.data(), secret.size()) != 0) {
        return ReplyFor(FrameworkError::kWrongPairingCode);
    }
    return ReplyForKeeping(made->second.server, Json::Value());
}

Reply Pairing::KeepHost(const std::string& body) {
    camvora::Pair host;
    host.role = camvora::kHostRole;
    if (auto refusal = ReadMembers(body, {{"name", camvora::IsPairName, host.name},
                                          {"address", camvora::IsPairAddress, host.address},
                                          {"secretIn", camvora::IsPairSecret, host.secretIn},
                                          {"secretOut", camvora::IsPairSecret, host.secretOut}})) {
        return *refusal;
    }
    return ReplyForKeeping(host, Json::Value());
}

Json::Value Pairing::Pairs() {
    Json::Value pairs(Json::arrayValue);
    for (const camvora::Pair& pair : camvora::Pairs()) {
        Json::Value& entry = pairs.append(Json::Value(Json::objectValue));
        entry["name"] = pair.name;
        entry["role"] = pair.role;
        entry["address"] = pair.address;
    }
    return pairs;
}

Reply Pairing::List() {
    Json::Value data(Json::objectValue);
    data["pairs"] = Pairs();
    return SuccessReply(data);
}

void Pairing::DropOutdated() {
    const auto now = std::chrono::steady_clock::now();
    for (auto made = made_.begin(); made != made_.end();) {
        made = now > made->second.until ? made_.erase(made) : std::next(made);
    }
}

Reply Pairing::Forget(const std::string& name) {
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        made_.erase(name);  // or it could be confirmed once more
    }
    const std::vector<camvora::Pair> pairs = camvora::Pairs();
    if (std::none_of(pairs.begin(), pairs.end(),
                     [&name](const camvora::Pair& pair) { return pair.name == name; })) {
        return ReplyFor(FrameworkError::kNotFound, "no paired server is called so");
    }
    return camvora::ForgetPairs(name)
               ? SuccessReply(Json::Value())
               : ReplyFor(FrameworkError::kHostFailed, "the pair could not be removed");
}

}  // namespace host
