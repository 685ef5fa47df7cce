// SPDX-License-Identifier: MIT
#include "tools/schema.hpp"

#include "tools/check/game.hpp"
#include "tools/check/pages.hpp"
#include "tools/check/schemas.hpp"

#include "vorn/core/file.hpp"

#include <fmt/format.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace Schema {
namespace {

namespace fs = std::filesystem;

void Write(const fs::path& path, const std::string& text) {
    std::ofstream file(path, std::ios::binary);
    file << text;
    if (!file.flush())
        throw std::runtime_error("cannot write " + path.string());
}

Check::Table TableOf(const std::string& game) {
    if (game.empty())
        return Check::EngineTable();
    Check::Findings ignored; // `vorn check` tells them
    return Check::Game(Check::ReadFolder(game, game), Check::EngineTable(), ignored).Keys();
}

void UpdatePages(const std::string& folder) {
    const Check::Table table = Check::EngineTable();
    for (const auto& entry : fs::directory_iterator(folder))
        if (entry.path().extension() == ".md") {
            const std::string old = Vorn::TextFromFile(entry.path().string());
            const std::string updated = Check::UpdatePage(old, table);
            if (updated != old)
                Write(entry.path(), updated);
        }
}

} // namespace

int Run(const Options& options) {
    if (!options.pages.empty()) {
        UpdatePages(options.pages);
        return 0;
    }
    fs::create_directories(options.directory);
    for (const auto& [name, schema] : Check::Schemas(TableOf(options.game)))
        Write(fs::path(options.directory) / name, schema);
    return 0;
}

} // namespace Schema
