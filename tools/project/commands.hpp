// SPDX-License-Identifier: MIT
//
// The commands of who makes a game: new, run, package.
#pragma once

#include "tools/new.hpp"
#include "tools/package.hpp"
#include "tools/run.hpp"

#include <CLI/App.hpp>

namespace Project {

class Commands {
public:
    /// Adds the three to the command line; the object outlives the parsing.
    explicit Commands(CLI::App& app);
    Commands(const Commands&) = delete;
    Commands& operator=(const Commands&) = delete;

    /// Keeps what stands behind the first "--" of `vorn run`, which the game gets. What is left of
    /// the command line.
    int TakeArguments(int argc, char** argv);
    bool Parsed() const;
    /// The exit status of the one that was asked for.
    int Run() const;

private:
    NewOptions mNewOptions;
    RunOptions mRunOptions;
    PackageOptions mPackageOptions;
    CLI::App *mNew, *mRun, *mPackage;
};

} // namespace Project
