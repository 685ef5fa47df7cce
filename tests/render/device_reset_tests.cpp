// SPDX-License-Identifier: MIT
//
// A device that is lost, refuses, comes back, or can not be made at all.
#include "tests/support/engine_device.hpp"

#include <chrono>
#include <functional>
#include <stdexcept>

namespace {

using Tests::Texts;
using Vorn::Graphic;
using VornPlatform::CountLiveObjects;

std::ptrdiff_t Resets(const Texts& calls) {
    return std::count_if(calls.begin(), calls.end(),
                         [](const std::string& call) { return call.starts_with("Reset"); });
}

class DeviceReset : public Tests::RecorderTest {
protected:
    ~DeviceReset() override { VornPlatform::FailResets(0, D3DERR_INVALIDCALL); }

    /// A device with a mesh and a texture.
    void OpenFull() {
        Open();
        Vorn::Mesh& mesh = *meshes.CreateMesh("none");
        mesh.mVertices = new Vorn::Vertex_UTx[3];
        mesh.mIndices = new unsigned int[3]{0, 1, 2};
        mesh.mVertexCount = mesh.mIndexCount = 3;
        meshes.Reload();
        folder.File("data/img/t", Tests::Tga(0xFF123456));
        textures.Load("t");
        full = CountLiveObjects();
        EXPECT_EQ(full.vertexBuffers, 2);
    }
    void ExpectFull() {
        EXPECT_TRUE(engine.CheckContext());
        EXPECT_EQ(CountLiveObjects(), full);
        EXPECT_NE(meshes.Get("none")->mVertexBuffer, nullptr);
        EXPECT_EQ(Tests::PixelsOf(*textures.Get("t")->mTexture), Tests::Pixels(1, 0xFF123456));
    }

    VornPlatform::LiveObjects full;
};

TEST_F(DeviceReset, IsTriedUntilTheDeviceAccepts) {
    OpenFull();
    VornPlatform::CallLog log;
    VornPlatform::FailResets(7, D3DERR_DEVICELOST);
    engine.Reset();
    EXPECT_EQ(Resets(Tests::Take(log)), 8);
    ExpectFull();
    // Lost for longer than refusals are borne.
    VornPlatform::FailResets(120, D3DERR_DEVICELOST);
    engine.Reset();
    EXPECT_EQ(Resets(Tests::Take(log)), 121);
    ExpectFull();
    VornPlatform::FailResets(99, D3DERR_INVALIDCALL);
    engine.Reset();
    EXPECT_EQ(Resets(Tests::Take(log)), 100);
    ExpectFull();
}

TEST_F(DeviceReset, RaisesAfterAHundredRefusalsAndSucceedsOnceTheirCauseIsGone) {
    OpenFull();
    IDirect3DVertexBuffer9* held = nullptr;
    const Vorn::Vertex_UTx vertex;
    ASSERT_TRUE(graphic.CreateVertexBuffer(56, held, &vertex));
    VornPlatform::CallLog log;
    EXPECT_THROW(engine.Reset(), std::runtime_error);
    EXPECT_EQ(Resets(Tests::Take(log)), 100);
    EXPECT_FALSE(engine.CheckContext());
    graphic.RenderText(1, 1, 1, "no device"); // harmless, as all that draws
    EXPECT_THROW(graphic.Reset(), std::runtime_error);
    held->Release();
    engine.Reset();
    ExpectFull();
}

TEST_F(DeviceReset, RefusedForGoodItIsStillFreed) {
    OpenFull();
    IDirect3DVertexBuffer9* held = nullptr;
    const Vorn::Vertex_UTx vertex;
    ASSERT_TRUE(graphic.CreateVertexBuffer(56, held, &vertex));
    EXPECT_THROW(engine.Reset(), std::runtime_error);
    Close();
    EXPECT_EQ(CountLiveObjects().devices, 1); // that of the host's buffer
    held->Release();
}

TEST_F(DeviceReset, AnInternalErrorOfTheDriverEndsTheGame) {
    OpenFull();
    VornPlatform::CallLog log;
    VornPlatform::FailResets(1, D3DERR_DRIVERINTERNALERROR);
    EXPECT_NO_THROW(engine.Reset());
    EXPECT_EQ(Resets(Tests::Take(log)), 1);
    Tests::Pump();
    EXPECT_TRUE(engine.IsShutdown());
    RECT rect = {};
    EXPECT_FALSE(GetWindowRect(Vorn::Engine::mWnd, &rect));
    EXPECT_EQ(graphic.DefaultFar(), 200000);
    graphic.RenderText(1, 1, 1, "no window"); // nor anything else that a last frame does
    graphic.BeginScene(), graphic.EndScene(), graphic.Present();
}

TEST_F(DeviceReset, ALostDeviceIsFoundAndRecovered) {
    OpenFull();
    VornPlatform::LoseDevice();
    EXPECT_FALSE(engine.CheckContext() || graphic.CheckContext());
    VornPlatform::RestoreDevice();
    EXPECT_FALSE(engine.CheckContext() || graphic.CheckContext());
    graphic.WaitForLostDevice(); // which it is not any more
    engine.Reset();
    ExpectFull();
    graphic.WaitForLostDevice();

    VornPlatform::LoseDevice();
    VornPlatform::RestoreDevice();
    engine.ToggleFullScreen();
    ExpectFull();
    EXPECT_EQ(Graphic::m3Dpp.Windowed, 0);
    engine.ToggleFullScreen();
    ExpectFull();
}

/// A window of the test's own, whose procedure does what the test asks for.
class OwnWindow : public Tests::RecorderTest {
protected:
    OwnWindow() {
        WNDCLASSEXA description = {};
        description.lpfnWndProc = [](HWND w, UINT message, WPARAM wParam, LPARAM lParam) {
            if (message == Asked && onMessage)
                onMessage();
            return DefWindowProcA(w, message, wParam, lParam);
        };
        description.lpszClassName = "Own";
        RegisterClassExA(&description);
        window = CreateWindowExA(0, "Own", "Own", 0xCA0000, 0, 0, 320, 240, nullptr, nullptr,
                                 nullptr, nullptr);
        onMessage = nullptr;
    }
    ~OwnWindow() override {
        DestroyWindow(window);
        Tests::Pump();
    }

    static constexpr UINT Asked = 1024;
    inline static std::function<void()> onMessage;
    HWND window = nullptr;
};

TEST_F(OwnWindow, MovesItsMessagesWhileAResetWaitsForTheDevice) {
    graphic.Init(window, 320, 240, false);
    VornPlatform::LoseDevice();
    int messages = 0;
    onMessage = [&] {
        if (++messages == 4)
            VornPlatform::RestoreDevice();
        else
            PostMessageA(window, Asked, 0, 0);
    };
    PostMessageA(window, Asked, 0, 0);
    graphic.Reset();
    EXPECT_EQ(messages, 4);
    EXPECT_TRUE(graphic.CheckContext());
    graphic.Free();
}

TEST_F(OwnWindow, ADeviceThatCannotBeMadeRaisesAndTheNextOneIsMade) {
    for (int i = 0; i < 2; ++i) {
        EXPECT_THROW(graphic.Init(window, 0x7FFFFFFF, 0x7FFFFFFF, false), std::exception);
        graphic.RenderText(1, 1, 1, "no device");
    }
    graphic.Init(window, 320, 240, true);
    EXPECT_TRUE(graphic.CheckContext());
    graphic.Free();
}

} // namespace
