#include "e2e/processes.h"

#include <fstream>
#include <iterator>
#include <map>
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

// Each process with its parent. The kernel's own list of a process's children may lack one while another
// ends.
std::map<pid_t, pid_t> Parents() {
    std::map<pid_t, pid_t> parents;
    for (const auto& entry : fs::directory_iterator("/proc")) {
        const std::string name = entry.path().filename();
        if (name.find_first_not_of("0123456789") == std::string::npos) {
            const pid_t pid = std::stoi(name);
            parents[pid] = std::stoi("0" + StatusOf(pid, "PPid:"));
        }
    }
    return parents;
}

}  // namespace

std::vector<pid_t> Descendants(pid_t ancestor, const std::function<bool(pid_t)>& isSo) {
    const std::map<pid_t, pid_t> parents = Parents();
    const auto isBelow = [&](pid_t pid) {
        while (pid > 0 && pid != ancestor) {
            const auto entry = parents.find(pid);
            pid = entry == parents.end() ? 0 : entry->second;
        }
        return pid == ancestor;
    };
    std::vector<pid_t> found;
    for (const auto& [pid, parent] : parents) {
        if (pid != ancestor && isBelow(pid) && isSo(pid)) {
            found.push_back(pid);
        }
    }
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
