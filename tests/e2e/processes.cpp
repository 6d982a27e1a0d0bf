#include "e2e/processes.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <sstream>
#include <thread>

namespace e2e {

namespace {

namespace fs = std::filesystem;

fs::path ProcOf(pid_t pid) {
    return fs::path("/proc") / std::to_string(pid);
}

int CountEntries(const fs::path& folder) {
    std::error_code gone;
    const fs::directory_iterator entries(folder, gone);
    return gone ? 0 : static_cast<int>(std::distance(begin(entries), end(entries)));
}

std::vector<pid_t> ChildrenOf(pid_t pid) {
    std::ifstream children(ProcOf(pid) / "task" / std::to_string(pid) / "children");
    return {std::istream_iterator<pid_t>(children), std::istream_iterator<pid_t>()};
}

// The text after `key` in the process's status.
std::string StatusOf(pid_t pid, const std::string& key) {
    std::ifstream status(ProcOf(pid) / "status");
    for (std::string line; std::getline(status, line);) {
        if (line.rfind(key, 0) == 0) {
            return line.substr(line.find_first_not_of(" \t", key.size()));
        }
    }
    return "";
}

}  // namespace

std::vector<pid_t> Descendants(pid_t ancestor, const std::function<bool(pid_t)>& isSo) {
    std::vector<pid_t> all = ChildrenOf(ancestor);
    for (std::size_t i = 0; i < all.size(); ++i) {
        const std::vector<pid_t> below = ChildrenOf(all[i]);
        all.insert(all.end(), below.begin(), below.end());
    }
    std::vector<pid_t> found;
    std::copy_if(all.begin(), all.end(), std::back_inserter(found), isSo);
    return found;
}

bool IsAlive(pid_t pid) {
    const std::string state = StatusOf(pid, "State:");
    return !state.empty() && state.front() != 'Z';
}

std::string NameOf(pid_t pid) {
    return StatusOf(pid, "Name:");
}

int ThreadCount(pid_t pid) {
    return CountEntries(ProcOf(pid) / "task");
}

int DescriptorCount(pid_t pid) {
    return CountEntries(ProcOf(pid) / "fd");
}

long PeakMemoryKiB(pid_t pid) {
    return std::stol("0" + StatusOf(pid, "VmHWM:"));
}

bool WaitUntil(const std::function<bool()>& condition, std::chrono::milliseconds limit) {
    const auto deadline = std::chrono::steady_clock::now() + limit;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return true;
}

std::string ReadFile(const fs::path& path) {
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();  // throws nothing when a process ends meanwhile
    return text.str();
}

}  // namespace e2e
