// SPDX-License-Identifier: MIT
#include "platform/control/environment.hpp"
#include "platform/control/vorn_platform.hpp"
#include "platform/window/input_state.hpp"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <system_error>

namespace VornPlatform {

namespace {

/// Takes the variable away; empty if it is not set.
std::string Take(const char* name) {
    const char* value = secure_getenv(name);
    std::string taken = value ? value : "";
    unsetenv(name);
    return taken;
}

// The session in which something went wrong outlives the next start of the game.
void KeepEarlier(const std::string& path) {
    std::error_code fault;
    if (std::filesystem::is_regular_file(path, fault))
        std::filesystem::rename(path, path + "~", fault);
}

void Record(const std::string& path) {
    try {
        KeepEarlier(path);
        RecordInput(path);
        std::fprintf(stderr, "VORN_RECORD: what comes in goes into %s\n", path.c_str());
    } catch (const std::runtime_error& error) {
        std::fprintf(stderr, "VORN_RECORD: nothing is recorded: %s\n", error.what());
    }
}

void Play(const std::string& path) {
    try {
        PlayInput(path);
    } catch (const std::runtime_error& error) {
        throw std::runtime_error(std::string("VORN_PLAY: ") + error.what());
    }
}

} // namespace

void FollowEnvironment() {
    if (Listener() || Source())
        return;
    const std::string played = Take("VORN_PLAY"), recorded = Take("VORN_RECORD");
    if (!played.empty())
        Play(played);
    else if (!recorded.empty())
        Record(recorded);
}

} // namespace VornPlatform
