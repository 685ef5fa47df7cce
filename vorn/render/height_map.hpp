// SPDX-License-Identifier: MIT
//
// A grid out of a bitmap, a vertex to each pixel, drawn as a wire frame.
//
//   Vorn::HeightMap hills;
//   hills.SetMesh(Vorn::MeshManager::Instance()->CreateMesh("hills"));
//   if (hills.Init("data/img/hills.bmp"))
//       hills.Draw();    // in every frame, with whatever transforms the device has
//
// The bitmap has 24 bits to a pixel and no compression. Of each pixel the first byte counts, which
// is blue; 200 is level 0, and a step of it is 4. Pixels lie 0.125 apart. The mesh belongs to its
// store, and so does the way through a reset of the device.
#pragma once

#include "vorn/core/api.hpp"
#include "vorn/resource/fwd.hpp"

namespace Vorn {

class VORN_API HeightMap {
public:
    HeightMap() = default;
    /// The copy has heights of its own and points at the same mesh.
    HeightMap(const HeightMap& map);
    HeightMap& operator=(const HeightMap& map);
    ~HeightMap() { Shutdown(); }

    /// To be set before Init; not owned.
    void SetMesh(Mesh* mesh) { mMesh = mesh; }
    Mesh* GetMesh() const { return mMesh; }

    /// Reads the bitmap and fills the mesh. False if one of the two fails.
    bool Init(const char* path);
    /// False for a file that cannot be opened, is cut short, or has a size that is negative, zero
    /// or beyond what a device takes; then nothing changes. The last row may lack its padding.
    bool LoadHeightMap(const char* path);
    /// Leaves the device's fill mode at wire frame.
    void Draw();
    /// Frees the heights and lets go of the mesh, which stays. Twice does no harm.
    void Shutdown();

private:
    /// False without a mesh or memory, which changes nothing; and where the device gives no index
    /// buffer, though the mesh has its vertices and indices in memory then.
    bool InitBuffers();

    int mWidth = 0;
    int mHeight = 0;
    unsigned int mVertexCount = 0;
    unsigned int mIndexCount = 0;
    unsigned int mTriangleCount = 0;
    Mesh* mMesh = nullptr;
    float* mHeights = nullptr; // three a pixel: column, value, row
};

} // namespace Vorn
