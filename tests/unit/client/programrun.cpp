#include "programrun.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
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

ProgramRun::ProgramRun(const std::vector<std::string>& arguments, const std::vector<std::string>& environment,
                       int outDescriptor)
    : out_(std::tmpfile()), err_(std::tmpfile()) {
    std::vector<std::string> words = {CAMVORACTL};
    words.insert(words.end(), arguments.begin(), arguments.end());

    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_adddup2(&files, outDescriptor < 0 ? fileno(out_.get()) : outDescriptor,
                                     STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&files, fileno(err_.get()), STDERR_FILENO);
    const int error =
        posix_spawn(&pid_, CAMVORACTL, &files, nullptr, Pointers(words).data(), Pointers(environment).data());
    posix_spawn_file_actions_destroy(&files);
    if (error != 0) {
        throw std::runtime_error("cannot start " CAMVORACTL);
    }
}

void ProgramRun::Interrupt() const {
    kill(pid_, SIGINT);
}

Outcome ProgramRun::Wait() {
    int status = 0;
    waitpid(pid_, &status, 0);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : kEndedBySignal + WTERMSIG(status), Content(out_),
            Content(err_)};
}

std::string ProgramRun::Content(const File& file) {
    std::rewind(file.get());
    std::string content;
    std::array<char, 4096> buffer{};
    while (const std::size_t size = std::fread(buffer.data(), 1, buffer.size(), file.get())) {
        content.append(buffer.data(), size);
    }
    return content;
}
