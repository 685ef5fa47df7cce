// SPDX-License-Identifier: MIT
//
// The engine finds everything in "data/" of the working directory. A stage is a folder that looks
// to it like the game of a file, wherever that lies and however little there is of it:
//
//   Stage stage("game/data/mesh/jelly.mesh");     // the working directory from now on
//   stage.NameOf("mesh");                         // "jelly.mesh", which the store of meshes finds
//
// It consists of links to the game's files and to what lies beside the file, so what is edited
// there is what is read here. Shader files are copies: a broken one must not end a device that
// works. The seven that a game lacks are those of the repository.
#pragma once

#include <filesystem>
#include <set>
#include <string>
#include <vector>

namespace View {

class Stage {
public:
    /// Raises std::system_error where no folder can be made.
    explicit Stage(const std::filesystem::path& file);
    Stage(const Stage&) = delete;
    Stage& operator=(const Stage&) = delete;
    /// Goes back to where the program was.
    ~Stage();

    /// Absolute.
    const std::filesystem::path& File() const { return mFile; }
    /// The folder that holds the game's "data/"; the file's own where there is no such game.
    const std::filesystem::path& Root() const { return mRoot; }
    /// Where the program was.
    const std::filesystem::path& Before() const { return mBefore; }
    /// The name of the file in the store of a folder of "data/".
    std::string NameOf(const char* store) const;
    /// Names that a store would find: "mesh", "mat" or "img".
    static std::vector<std::string> Names(const char* store);
    /// Where entity files are looked for.
    std::vector<std::filesystem::path> EntityFolders() const;

    /// Links what has come since.
    void Refresh() const;
    /// The game's own shader files, which the copies are made of.
    std::filesystem::path Shaders() const { return mRoot / "data/shaders"; }
    void CopyShaders() const;

private:
    void linkGame() const;
    void linkNeighbours() const;

    std::filesystem::path mFile, mRoot, mBefore, mFolder;
    bool mIsGame = false;
};

} // namespace View
