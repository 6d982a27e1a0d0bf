#include "client/command.h"

#include <CLI/App.hpp>

#include <utility>

namespace client {

Command Command::Add(const char* name, const char* help) {
    return Command(*app_->add_subcommand(name, help));
}

void Command::NeedsCommand() {
    app_->require_subcommand(1);
}

void Command::Alias(const char* name) {
    app_->alias(name);
}

void Command::Argument(const char* name, std::string& value, const char* help) {
    app_->add_option(name, value, help)->required();
}

void Command::OptionalArgument(const char* name, std::string& value, const char* help) {
    app_->add_option(name, value, help);
}

void Command::OptionalArguments(const char* name, std::vector<std::string>& values, const char* help) {
    app_->add_option(name, values, help);
}

void Command::Option(const char* name, std::string& value, const char* valueText, const char* help) {
    app_->add_option(name, value, help)->option_text(valueText);
}

void Command::RequiredOption(const char* name, std::string& value, const char* valueText, const char* help) {
    app_->add_option(name, value, help)->required()->option_text(valueText);
}

void Command::Flag(const char* name, bool& value, const char* help) {
    app_->add_flag(name, value, help);
}

void Command::Exclude(const char* name, const char* other) {
    app_->get_option(name)->excludes(app_->get_option(other));
}

void Command::Run(std::function<void()> run) {
    app_->callback(std::move(run));
}

}  // namespace client
