#include "support/program.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <stdexcept>

namespace {

constexpr int kEndedBySignal = 1000;

std::vector<char*> Pointers(const std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (const std::string& text : texts) {
        pointers.push_back(const_cast<char*>(text.c_str()));  // posix_spawn does not write to them
    }
    pointers.push_back(nullptr);
    return pointers;
}

}  // namespace

Program::Program(const std::vector<std::string>& command, const std::vector<std::string>& environment) {
    const auto addFile = [this](posix_spawn_file_actions_t& files, int descriptor, const char* name) {
        posix_spawn_file_actions_addopen(&files, descriptor, folder_.PathOf(name).c_str(), O_WRONLY | O_CREAT,
                                         0600);
    };
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    addFile(files, STDOUT_FILENO, "out");
    addFile(files, STDERR_FILENO, "err");
    const int error = posix_spawn(&pid_, command[0].c_str(), &files, nullptr, Pointers(command).data(),
                                  Pointers(environment).data());
    posix_spawn_file_actions_destroy(&files);
    if (error != 0) {
        throw std::runtime_error("cannot start " + command[0]);
    }
}

Outcome Program::Wait() const {
    int status = 0;
    waitpid(pid_, &status, 0);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : kEndedBySignal + WTERMSIG(status), folder_.Read("out"),
            folder_.Read("err")};
}
