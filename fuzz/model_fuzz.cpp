// SPDX-License-Identifier: MIT
//
// Any bytes as a model file, without a device: what is read is whole in itself, moves, and can be
// copied.
#include "fuzz/fuzz.hpp"
#include "tests/support/temp_folder.hpp"
#include "vorn/vorn.hpp"

#include <cstring>
#include <string>

namespace {

// Whether a count asks for much that the file does not hold, and gets it: filling 256 MiB takes a
// second in which thousands of other files could be tried.
bool AsksForMuch(const char* data, std::size_t size) {
    const auto countAt = [&](std::uint64_t offset) {
        std::uint32_t count = 0;
        if (offset + sizeof count <= size)
            std::memcpy(&count, data + offset, sizeof count);
        return std::uint64_t{count};
    };
    const auto isMuch = [size](std::uint64_t bytes) {
        return bytes > size + (1u << 20) && bytes <= size + (256u << 20);
    };
    const std::uint64_t indexBytes = 4 * countAt(20);
    return isMuch(indexBytes) || isMuch(52 * countAt(24 + indexBytes)) ||
           isMuch(32 * countAt(24 + indexBytes));
}

void CheckBones(const Vorn::Mesh& mesh) {
    Fuzz::Require(mesh.mBoneCount == mesh.mBones.size(), "the count of bones is another one");
    std::size_t placed = mesh.mRoots.size();
    for (std::size_t i = 0; i < mesh.mBones.size(); ++i) {
        const Vorn::Bone& bone = mesh.mBones[i];
        Fuzz::Require(bone.mParent >= -1 && bone.mParent < static_cast<int>(i),
                      "a parent behind its child");
        Fuzz::Require(bone.mKeyCount == bone.mKeys.size(), "the count of keys is another one");
        Fuzz::Require(bone.mName.size() < 108, "a name beyond its limit");
        placed += bone.mChildren.size();
    }
    Fuzz::Require(placed == mesh.mBones.size(), "a bone without a place");
}

void Walk(const Vorn::Mesh& mesh) {
    std::uint64_t sum = mesh.mBoneCount;
    for (std::uint32_t i = 0; i < mesh.mIndexCount; ++i)
        sum += mesh.mIndices[i];
    for (std::uint32_t i = 0; i < mesh.mVertexCount; ++i) {
        sum += mesh.mVertices[i].bones[3];
        Fuzz::Require(mesh.mVertices[i].color == 0xFFFFFFFFu, "a vertex of another colour");
    }
    if (mesh.mFinalTransforms)
        std::memset(mesh.mFinalTransforms, 0, mesh.mBoneCount * sizeof(D3DXMATRIX));
    static volatile std::uint64_t sink;
    sink = sum; // so that the reading is done
    Fuzz::Require(sink == sum, "memory forgets");
}

} // namespace

FUZZ_TARGET(data, size) {
    if (AsksForMuch(data, size))
        return;
    static const Tests::TempFolder folder;
    static Vorn::ModelLoader loader;
    Vorn::Mesh mesh;
    loader.Open(folder.File("model", std::string(data, size)), mesh);
    Fuzz::Require(!mesh.mVertexBuffer && !mesh.mIndexBuffer, "a buffer without a device");
    CheckBones(mesh);
    Walk(mesh);
    for (const float dt : {0.0f, 0.3f, 7.5f, -1.0f, 0.01f})
        Vorn::UpdateSkeleton(dt, mesh);
    const Vorn::Mesh copy = mesh;
    Walk(copy);
    loader.Open(folder / "missing", mesh);
    Fuzz::Require(mesh.mVertexCount == 0 && mesh.mIndexCount == 0 && mesh.mBones.empty(),
                  "a mesh kept what it had");
}
