#include "client/command.h"

#include <CLI/App.hpp>

#include <utility>

namespace client {
namespace {

OptionDescription Describe(const CLI::Option& option) {
    OptionDescription description{
        {}, option.get_option_text(), option.get_description(), option.get_required()};
    for (const std::string& name : option.get_snames()) {
        description.names.push_back("-" + name);
    }
    for (const std::string& name : option.get_lnames()) {
        description.names.push_back("--" + name);
    }
    return description;
}

ArgumentDescription DescribeArgument(const CLI::Option& option) {
    return {option.get_name(), option.get_description(), option.get_required(),
            option.get_items_expected_max() > 1};
}

// NOLINTNEXTLINE(misc-no-recursion): commands are two levels deep
CommandDescription Describe(const CLI::App& app) {
    CommandDescription description;
    description.name = app.get_name();
    description.aliases = app.get_aliases();
    description.help = app.get_description();
    description.more = app.get_footer();
    description.group = app.get_group();
    const bool isProgram = app.get_parent() == nullptr;
    for (const CLI::Option* option : app.get_options()) {
        if (option->get_positional()) {
            description.arguments.push_back(DescribeArgument(*option));
        } else if (isProgram || option != app.get_help_ptr()) {
            description.options.push_back(Describe(*option));
        }
    }
    for (const CLI::App* command : app.get_subcommands({})) {
        description.commands.push_back(Describe(*command));
    }
    return description;
}

}  // namespace

Command Command::Add(const char* name, const char* help) {
    return Command(*app_->add_subcommand(name, help)->group("Commands")->footer(""));
}

void Command::NeedsCommand() {
    app_->require_subcommand(1);
}

void Command::Alias(const char* name) {
    app_->alias(name);
}

void Command::Explain(const char* sentences) {
    app_->footer(sentences);
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

CommandDescription Command::Description() const {
    return Describe(*app_);
}

void Command::Run(std::function<void()> run) {
    app_->callback(std::move(run));
}

}  // namespace client
