// SPDX-License-Identifier: MIT
#include "tools/view/window.hpp"

#include "vorn/render/emitter_system.hpp"
#include "vorn/render/graphic.hpp"
#include "vorn/shell/engine.hpp"

#include <algorithm>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace View {
namespace {

constexpr float Settled = 0.2f; // (unit: seconds)
constexpr LONG SmallestSide = 64;

/// Whether the picture's size was another one.
bool FitPicture(POINT size) {
    D3DPRESENT_PARAMETERS& windowed = Vorn::Graphic::m3DppWindow;
    const auto width = static_cast<UINT>(std::max(size.x, SmallestSide));
    const auto height = static_cast<UINT>(std::max(size.y, SmallestSide));
    if (windowed.BackBufferWidth == width && windowed.BackBufferHeight == height)
        return false;
    windowed.BackBufferWidth = width;
    windowed.BackBufferHeight = height;
    Vorn::Graphic::m3Dpp = windowed;
    return true;
}

} // namespace

Window::Window(const Options& options, const Overheard& said) {
    const std::string title = "Vorn: " + std::filesystem::path(options.file).filename().string();
    try {
        Vorn::Engine::Instance()->Init(title, options.width, options.height, false);
    } catch (const std::exception& error) {
        const std::string text = said.Text();
        throw std::runtime_error(
            text.empty() ? std::string("no picture can be made here: ") + error.what() : text);
    }
    SetWindowLongA(Vorn::Engine::mWnd, GWL_STYLE, WS_OVERLAPPEDWINDOW);
    // Hands its list to those who draw particles; each emitter is readied by its subject.
    Vorn::EmitterSystem::Instance()->Init();
}

Window::~Window() {
    Vorn::Engine::Instance()->Free();
}

bool Window::FetchMessages() {
    for (MSG message; PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE);) {
        TranslateMessage(&message);
        DispatchMessageA(&message);
    }
    return !Vorn::Engine::Instance()->IsShutdown();
}

void Window::Update(Viewer& viewer, float dt) {
    auto& engine = *Vorn::Engine::Instance();
    const RECT window = engine.GetRect(); // which has no frame here
    const POINT size = {window.right - window.left, window.bottom - window.top};
    mSince = size.x == mSize.x && size.y == mSize.y ? mSince + dt : 0.0f;
    mSize = size;
    // A reset compiles all shaders: not before the user has let go of the edge.
    const bool resized = mSince > Settled && FitPicture(size);
    if (!resized && engine.CheckContext())
        return;
    viewer.Subject().BeforeReset();
    engine.Reset();
    viewer.Subject().AfterReset();
}

} // namespace View
