// The texts of the web user interface in one language.
#pragma once

#include <json/value.h>

#include <string>

namespace camvora {

class UiTexts {
public:
    // Texts from the files "<language>.json" in `folder`. What is no language code, and a language without a
    // file, stands for English.
    UiTexts(std::string folder, const std::string& language);

    // Reads them. False, with a line in the diagnostic log for each file, when a file is damaged or the
    // English one is missing.
    bool Read();

    // The text for `key`; the English one, else the key itself, where there is none.
    std::string Text(const std::string& key) const;

private:
    std::string FileOf(const std::string& language) const;

    std::string folder_;
    std::string language_;
    Json::Value texts_{Json::objectValue};
    Json::Value english_{Json::objectValue};
};

}  // namespace camvora
