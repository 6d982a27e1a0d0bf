// A command of the command line, with its arguments and options.
//
// The commands use the parsing library through this class alone: it costs the compiler seconds per source.
#pragma once

#include "client/commandtree.h"

#include <functional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace client {

// A handle; copies are the same command. Values that it is given are written when the line is parsed and must
// live until the command has run: its function should hold them.
class Command {
public:
    // `app` is the whole program or one of its commands, and must outlive this.
    explicit Command(CLI::App& app) : app_(&app) {}

    Command Add(const char* name, const char* help);  // a command below this one
    void NeedsCommand();                              // to be called with one of those
    void Alias(const char* name);
    void Explain(const char* sentences);  // what the help of this command says beyond its line

    void Argument(const char* name, std::string& value, const char* help);
    void OptionalArgument(const char* name, std::string& value, const char* help);
    void OptionalArguments(const char* name, std::vector<std::string>& values, const char* help);

    // `name` as in "--lang" or "-o,--output"; `valueText` is what the help shows for the value.
    void Option(const char* name, std::string& value, const char* valueText, const char* help);
    void RequiredOption(const char* name, std::string& value, const char* valueText, const char* help);
    void Flag(const char* name, bool& value, const char* help);  // "!--no-x" sets to false

    void Exclude(const char* name, const char* other);  // the two are not given together

    // What has been given to it so far.
    CommandDescription Description() const;

    void Run(std::function<void()> run);  // once the whole line has been parsed; may throw Failure

private:
    CLI::App* app_;
};

}  // namespace client
