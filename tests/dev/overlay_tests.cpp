// SPDX-License-Identifier: MIT
#include "dev/overlay.hpp"
#include "tests/support/device.hpp"

#include <imgui.h>

namespace {

using namespace Tests;
using Vorn::Dev::Overlay;

class DevOverlayTest : public DeviceTest {
protected:
    DevOverlayTest() {
        ShowWindow(window, SW_SHOWNORMAL);
        VornPlatform::SendFocus(true);
    }
    /// With its messages: what comes through to the game is counted.
    void Frame() {
        for (MSG message; PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE);) {
            keys += message.message == WM_KEYDOWN || message.message == WM_KEYUP;
            clicks += message.message == WM_LBUTTONDOWN || message.message == WM_LBUTTONUP;
        }
        Clear(blue);
        Flat();
        Quad({8, 8, 40, 40}, red);
        EXPECT_EQ(D3D_OK, device->Present(nullptr, nullptr, nullptr, nullptr));
    }
    // At the top left, with its colour from edge to edge.
    static void Block() {
        ImDrawList& list = *ImGui::GetForegroundDrawList();
        list.AddRectFilled({0, 0}, {16, 4}, IM_COL32(0, 255, 0, 255));
    }
    int keys = 0, clicks = 0;
};

TEST_F(DevOverlayTest, DrawsOverThePictureAndLeavesTheNextOneAsItWas) {
    // All that a device can have switched on: the panel must be drawn whole all the same, and the
    // game's next frame, from cached states, must come out as before.
    const auto texture = Texture(2, 2);
    device->SetTexture(0, texture);
    Set(D3DRS_COLORWRITEENABLE, 1);
    Set(D3DRS_FILLMODE, D3DFILL_WIREFRAME);
    Sampler(D3DSAMP_ADDRESSU, D3DTADDRESS_CLAMP);
    Frame();
    const Picture before = Screen();
    {
        Overlay overlay;
        overlay.AddPanel(Block);
        Frame();
        const Picture with = Screen();
        for (int y = 0; y < Side; ++y)
            for (int x = 0; x < Side; ++x) {
                const auto i = static_cast<std::size_t>(y * Side + x);
                ASSERT_EQ(with.pixels[i], x < 16 && y < 4 ? green : before.pixels[i])
                    << x << ' ' << y;
            }
        EXPECT_THROW(Overlay(), std::logic_error);
        Frame();
        EXPECT_TRUE(Same(Screen(), with)) << "a second frame is like the first";
    }
    Frame();
    EXPECT_TRUE(Same(Screen(), before));
}

TEST_F(DevOverlayTest, KeepsWhatIsTypedAndClickedInAPanelFromTheGame) {
    Overlay overlay;
    int pressed = 0;
    overlay.AddPanel([&] {
        ImGui::SetNextWindowPos({0, 0});
        ImGui::SetNextWindowSize({320, 240});
        ImGui::Begin("all");
        ImGui::SetCursorPos({0, 20});
        pressed += ImGui::Button("press", {320, 220});
        ImGui::End();
    });
    overlay.OnKey([](int scancode) { return scancode == 58; }); // F1
    const auto key = [&](int code) {
        VornPlatform::SendKey(code, true);
        VornPlatform::SendKey(code, false);
        Frame();
    };
    Frame();
    EXPECT_EQ(keys, 0);
    key('W');
    EXPECT_EQ(keys, 2);
    key(VK_F1);
    EXPECT_EQ(keys, 2) << "the handler has kept it, and its release";

    VornPlatform::SendMouseMove(512, 384); // the window fills the screen of 1024 by 768
    Frame();
    Frame();
    EXPECT_TRUE(overlay.WantsMouse());
    VornPlatform::SendMouseButton(1, true);
    VornPlatform::SendMouseButton(1, false);
    Frame();
    Frame();
    EXPECT_EQ(pressed, 1);
    EXPECT_EQ(clicks, 0);
}

TEST_F(DevOverlayTest, OutlivesItsDeviceAndDrawsOnTheNext) {
    Overlay overlay;
    overlay.AddPanel(Block);
    Frame();
    Open(Parameters(32, 32));
    Frame();
    EXPECT_EQ(Screen().pixels[0], green);
    Close();
}

} // namespace
