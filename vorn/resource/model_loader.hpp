// SPDX-License-Identifier: MIT
//
// Reads a model file into a mesh and brings its vertices and indices to the device.
//
//   Vorn::ModelLoader loader;
//   loader.Open("data/mesh/sheep.model", mesh);
//
// docs/model_file.md describes the file. No size in it is trusted: a count stands, and what the
// file no longer holds is 0, but one that asks for more than 256 MiB beyond the file is cut to what
// is there. Only a machine without memory raises.
#pragma once

#include "vorn/core/api.hpp"
#include "vorn/resource/fwd.hpp"

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <string>

namespace Vorn {

class VORN_API ModelLoader {
public:
    /// Whatever was in the mesh's memory is freed first, and its device buffers are forgotten: they
    /// are Release's. A file that cannot be opened gives an empty mesh.
    void Open(std::string path, Mesh& mesh);
    /// Whether the last Open found a file with all that its counts promise. One that ends behind
    /// the vertices or behind the skeleton, in place of further chunks, is whole.
    bool Whole() const { return mWhole; }
    /// Makes both device buffers from what is in memory. What they were is forgotten; where they
    /// cannot be made they are null.
    void Reload(Mesh& mesh);
    void Release(Mesh& mesh);

private:
    void ExtractMesh(Mesh& mesh);
    void ExtractSkeleton(Mesh& mesh);
    void ExtractAnimation(Mesh& mesh);

    void extractIndices(Mesh& mesh);
    void extractVertices(Mesh& mesh, bool skinned);
    bool extractBone(Mesh& mesh);
    void extractKeys(Bone& bone, std::uint32_t count);

    std::size_t read(void* data, std::size_t size);
    void skip(std::uint64_t size);
    std::uint32_t readCount();
    std::uint32_t trustedCount(std::uint32_t count, std::size_t recordSize);

    std::ifstream mFile;
    bool mWhole = false;
    std::uint64_t mLeft = 0; // bytes of the file that were not read yet
};

} // namespace Vorn
