// SPDX-License-Identifier: MIT
//
// The engine's window with a device that draws: what it shows stays through every reset.
#include "tests/support/engine_device.hpp"

#include <map>

namespace {

using Tests::Pixels;
using Vorn::Engine;
using Vorn::Graphic;
using VornPlatform::CountGpuObjects;
using VornPlatform::CountLiveObjects;

class EngineDevice : public Tests::PictureTest {
protected:
    /// Three textured triangles whose pointers the test keeps, as components do.
    void Load() {
        std::uint32_t colour = 0xFF4080C0;
        float left = -0.9f;
        for (const char* name : {"a", "b", "c"}) {
            folder.File(std::string("data/img/") + name, Tests::Tga(colour));
            textures.Load(name);
            testing::internal::CaptureStdout();
            Vorn::Mesh* const mesh = meshes.CreateMesh(name);
            testing::internal::GetCapturedStdout();
            extra.insert(name);
            mesh->mVertexCount = mesh->mIndexCount = 3;
            mesh->mVertices = new Vorn::Vertex_UTx[3]{{left, -0.5f, 0.5f, 0, 0, 0, 0, 0},
                                                      {left, 0.5f, 0.5f, 0, 0, 0, 0, 0},
                                                      {left + 0.4f, 0, 0.5f, 0, 0, 0, 0, 0}};
            mesh->mIndices = new unsigned int[3]{0, 1, 2};
            drawn[mesh] = textures.Get(name);
            colour = colour << 8 | 0xFF000000 | colour >> 24;
            left += 0.6f;
        }
        meshes.Reload();
    }
    Pixels Frame() {
        graphic.SetBackBufferColor(0xFF000000);
        graphic.BeginScene();
        graphic.SetFVF(0x152);
        for (const auto& [mesh, texture] : drawn) {
            graphic.SetTexture(*texture->mTexture);
            graphic.SetMesh(mesh->mVertexBuffer, 56);
            graphic.SetIndices(mesh->mIndexBuffer);
            graphic.Draw(3, 1);
        }
        graphic.Draw3DLine(Vorn::Vector3(-1, 0.8f, 0), Vorn::Vector3(1, 0.8f, 0),
                           Vorn::COLORS{0xFFFF00FFu});
        graphic.RenderText(40, 500, 0xFFFFFFFFu, "the same");
        graphic.EndScene();
        const Pixels pixels = Picture();
        graphic.Present();
        return pixels;
    }

    std::map<Vorn::Mesh*, Vorn::Texture*> drawn;
};

TEST_F(EngineDevice, ShowsTheSameThroughTenSwitchesAndResets) {
    Open();
    Load();
    const Pixels before = Frame();
    EXPECT_GT(std::count_if(before.begin(), before.end(), [](auto p) { return p != 0xFF000000; }),
              10000);
    const auto slots = [&] {
        std::vector<const void*> pointers;
        for (const auto& [mesh, texture] : drawn)
            pointers.insert(pointers.end(), {mesh, texture, texture->mTexture});
        for (const char* name : {"a", "b", "c"})
            pointers.insert(pointers.end(), {meshes.Get(name), textures.Get(name)});
        return pointers;
    };
    const auto pointers = slots();
    const VornPlatform::LiveObjects live = CountLiveObjects();
    VornPlatform::GpuObjects gpu;
    for (int i = 1; i <= 10; ++i) {
        engine.ToggleFullScreen();
        Tests::Pump();
        EXPECT_EQ(engine.IsFullscreen(), i % 2 == 1);
        EXPECT_EQ(Graphic::m3Dpp.Windowed, i % 2 == 0);
        if (i % 3 == 0)
            engine.Reset();
        EXPECT_TRUE(engine.CheckContext());
        EXPECT_EQ(slots(), pointers);
        EXPECT_TRUE(Frame() == before) << i;
        EXPECT_EQ(CountLiveObjects(), live);
        if (i == 1)
            gpu = CountGpuObjects();
        EXPECT_EQ(CountGpuObjects(), gpu);
    }
}

TEST_F(EngineDevice, ComesBackWhenItWasLost) {
    Open();
    Load();
    const Pixels before = Frame();
    for (int i = 0; i < 2; ++i) {
        VornPlatform::LoseDevice();
        EXPECT_FALSE(engine.CheckContext());
        Frame(); // which nobody sees
        VornPlatform::RestoreDevice();
        EXPECT_FALSE(engine.CheckContext());
        engine.Reset();
        EXPECT_TRUE(engine.CheckContext());
        EXPECT_TRUE(Frame() == before);
    }
}

TEST_F(EngineDevice, ComesUpAgainAfterItWasFreed) {
    Pixels before;
    for (const bool fullscreen : {false, true, false}) {
        Open(800, 600, fullscreen);
        EXPECT_EQ(Engine::mGraphics, Graphic::Instance());
        EXPECT_EQ(Engine::mResourcePackManager, Vorn::RscPackManager::Instance());
        EXPECT_EQ(Graphic::m3Dpp.Windowed, !fullscreen);
        EXPECT_EQ(Graphic::m3Dpp.hDeviceWindow, Engine::mWnd);
        Load();
        const Pixels now = Frame();
        EXPECT_TRUE(before.empty() || now == before);
        before = now;
        drawn.clear();
        Close();
        EXPECT_EQ(CountLiveObjects().devices, 0);
        EXPECT_EQ(CountGpuObjects(), VornPlatform::GpuObjects());
    }
}

TEST_F(EngineDevice, AGameThatIsClosedDrawsItsLastFrameAndEnds) {
    Open();
    Load();
    VornPlatform::SendClose();
    Tests::Pump();
    EXPECT_TRUE(engine.IsShutdown());
    Frame();
    engine.CheckContext();
}

// Nothing can bring the device back then: waits that would go on for ever end.
TEST_F(EngineDevice, NobodyWaitsForALostDeviceWhoseWindowHasGone) {
    Open();
    VornPlatform::LoseDevice();
    VornPlatform::SendClose();
    Tests::Pump();
    engine.Reset();
    Graphic::Instance()->WaitForLostDevice();
    EXPECT_FALSE(engine.CheckContext());
    VornPlatform::RestoreDevice();
}

} // namespace
