#include "client/examples.h"

#include <iterator>

namespace client {

namespace {

constexpr const char* kProgramExamples[] = {
    "list",
    "status device_pack",
    "start local_display",
    "check device_pack-2.2.0-0140.spk",
    "install device_pack-2.2.0-0140.spk",
    "update device_pack",
    "operations --json",
    "call GetInfo service=1",
    "console",
};

// Each begins with its command.
constexpr const char* kExamples[] = {
    "list",
    "list --json",
    "status device_pack",
    "status 6 --json",
    "start local_display",
    "start local_display --no-wait",
    "stop device_pack",
    "stop device_pack --json",
    "restart device_pack",
    "restart device_pack --server recorder",
    "install device_pack-2.2.0-0140.spk",
    "install device_pack-2.2.0-0140.spk --dry-run",
    "upload local_display-1.6.0-0071.spk local_display",
    "updates",
    "updates --exit-code --json",
    "download device_pack",
    "cancel device_pack",
    "update device_pack",
    "update local_display --yes",
    "auto-update device_pack on",
    "auto-update local_display off",
    "restore device_pack --dry-run",
    "restore device_pack --yes",
    "check device_pack-2.2.0-0140.spk",
    "check device_pack-2.2.0-0140.spk --json",
    "pkg build my-device-pack -o device_pack-2.2.0-0140.spk",
    "pkg build my-device-pack --settings beta.conf -o beta.spk",
    "feed key feed.key",
    "feed build www/feed --key feed.key",
    "events",
    "events --json",
    "log",
    "log --follow",
    "log 336f563be6a9a2bd",
    "apps",
    "apps --lang de --json",
    "methods",
    "methods GetInfo",
    "call List",
    "call GetInfo service=1 --json",
    "console",
    "console --json",
    "operations",
    "operations 12",
    "wait 12",
    "wait 336f563be6a9a2bd --timeout 600",
    "settings",
    "completion bash > ~/.local/share/bash-completion/completions/camvoractl",
    "completion zsh > ~/.zsh/completions/_camvoractl",
    "man | man -l -",
    "pair code recorder",
    "pair join http://cms.example:5000 ABCD-EFGH-JKLM --as cms",
    "pair list",
    "pair remove recorder",
};

bool IsOf(const std::string& command, const std::string& example) {
    return (example + " ").rfind(command + " ", 0) == 0;
}

}  // namespace

std::vector<std::string> ProgramExamples() {
    return {std::begin(kProgramExamples), std::end(kProgramExamples)};
}

std::vector<std::string> ExamplesOf(const std::string& command) {
    std::vector<std::string> examples;
    for (const char* const example : kExamples) {
        if (IsOf(command, example)) {
            examples.emplace_back(example);
        }
    }
    return examples;
}

}  // namespace client
