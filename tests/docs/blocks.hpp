// SPDX-License-Identifier: MIT
//
// The fenced blocks of the documents. Behind the language of a block stands what tells its rule:
// HACKING.md has the list.
//
//   for (const Docs::Block& block : Docs::BlocksOf("docs/core.md")) ...
#pragma once

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <ostream>
#include <sstream>
#include <string>
#include <vector>

namespace Docs {

struct Block {
    /// From the root of the repository.
    std::string page;
    /// Of the first line of the text.
    int line = 0;
    std::string language;
    /// What stands behind the language: the name of a file, or a word.
    std::string tag;
    std::string text;

    std::string Place() const { return page + ":" + std::to_string(line); }
    /// "docs_core_md_24"
    std::string Name() const {
        std::string name = page + "_" + std::to_string(line);
        std::replace_if(
            name.begin(), name.end(), [](unsigned char c) { return !std::isalnum(c); }, '_');
        return name;
    }
    bool IsFile() const { return tag.find('.') != std::string::npos; }
    bool IsProgram() const {
        return language == "cpp" && text.find("\nint main(") != std::string::npos;
    }
    /// The text of a function's body.
    bool IsFragment() const { return language == "cpp" && !IsProgram() && tag != "top"; }
};
/// As a test names its parameter.
inline void PrintTo(const Block& block, std::ostream* out) {
    *out << block.Place();
}

inline std::vector<Block> BlocksOf(const std::string& page) {
    std::vector<Block> blocks;
    std::ifstream in(page);
    std::string line;
    bool within = false;
    for (int number = 1; std::getline(in, line); ++number) {
        const std::size_t start = line.find_first_not_of(' ');
        if (start == std::string::npos || line.compare(start, 3, "```") != 0) {
            if (within)
                blocks.back().text += line + "\n";
            continue;
        }
        within = !within;
        if (!within)
            continue;
        Block& block = blocks.emplace_back();
        block.page = page;
        block.line = number + 1;
        std::istringstream words(line.substr(start + 3));
        words >> block.language;
        std::getline(words >> std::ws, block.tag);
    }
    return blocks;
}

/// Those that explain something to a reader, in a fixed order. Call it in the repository's root.
inline std::vector<std::string> Pages() {
    std::vector<std::string> pages = {"README.md", "CONTRIBUTING.md", "HACKING.md"};
    for (const auto& file : std::filesystem::directory_iterator("docs"))
        if (file.path().extension() == ".md")
            pages.push_back(file.path().string());
    for (const auto& sample : std::filesystem::directory_iterator("samples"))
        if (std::filesystem::exists(sample.path() / "README.md"))
            pages.push_back((sample.path() / "README.md").string());
    std::sort(pages.begin(), pages.end());
    return pages;
}

inline std::vector<Block> AllBlocks() {
    std::vector<Block> blocks;
    for (const std::string& page : Pages()) {
        if (page == "docs/getting_started.md")
            continue; // one game, step by step: scripts/getting-started types it
        for (Block& block : BlocksOf(page))
            blocks.push_back(std::move(block));
    }
    return blocks;
}

/// Writes the block into its file below `folder`.
inline void WriteFile(const Block& block, const std::filesystem::path& folder) {
    std::filesystem::create_directories((folder / block.tag).parent_path());
    std::ofstream(folder / block.tag) << block.text;
}

} // namespace Docs
