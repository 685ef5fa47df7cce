// SPDX-License-Identifier: MIT
#include "tools/project/commands.hpp"

#include <algorithm>
#include <cstring>
#include <filesystem>

namespace Project {

Commands::Commands(CLI::App& app)
    : mNew(app.add_subcommand("new", "Writes a small game to start from")),
      mRun(app.add_subcommand("run", "Builds a game and starts it")),
      mPackage(app.add_subcommand("package", "Packs a game for machines without Vorn")) {
    mNew->add_option("NAME", mNewOptions.folder, "What it is called; a path makes it elsewhere")
        ->required()
        ->check(CLI::Validator(
            [](std::string& path) { return FaultOfName(std::filesystem::path(path).filename()); },
            ""));

    mRun->add_option("FOLDER", mRunOptions.folder, "The game's, with its CMakeLists.txt")
        ->capture_default_str();
    mRun->add_option("-g,--game", mRunOptions.game, "Which, where CMakeLists.txt has several")
        ->type_name("NAME");
    mRun->footer("What stands behind -- goes to the game.\n"
                 "The build stands in FOLDER/build, the running game in FOLDER/build/game.");

    mPackage->add_option("FOLDER", mPackageOptions.folder, "The game's, with its CMakeLists.txt")
        ->capture_default_str();
    mPackage->add_option("-g,--game", mPackageOptions.game, "Which, where there are several")
        ->type_name("NAME");
    mPackage->add_option("-o,--out", mPackageOptions.out, "Where it goes; else FOLDER/package/NAME")
        ->type_name("FOLDER");
    mPackage->add_flag("-f,--force", mPackageOptions.force, "Replaces an earlier package");
}

int Commands::TakeArguments(int argc, char** argv) {
    if (argc < 2 || std::strcmp(argv[1], "run") != 0)
        return argc;
    char** const end = argv + argc;
    char** const dashes =
        std::find_if(argv + 2, end, [](const char* word) { return std::strcmp(word, "--") == 0; });
    if (dashes == end)
        return argc;
    mRunOptions.arguments.assign(dashes + 1, end);
    return static_cast<int>(dashes - argv);
}

bool Commands::Parsed() const {
    return mNew->parsed() || mRun->parsed() || mPackage->parsed();
}

int Commands::Run() const {
    if (mNew->parsed())
        return New(mNewOptions);
    if (mRun->parsed())
        Project::Run(mRunOptions);
    return Package(mPackageOptions);
}

} // namespace Project
