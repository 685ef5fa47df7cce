// SPDX-License-Identifier: MIT
//
// The folder in which the examples of a page run.
#pragma once

#include "tests/docs/blocks.hpp"
#include "tests/support/engine_device.hpp"

namespace Docs {

inline const std::filesystem::path root = std::filesystem::current_path();

/// A window's device when a test opens it, in a folder with the engine's own data.
class InFolder : public Tests::PictureTest {
protected:
    InFolder() {
        std::filesystem::copy(root / "data", "data",
                              std::filesystem::copy_options::recursive |
                                  std::filesystem::copy_options::overwrite_existing);
    }
    // A pack of an example may have brought it up.
    ~InFolder() override { Vorn::SoundManager::Instance()->Free(); }

    /// Those of the page, and those of the other pages that entity files of hers may not meet.
    static void WriteFiles(const std::string& page) {
        const std::filesystem::path here = std::filesystem::current_path();
        std::filesystem::current_path(root);
        std::vector<Block> blocks = AllBlocks();
        std::stable_partition(blocks.begin(), blocks.end(),
                              [&](const Block& block) { return block.page != page; });
        std::filesystem::current_path(here);
        for (const Block& block : blocks)
            if (block.IsFile() && (block.page == page || block.tag.rfind("data/entity/", 0) != 0))
                WriteFile(block, ".");
    }
};

} // namespace Docs
