#include "host/onetimecodes.h"

#include <openssl/crypto.h>
#include <openssl/rand.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <stdexcept>

namespace host {

namespace {

constexpr std::size_t kCodesAtMost = 16;
constexpr int kWrongAtMost = 10;

// Five random bits for each of twelve characters, none of which looks like another.
constexpr char kCharacters[] = "ABCDEFGHJKLMNPQRSTUVWXYZ23456789";
constexpr std::size_t kCharacterCount = sizeof(kCharacters) - 1;
constexpr std::size_t kCodeLength = 12;
constexpr std::size_t kGroupLength = 4;

std::string NewCode() {
    std::array<unsigned char, kCodeLength> bytes{};
    if (RAND_bytes(bytes.data(), bytes.size()) != 1) {
        throw std::runtime_error("no random numbers");
    }
    std::string code;
    for (const unsigned char byte : bytes) {
        code += kCharacters[byte % kCharacterCount];
    }
    return code;
}

std::string InGroups(std::string code) {
    for (std::size_t end = kCodeLength - kGroupLength; end > 0; end -= kGroupLength) {
        code.insert(end, "-");
    }
    return code;
}

// As it was made, from what somebody typed.
std::string Plain(const std::string& typed) {
    std::string code;
    for (const char c : typed) {
        if (c != '-' && c != ' ') {
            code += static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        }
    }
    return code;
}

}  // namespace

std::string OneTimeCodes::Make(const std::string& name, Clock::time_point now) {
    const std::lock_guard<std::mutex> lock(mutex_);
    EndOld(now);
    entries_.erase(std::remove_if(entries_.begin(), entries_.end(),
                                  [&name](const Entry& entry) { return entry.name == name; }),
                   entries_.end());
    entries_.push_back({name, NewCode(), now + kValidity});
    if (entries_.size() > kCodesAtMost) {
        entries_.pop_front();
    }
    return InGroups(entries_.back().code);
}

std::optional<std::string> OneTimeCodes::Redeem(const std::string& code, Clock::time_point now) {
    const std::lock_guard<std::mutex> lock(mutex_);
    EndOld(now);
    const std::string plain = Plain(code);
    auto found = entries_.end();
    for (auto entry = entries_.begin(); entry != entries_.end(); ++entry) {
        const bool isIt =
            plain.size() == kCodeLength && CRYPTO_memcmp(plain.data(), entry->code.data(), kCodeLength) == 0;
        found = isIt ? entry : found;
    }
    if (found == entries_.end()) {
        if (++wrongCount_ >= kWrongAtMost) {
            entries_.clear();
        }
        return std::nullopt;
    }
    std::string name = found->name;
    entries_.erase(found);
    return name;
}

void OneTimeCodes::EndOld(Clock::time_point now) {
    while (!entries_.empty() && entries_.front().end <= now) {
        entries_.pop_front();
    }
    wrongCount_ = entries_.empty() ? 0 : wrongCount_;
}

}  // namespace host
