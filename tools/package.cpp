// SPDX-License-Identifier: MIT
#include "tools/package.hpp"
#include "tools/project/build.hpp"
#include "tools/project/process.hpp"

#include <fmt/format.h>

#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <unistd.h>

namespace Project {
namespace {

namespace fs = std::filesystem;

/// What may be taken away: nothing, an empty folder, and by force what looks like such a package.
void CheckPlace(const fs::path& out, const std::string& name, bool force) {
    if (!fs::exists(fs::symlink_status(out)) || (fs::is_directory(out) && fs::is_empty(out)))
        return;
    if (!force)
        throw std::runtime_error(out.string() + " is there already; --force replaces it");
    if (!fs::is_regular_file(out / (name + ".sh")))
        throw std::runtime_error(out.string() + " holds no package of " + name +
                                 " and is not replaced");
}

std::uintmax_t SizeOf(const fs::path& folder) {
    std::uintmax_t size = 0;
    for (const auto& entry : fs::recursive_directory_iterator(folder))
        if (entry.is_regular_file())
            size += entry.file_size();
    return size;
}

} // namespace

int Package(const PackageOptions& options) {
    const BuiltGame game = Build(options.folder, options.game);
    const fs::path out = options.out.empty() ? fs::absolute(options.folder) / "package" / game.name
                                             : fs::absolute(options.out);
    const fs::path place = (out.has_filename() ? out : out.parent_path()).lexically_normal();
    CheckPlace(place, game.name, options.force);

    // Beside it until it is whole.
    fs::create_directories(place.parent_path());
    const fs::path draft =
        place.parent_path() / fmt::format(".{}.{}", place.filename().string(), getpid());
    const int status =
        RunProgram({"cmake", "--install", game.build.string(), "--prefix", draft.string()},
                   game.build / "package.log");
    if (status != 0) {
        fs::remove_all(draft);
        throw std::runtime_error(fmt::format("cannot pack {}: {} tells why", game.name,
                                             (game.build / "package.log").string()));
    }
    fs::remove_all(place);
    fs::rename(draft, place);
    fmt::print("{}: {:.1f} MB; {}.sh in it starts the game\n", place.string(),
               static_cast<double>(SizeOf(place)) / 1e6, game.name);
    return 0;
}

} // namespace Project
