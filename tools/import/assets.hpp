// SPDX-License-Identifier: MIT
//
// What stands beside the models: textures, materials and the resource pack that lists it all.
#pragma once

#include "tools/import/options.hpp"
#include "tools/import/report.hpp"
#include "tools/import/source.hpp"

#include <map>
#include <set>
#include <string>
#include <vector>

namespace Import {

/// A name that is safe in a file name: letters, digits, '.', '-' and '_' stay.
std::string SafeName(const std::string& name);

class Assets {
public:
    /// `source` is the file that the scene was read from: textures are looked for around it.
    Assets(std::string source, Report& report) : mSource(std::move(source)), mReport(report) {}

    void AddModel(const std::string& name, std::string bytes);
    /// Writes the material and its texture; the latter's name is returned.
    std::string AddMaterial(const std::string& name, const SourceMaterial& material);
    /// All files, the pack last.
    std::vector<OutputFile> Finish(const std::string& packName);

private:
    struct Image {
        /// With the ending that goes with the bytes; empty: there is none that the engine can read.
        std::string name;
        std::string bytes;
    };

    std::string texture(const SourceMaterial& material);
    Image findImage(const SourceTexture& texture, const std::string& materialName);
    std::string addTexture(const Image& image);
    std::string white();

    std::string mSource;
    Report& mReport;
    std::vector<OutputFile> mFiles;
    std::vector<std::string> mMeshes;
    std::vector<std::string> mTextures;
    std::vector<std::string> mMaterials;
    /// Names in data/img/ by the path that the source gives.
    std::map<std::string, std::string> mTextureOfPath;
    std::set<std::string> mTextureNames;
    std::string mWhite;
};

} // namespace Import
