// SPDX-License-Identifier: MIT
#include "tools/new.hpp"
#include "tools/project/process.hpp"

#include "vorn/core/file.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string_view>
#include <unistd.h>

namespace Project {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view Placeholder = "@NAME@";
/// Targets that CMake or the build has for itself.
constexpr std::array<std::string_view, 9> Taken = {"all",     "clean",   "data", "game", "help",
                                                   "install", "package", "test", "vorn"};
/// The files that the name may stand in.
constexpr std::array<std::string_view, 4> Texts = {".cpp", ".txt", ".json", ".md"};

bool IsLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

void CopyFile(const fs::path& from, const fs::path& to, const std::string& name) {
    std::string bytes = Vorn::TextFromFile(from.string());
    if (std::find(Texts.begin(), Texts.end(), from.extension().string()) != Texts.end())
        for (std::size_t at = 0; (at = bytes.find(Placeholder, at)) != std::string::npos;
             at += name.size())
            bytes.replace(at, Placeholder.size(), name);
    std::ofstream file(to, std::ios::binary);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    file.close();
    if (!file)
        throw std::runtime_error("cannot write " + to.string());
}

void CopyTree(const fs::path& from, const fs::path& to, const std::string& name) {
    fs::create_directory(to);
    for (const auto& entry : fs::directory_iterator(from)) {
        const fs::path place = to / entry.path().filename();
        if (entry.is_directory())
            CopyTree(entry.path(), place, name);
        else
            CopyFile(entry.path(), place, name);
    }
}

/// Beside the game until it is whole; gone again if it never is.
class Draft {
public:
    explicit Draft(const fs::path& game)
        : mPath(game.parent_path() / fmt::format(".{}.{}", game.filename().string(), getpid())) {}
    Draft(const Draft&) = delete;
    Draft& operator=(const Draft&) = delete;
    ~Draft() {
        std::error_code ignored;
        fs::remove_all(mPath, ignored);
    }
    const fs::path& Path() const { return mPath; }

private:
    fs::path mPath;
};

} // namespace

std::string FaultOfName(const std::string& name) {
    const bool good =
        !name.empty() && IsLetter(name[0]) && std::all_of(name.begin(), name.end(), [](char c) {
            return IsLetter(c) || (c >= '0' && c <= '9') || c == '-' || c == '_';
        });
    if (!good)
        return fmt::format("\"{}\" is no name: a letter, then letters, digits, '-' and '_'", name);
    if (std::find(Taken.begin(), Taken.end(), name) != Taken.end())
        return fmt::format("\"{}\" is taken: the build uses that name itself", name);
    return {};
}

int New(const NewOptions& options) {
    const fs::path game = fs::absolute(options.folder).lexically_normal();
    const std::string name = game.filename().string();
    if (const std::string fault = FaultOfName(name); !fault.empty())
        throw std::runtime_error(fault);
    if (fs::exists(fs::symlink_status(game)))
        throw std::runtime_error(game.string() + " is there already; nothing was written");
    if (!fs::is_directory(game.parent_path()))
        throw std::runtime_error("there is no folder " + game.parent_path().string());

    const fs::path share = OwnFolder() / VORN_SHARE;
    const Draft draft(game);
    CopyTree(share / "template", draft.Path(), name);
    // By which editors complete and check the data: .vscode/settings.json names them.
    if (fs::is_directory(share / "schemas"))
        CopyTree(share / "schemas", draft.Path() / "schemas", name);
    fs::rename(draft.Path(), game);
    fmt::print("{0} is ready:\n\n    cd {0}\n    vorn run\n", options.folder);
    return 0;
}

} // namespace Project
