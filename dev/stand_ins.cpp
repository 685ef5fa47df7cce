// SPDX-License-Identifier: MIT
#include "dev/stand_ins.hpp"

#include "dev/messages.hpp"
#include "vorn/render/graphic.hpp"
#include "vorn/render/graphics_cmpt.hpp"
#include "vorn/render/graphics_system.hpp"
#include "vorn/resource/mesh_manager.hpp"
#include "vorn/resource/texture_manager.hpp"
#include "vorn/scene/entity.hpp"
#include "vorn/scene/scene.hpp"
#include "vorn/scene/scene_manager.hpp"

#include <d3d9.h>

#include <cstdint>

namespace Vorn::Dev {

namespace {

constexpr D3DCOLOR Magenta = 0xFFFF00FF, Dark = 0xFF200020;

IDirect3DTexture9* MakeCheckers(IDirect3DDevice9& device) {
    constexpr UINT Side = 32, Field = 8;
    IDirect3DTexture9* texture = nullptr;
    D3DLOCKED_RECT locked = {};
    // What is managed survives a reset, and does not stand in its way.
    if (FAILED(device.CreateTexture(Side, Side, 1, 0, D3DFMT_A8R8G8B8, D3DPOOL_MANAGED, &texture,
                                    nullptr)) ||
        FAILED(texture->LockRect(0, &locked, nullptr, 0)))
        return texture;
    for (UINT y = 0; y < Side; ++y) {
        auto* row = static_cast<std::uint32_t*>(locked.pBits) +
                    y * static_cast<UINT>(locked.Pitch) / sizeof(std::uint32_t);
        for (UINT x = 0; x < Side; ++x)
            row[x] = (x / Field + y / Field) % 2 ? Dark : Magenta;
    }
    texture->UnlockRect(0);
    return texture;
}

// Six sides of four corners, each with the whole texture.
void MakeBox(Mesh& mesh) {
    constexpr unsigned int Sides = 6, Corners = 4, Order[] = {0, 1, 2, 2, 1, 3};
    mesh.mVertices = new Vertex_UTx[Sides * Corners];
    mesh.mIndices = new unsigned int[Sides * std::size(Order)];
    for (unsigned int side = 0; side < Sides; ++side) {
        const unsigned int axis = side / 2;
        const float sign = side % 2 ? 1.0f : -1.0f;
        for (unsigned int corner = 0; corner < Corners; ++corner) {
            const float u = corner % 2 ? 1.0f : 0.0f, v = corner / 2 ? 1.0f : 0.0f;
            float place[3] = {}, normal[3] = {};
            normal[axis] = place[axis] = sign;
            place[(axis + 1) % 3] = 2 * u - 1;
            place[(axis + 2) % 3] = 2 * v - 1;
            Vertex_UTx& vertex = mesh.mVertices[side * Corners + corner];
            vertex =
                Vertex_UTx(place[0], place[1], place[2], normal[0], normal[1], normal[2], u, v);
            vertex.color = Magenta;
        }
        for (unsigned int i = 0; i < std::size(Order); ++i)
            mesh.mIndices[side * std::size(Order) + i] = side * Corners + Order[i];
    }
    mesh.mVertexCount = Sides * Corners;
    mesh.mIndexCount = Sides * static_cast<unsigned int>(std::size(Order));
}

} // namespace

void StandIns::Update(Messages& messages) {
    IDirect3DDevice9* const device = Graphic::LiveDevice();
    if (!device || device->TestCooperativeLevel() != D3D_OK)
        return;
    TextureManager::Instance()->ForEach([&](const std::string&, Texture& texture) {
        if (!texture.mTexture || *texture.mTexture)
            return;
        *texture.mTexture = MakeCheckers(*device);
        messages.Fault(texture.mPath, "it cannot be read as a picture");
    });
    MeshManager::Instance()->ForEach([&](const std::string& name, Mesh& mesh) {
        if (mesh.mVertices && mesh.mVertexCount > 0)
            return;
        ModelLoader loader;
        loader.Release(mesh);
        mesh.Clear();
        MakeBox(mesh);
        loader.Reload(mesh);
        mBoxes[&mesh] = mesh.mVertices;
        messages.Fault("data/mesh/" + name, "it cannot be read as a model");
    });
    if (mBoxes.empty())
        return;
    if (const Scene* scene = SceneManager::Instance()->CurrentScene())
        for (Entity* entity : scene->EntityList())
            drawEdges(*entity);
}

void StandIns::drawEdges(Entity& entity) const {
    const Mesh* mesh = entity.Graphics() ? entity.Graphics()->GetMesh() : nullptr;
    const auto box = mBoxes.find(mesh);
    if (box == mBoxes.end() || mesh->mVertices != box->second || !entity.IsAlive())
        return;
    const Matrix4 world = entity.GetWorld();
    const auto corner = [&](unsigned int bits) {
        const auto at = [bits](unsigned int axis) { return bits >> axis & 1 ? 1.05f : -1.05f; };
        return world * Vector3(at(0), at(1), at(2));
    };
    for (unsigned int bits = 0; bits < 8; ++bits)
        for (unsigned int axis = 1; axis < 8; axis *= 2)
            if (!(bits & axis))
                GraphicsSystem::Instance()->AddLine(corner(bits), corner(bits | axis),
                                                    COLORS{Magenta});
}

} // namespace Vorn::Dev
