#include "libcamvora/jsonobject.h"

#include "libcamvora/plainfile.h"
#include "platform/log.h"

#include <json/reader.h>

#include <memory>

namespace camvora {

namespace {

constexpr std::size_t kFileLimitBytes = 1UL << 20;

}  // namespace

std::optional<Json::Value> ParseJsonObject(std::string_view text) {
    Json::CharReaderBuilder strict;
    Json::CharReaderBuilder::strictMode(&strict.settings_);
    const std::unique_ptr<Json::CharReader> reader(strict.newCharReader());
    Json::Value value;
    try {
        if (!reader->parse(text.data(), text.data() + text.size(), &value, nullptr) || !value.isObject()) {
            return std::nullopt;
        }
    } catch (const Json::Exception&) {  // nested too deeply
        return std::nullopt;
    }
    return value;
}

bool ReadJsonObject(const std::string& path, Json::Value& object) {
    const auto text = ReadPlainFile(path.c_str(), kFileLimitBytes);
    const auto parsed = text ? ParseJsonObject(*text) : std::nullopt;
    if (!parsed) {
        CVPrintf(0, nullptr, nullptr, "jsonobject", __LINE__, __func__,
                 "Failed to read %s as a JSON object\n", path.c_str());
        return false;
    }
    object = *parsed;
    return true;
}

}  // namespace camvora
