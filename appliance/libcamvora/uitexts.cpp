#include "libcamvora/uitexts.h"

#include "libcamvora/jsonobject.h"
#include "platform/files.h"

#include <algorithm>
#include <utility>

namespace camvora {

namespace {

constexpr char kEnglish[] = "en";

// The code becomes part of a path, so nothing but letters may be in it.
bool IsLanguageCode(const std::string& language) {
    constexpr std::size_t kShortest = 2;
    constexpr std::size_t kLongest = 3;
    return language.size() >= kShortest && language.size() <= kLongest &&
           std::all_of(language.begin(), language.end(), [](char c) { return c >= 'a' && c <= 'z'; });
}

const Json::Value* FindText(const Json::Value& texts, const std::string& key) {
    const Json::Value* text = texts.find(key.data(), key.data() + key.size());
    return text != nullptr && text->isString() ? text : nullptr;
}

}  // namespace

UiTexts::UiTexts(std::string folder, const std::string& language)
    : folder_(std::move(folder)), language_(IsLanguageCode(language) ? language : kEnglish) {}

bool UiTexts::Read() {
    const bool englishRead = ReadJsonObject(FileOf(kEnglish), english_);
    if (language_ == kEnglish || !IsFileExist(FileOf(language_))) {
        return englishRead;
    }
    return ReadJsonObject(FileOf(language_), texts_) && englishRead;
}

std::string UiTexts::Text(const std::string& key) const {
    for (const Json::Value* texts : {&texts_, &english_}) {
        if (const Json::Value* text = FindText(*texts, key)) {
            return text->asString();
        }
    }
    return key;
}

std::string UiTexts::FileOf(const std::string& language) const {
    return folder_ + "/" + language + ".json";
}

}  // namespace camvora
