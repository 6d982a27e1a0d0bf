#include "libcamvora/pairs.h"

#include "libcamvora/hextext.h"
#include "libcamvora/settings.h"
#include "libcamvora/store.h"
#include "platform/settings.h"

#include <SQLiteCpp/Statement.h>
#include <openssl/rand.h>

#include <algorithm>
#include <array>
#include <regex>
#include <stdexcept>

namespace camvora {

namespace {

constexpr std::size_t kNameLimitBytes = 64;
constexpr std::size_t kAddressLimitBytes = 300;
constexpr std::size_t kSecretBytes = 32;

template <typename... Texts>
void Execute(SQLite::Database& database, const char* command, const Texts&... texts) {
    SQLite::Statement statement(database, command);
    int place = 0;
    (statement.bind(++place, texts), ...);
    statement.exec();
}

}  // namespace

bool IsPairName(const std::string& name) {
    static const std::regex form("[A-Za-z0-9][A-Za-z0-9._-]*");
    return name.size() <= kNameLimitBytes && std::regex_match(name, form);
}

bool IsPairAddress(const std::string& address) {
    static const std::regex form(R"(http://([A-Za-z0-9._-]+|\[[0-9A-Fa-f:.]+\]):[0-9]{1,5})");
    return address.size() <= kAddressLimitBytes && std::regex_match(address, form);
}

bool IsPairSecret(const std::string& secret) {
    return secret.size() == 2 * kSecretBytes &&
           secret.find_first_not_of("0123456789abcdef") == std::string::npos;
}

std::string NewPairSecret() {
    std::array<unsigned char, kSecretBytes> bytes{};
    if (RAND_bytes(bytes.data(), bytes.size()) != 1) {
        throw std::runtime_error("no random numbers");
    }
    return HexText(bytes.data(), bytes.size());
}

std::vector<Pair> Pairs() {
    return TheStore().Read()->pairs;
}

std::optional<Pair> FindPair(const std::string& role, const std::string& name) {
    const auto state = TheStore().Read();
    const auto found = std::find_if(state->pairs.begin(), state->pairs.end(), [&](const Pair& pair) {
        return pair.role == role && (name.empty() || pair.name == name);
    });
    return found == state->pairs.end() ? std::nullopt : std::optional(*found);
}

bool KeepPair(const Pair& pair) {
    return TheStore().Write([&pair](SQLite::Database& database) {
        if (pair.role == kHostRole) {
            Execute(database, "DELETE FROM pairs WHERE role = ?", pair.role);
        } else {
            Execute(database, "INSERT OR REPLACE INTO settings(key, value) VALUES(?, ?)",
                    std::string(kCmsHostSetting), Bool2String(true));
        }
        Execute(database,
                "INSERT OR REPLACE INTO pairs(name, role, address, secret_in, secret_out)"
                " VALUES(?, ?, ?, ?, ?)",
                pair.name, pair.role, pair.address, pair.secretIn, pair.secretOut);
    });
}

bool ForgetPairs(const std::string& name) {
    return TheStore().Write(
        [&name](SQLite::Database& database) { Execute(database, "DELETE FROM pairs WHERE name = ?", name); });
}

}  // namespace camvora
