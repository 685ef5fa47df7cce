// SPDX-License-Identifier: MIT
#include "tools/project/process.hpp"

#include <fmt/format.h>

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <spawn.h>
#include <stdexcept>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace Project {
namespace {

namespace fs = std::filesystem;

std::vector<char*> Pointers(std::vector<std::string>& words) {
    std::vector<char*> pointers;
    for (std::string& word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);
    return pointers;
}

[[noreturn]] void Fail(const std::string& program, int error) {
    throw std::runtime_error(
        fmt::format("cannot start {}: {}", program, std::generic_category().message(error)));
}

/// Both streams of the program into one file.
class Streams {
public:
    explicit Streams(const fs::path& log) {
        posix_spawn_file_actions_init(&mActions);
        if (log.empty())
            return;
        posix_spawn_file_actions_addopen(&mActions, STDOUT_FILENO, log.c_str(),
                                         O_WRONLY | O_CREAT | O_TRUNC, 0666);
        posix_spawn_file_actions_adddup2(&mActions, STDOUT_FILENO, STDERR_FILENO);
    }
    Streams(const Streams&) = delete;
    Streams& operator=(const Streams&) = delete;
    ~Streams() { posix_spawn_file_actions_destroy(&mActions); }

    const posix_spawn_file_actions_t* Get() const { return &mActions; }

private:
    posix_spawn_file_actions_t mActions{};
};

} // namespace

int RunProgram(const std::vector<std::string>& words, const fs::path& log) {
    std::vector<std::string> copy = words;
    const Streams streams(log);
    std::fflush(nullptr); // our lines before its own
    pid_t child = 0;
    if (const int error = posix_spawnp(&child, words.at(0).c_str(), streams.Get(), nullptr,
                                       Pointers(copy).data(), environ))
        Fail(words[0], error);
    int status = 0;
    while (waitpid(child, &status, 0) < 0)
        if (errno != EINTR)
            Fail(words[0], errno);
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

void BecomeProgram(const std::vector<std::string>& words, const fs::path& folder) {
    std::vector<std::string> copy = words;
    fs::current_path(folder);
    std::fflush(nullptr);
    execv(words.at(0).c_str(), Pointers(copy).data());
    Fail(words[0], errno);
}

fs::path OwnFolder() {
    return fs::canonical("/proc/self/exe").parent_path();
}

} // namespace Project
