// SPDX-License-Identifier: MIT
#include "tools/project/build.hpp"
#include "tools/project/process.hpp"

#include "vorn/core/file.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <stdexcept>
#include <thread>
#include <vector>

namespace Project {
namespace {

namespace fs = std::filesystem;

void Configure(const fs::path& folder, const fs::path& build) {
    fs::create_directories(build);
    const fs::path log = build / "configure.log";
    // Each time: it takes a moment, and a first time that failed leaves half a build folder.
    const int status =
        RunProgram({"cmake", "-S", folder.string(), "-B", build.string(),
                    "-DVorn_DIR=" + (OwnFolder() / VORN_PACKAGE).lexically_normal().string()},
                   log);
    if (status == 0)
        return;
    fmt::print(stderr, "{}", Vorn::TextFromFile(log.string()));
    throw std::runtime_error(fmt::format("CMake cannot configure {}", folder.string()));
}

/// The games that the build knows, by the files that vorn_game wrote.
BuiltGame FindGame(const fs::path& build, const std::string& name) {
    std::vector<std::string> names;
    if (fs::is_directory(build / "vorn-games"))
        for (const auto& entry : fs::directory_iterator(build / "vorn-games"))
            names.push_back(entry.path().filename().string());
    if (names.empty())
        throw std::runtime_error("CMakeLists.txt names no game: vorn_game(NAME sources...)");
    std::sort(names.begin(), names.end());
    const bool found = std::find(names.begin(), names.end(), name) != names.end();
    if (!found && (names.size() > 1 || !name.empty()))
        throw std::runtime_error(
            fmt::format("the games here are {}: say --game NAME", fmt::join(names, ", ")));
    const std::string& chosen = found ? name : names[0];
    std::string program = Vorn::TextFromFile((build / "vorn-games" / chosen).string());
    program.erase(program.find_last_not_of('\n') + 1);
    return {chosen, program, build};
}

} // namespace

BuiltGame Build(const fs::path& folder, const std::string& name) {
    if (!fs::exists(folder / "CMakeLists.txt"))
        throw std::runtime_error(fmt::format("{} is no game: it has no CMakeLists.txt. `vorn new "
                                             "NAME` makes one",
                                             folder.string()));
    const fs::path build = fs::absolute(folder) / "build";
    Configure(fs::absolute(folder), build);
    const unsigned int jobs = std::max(1u, std::thread::hardware_concurrency());
    if (RunProgram({"cmake", "--build", build.string(), "--parallel", std::to_string(jobs)}) != 0)
        throw std::runtime_error(fmt::format("cannot build {}", folder.string()));
    return FindGame(build, name);
}

} // namespace Project
