#include "libcamvora/store.h"
#include "platform/services.h"

#include <SQLiteCpp/Statement.h>

WebUIOptions::WebUIOptions() : options_(Json::objectValue) {}

WebUIOptions::~WebUIOptions() = default;

void WebUIOptions::SetOption(OPTION_TYPE type, const std::string& value) {
    options_[std::to_string(type)] = value;
}

int WebUIOptions::Apply() {
    const bool written = camvora::TheStore().Write([this](SQLite::Database& database) {
        for (const std::string& number : options_.getMemberNames()) {
            SQLite::Statement statement(database,
                                        "INSERT OR REPLACE INTO options(number, value) VALUES(?, ?)");
            statement.bind(1, std::stoi(number));
            statement.bind(2, options_[number].asString());
            statement.exec();
        }
    });
    return written ? 0 : -1;
}
