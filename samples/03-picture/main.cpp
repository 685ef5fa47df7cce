// SPDX-License-Identifier: MIT
//
// A balloon over hills, drawn without a shader: see README.md beside this file.
#include "platform/control/vorn_platform.hpp"
#include "samples/support.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <exception>
#include <stdexcept>

namespace {

constexpr unsigned int Width = 800, Height = 600;
constexpr D3DCOLOR Sky = D3DCOLOR_XRGB(24, 34, 58);
constexpr auto RopeColor = static_cast<Vorn::COLORS>(D3DCOLOR_XRGB(235, 214, 160));
constexpr auto FrameColor = static_cast<Vorn::COLORS>(D3DCOLOR_XRGB(235, 177, 52));
constexpr unsigned int TextColor = D3DCOLOR_XRGB(243, 232, 205);
// The height map has 8 pixels to a unit and 4 units to a grey level; this is a flatter country.
const Vorn::Vector3 HillScale(5.0f, 0.045f, 5.0f);

/// From deep green in the valleys to nearly white on the ridges.
D3DCOLOR HillColor(float height) {
    const float t = std::clamp(height * HillScale.y / 8.0f, 0.0f, 1.0f);
    const auto mix = [t](int low, int high) {
        return static_cast<unsigned int>(
            std::lround(static_cast<float>(low) * (1.0f - t) + static_cast<float>(high) * t));
    };
    return D3DCOLOR_XRGB(mix(34, 222), mix(92, 226), mix(88, 214));
}

class Picture {
public:
    Picture() : mGraphics(*Vorn::Graphic::Instance()) {
        Vorn::Engine::Instance()->Init("Vorn: picture", Width, Height, false);
        loadBalloon();
        loadHills();
    }
    Picture(const Picture&) = delete;
    Picture& operator=(const Picture&) = delete;
    // What holds objects of the device goes before it.
    ~Picture() {
        Vorn::RscPackManager::Instance()->Free();
        Vorn::MeshManager::Instance()->Unload("hills");
        Vorn::Engine::Instance()->Free();
    }

    void Draw(float seconds) {
        mGraphics.SetBackBufferColor(Sky);
        mGraphics.BeginScene();
        using namespace Vorn;
        mGraphics.SetView(Matrix4::LookAt({0.0f, 8.5f, -17.0f}, {0.0f, 4.6f, 0.0f}, {0, 1, 0}));
        mGraphics.SetProjection(
            Matrix4::Projection(mGraphics.DefaultFOV(), 4.0f / 3.0f, 0.5f, 200));
        drawHills();
        const Vector3 place(std::sin(seconds * 0.7f) * 0.6f, 6.4f + std::sin(seconds) * 0.3f, 0.0f);
        drawBalloon(place, seconds * 0.2f);
        drawRopes(place);
        drawWriting(place.y);
        mGraphics.EndScene();
    }

private:
    void loadBalloon() {
        Vorn::RscPack& pack =
            *Vorn::RscPackManager::Instance()->LoadRscPack("data/pack/balloon.json");
        pack.InitLoad();
        while (!pack.Load(nullptr)) {
        }
        mBalloon = Vorn::MeshManager::Instance()->Get(pack.mMeshes.at(0));
        mMaterial = Vorn::MaterialManager::Instance()->Get(pack.mMaterials.at(0));
    }

    void loadHills() {
        auto& meshes = *Vorn::MeshManager::Instance();
        Vorn::Mesh* mesh = meshes.CreateMesh("hills");
        mHills.SetMesh(mesh);
        if (!mHills.Init("samples/03-picture/hills.bmp"))
            throw std::runtime_error("samples/03-picture/hills.bmp: no height map");
        for (unsigned int i = 0; i < mesh->mVertexCount; ++i)
            mesh->mVertices[i].color = HillColor(mesh->mVertices[i].y);
        // The colours have to reach the device too: as after a reset.
        meshes.Release();
        meshes.Reload();
    }

    void setWorld(const Vorn::Matrix4& world) {
        // The device multiplies row vectors, and this one setter takes the floats as they stand.
        mGraphics.SetWorldTransform(world.Transposed());
    }

    void drawHills() {
        mGraphics.SetPointLight(false);
        mGraphics.SetTexture(nullptr);
        setWorld(Vorn::Matrix4::Translation(0.0f, -3.0f, 10.0f) *
                 Vorn::Matrix4::Scaling(HillScale));
        mHills.Draw();
        mGraphics.SetWireFrame(false);
    }

    void drawBalloon(const Vorn::Vector3& place, float turn) {
        light();
        setWorld(Vorn::Matrix4::Translation(place) * Vorn::Matrix4::RotationEuler(0, turn, 0));
        mGraphics.SetMesh(mBalloon->mVertexBuffer, sizeof(Vorn::Vertex_UTx));
        mGraphics.SetIndices(mBalloon->mIndexBuffer);
        mGraphics.SetFVF(D3DFVF_XYZ | D3DFVF_NORMAL | D3DFVF_DIFFUSE | D3DFVF_TEX1);
        mGraphics.SetTexture(*mMaterial->Texture()->mTexture);
        mGraphics.Draw(mBalloon->mVertexCount, mBalloon->mIndexCount / 3);
        mGraphics.SetPointLight(false);
    }

    /// A sun from the left, and the sky from everywhere else.
    void light() {
        const auto shine = [this](DWORD index, const D3DVECTOR& direction, float r, float g,
                                  float b) {
            D3DLIGHT9 light = {};
            light.Type = D3DLIGHT_DIRECTIONAL;
            light.Diffuse = {r, g, b, 1.0f};
            light.Direction = direction;
            mGraphics.GetDevice()->SetLight(index, &light);
            mGraphics.GetDevice()->LightEnable(index, TRUE);
        };
        mGraphics.GetDevice()->LightEnable(1, FALSE); // the engine's own, which stands elsewhere
        shine(2, {0.75f, -0.45f, 0.5f}, 0.85f, 0.8f, 0.7f);
        shine(3, {-0.5f, -0.3f, 0.8f}, 0.35f, 0.38f, 0.45f);
        shine(4, {0.0f, 1.0f, 0.2f}, 0.14f, 0.15f, 0.2f);
        mGraphics.SetPointLight(true);
    }

    void drawRopes(const Vorn::Vector3& place) {
        const Vorn::Vector3 basket = place + Vorn::Vector3(0.0f, -3.6f, 0.0f);
        mGraphics.Draw3DLine(basket, {-3.0f, -1.6f, 2.0f}, RopeColor);
        mGraphics.Draw3DLine(basket, {3.0f, -1.6f, 2.0f}, RopeColor);
    }

    void drawWriting(float height) {
        // The helper leaves the last point out, so the frame's first stands twice more.
        const Vorn::Point2 frame[] = {{8, 8}, {791, 8}, {791, 591}, {8, 591}, {8, 8}, {8, 8}};
        mGraphics.Draw2DLine(frame, 6, FrameColor, 2.0f);
        mGraphics.RenderText(22, 18, TextColor, "A balloon over the hills");
        char text[64];
        std::snprintf(text, sizeof text, "%.1f m above the ropes' ends",
                      static_cast<double>(height));
        mGraphics.RenderText(22, 562, TextColor, text);
    }

    Vorn::Graphic& mGraphics;
    Vorn::HeightMap mHills;
    Vorn::Mesh* mBalloon = nullptr;
    Vorn::Material* mMaterial = nullptr;
};

void Show(Picture& picture) {
    float seconds = 0.0f;
    Samples::Loop([&](float dt) {
        seconds += dt;
        picture.Draw(seconds);
    });
}

} // namespace

int main(int argc, char** argv) {
    if (argc > 2) {
        std::fprintf(stderr, "03-picture [FILE.png]\n");
        return 2;
    }
    try {
        Picture picture;
        if (argc == 1 && VornPlatform::HasDisplay()) {
            Show(picture);
            return 0;
        }
        picture.Draw(1.2f);
        Samples::SavePicture(argc > 1 ? argv[1]
                                      : Samples::InTemporaryFolder("vorn-03-picture.png"));
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "03-picture: %s\n", error.what());
        return 1;
    }
}
