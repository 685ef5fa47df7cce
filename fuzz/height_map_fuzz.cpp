// SPDX-License-Identifier: MIT
//
// Any bytes as the bitmap of a height map, without a device: it is refused and nothing changes, or
// the mesh is whole.
#include "fuzz/fuzz.hpp"
#include "tests/support/temp_folder.hpp"
#include "vorn/vorn.hpp"

#include <cmath>
#include <string>

FUZZ_TARGET(data, size) {
    static const Tests::TempFolder folder;
    const std::string path = folder.File("map.bmp", std::string(data, size));
    Vorn::Mesh mesh;
    Vorn::HeightMap map;
    map.SetMesh(&mesh);
    const bool whole = map.LoadHeightMap(path.c_str());
    Fuzz::Require(!map.Init(path.c_str()), "a buffer without a device");
    Fuzz::Require(whole == (mesh.mVertexCount > 0), "the mesh does not tell what was read");
    for (std::uint32_t i = 0; i < mesh.mIndexCount; ++i)
        Fuzz::Require(mesh.mIndices[i] < mesh.mVertexCount, "an index beyond the vertices");
    for (std::uint32_t i = 0; i < mesh.mVertexCount; ++i)
        Fuzz::Require(std::isfinite(mesh.mVertices[i].nx + mesh.mVertices[i].y),
                      "a vertex that is no number");
    map.Draw();

    Vorn::HeightMap copy = map;
    map.Shutdown();
    Vorn::Mesh other;
    copy.SetMesh(&other);
    copy.LoadHeightMap((folder / "missing").c_str());
    copy = map;
    Fuzz::Require(!copy.GetMesh(), "a copy with another mesh");
}
