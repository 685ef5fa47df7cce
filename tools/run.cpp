// SPDX-License-Identifier: MIT
#include "tools/run.hpp"
#include "tools/project/build.hpp"
#include "tools/project/process.hpp"

namespace Project {

void Run(const RunOptions& options) {
    const BuiltGame game = Build(options.folder, options.game);
    std::vector<std::string> words = {game.program.string()};
    words.insert(words.end(), options.arguments.begin(), options.arguments.end());
    BecomeProgram(words, game.program.parent_path());
}

} // namespace Project
