// SPDX-License-Identifier: MIT
#include "vorn/shell/engine.hpp"

#include "vorn/input/keyboard_mouse.hpp"
#include "vorn/render/graphic.hpp"
#include "vorn/resource/rsc_pack_manager.hpp"
#include "vorn/sound/sound_manager.hpp"

#include <utility>

namespace Vorn {

bool Engine::isFullscreen = false;
bool Engine::isActive = false;
bool Engine::isShutdown = false;
HMENU Engine::mMenu = nullptr;
RECT Engine::mRectWindow{};
WNDCLASSEXA Engine::mWc{};
unsigned int Engine::mWindowWidth = 0;
unsigned int Engine::mWindowHeight = 0;
HWND Engine::mWnd = nullptr;
std::string Engine::mWindowTitle;
Graphic* Engine::mGraphics = Singleton<Graphic>::Instance();
RscPackManager* Engine::mResourcePackManager = Singleton<RscPackManager>::Instance();
HCURSOR Engine::mCursor = nullptr;

namespace {

constexpr DWORD WindowStyle = WS_OVERLAPPED | WS_CAPTION | WS_SYSMENU | WS_MINIMIZEBOX;
constexpr WORD CursorResource = 101;
// Of the record where pointers have 32 bits, as the platform's other records are told; pointers
// here make ours longer, and the layer does not look at the field.
constexpr UINT ClassRecordSize = 48;

void SetActive(bool active) {
    Engine::isActive = active;
    SoundManager::Instance()->MuteBgm(!active);
    SoundManager::Instance()->MuteSfx(!active);
}

LRESULT CALLBACK WindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_DESTROY:
        Engine::isShutdown = true;
        return 0;
    case WM_SIZE:
        return 0;
    case WM_ACTIVATE:
        SetActive(LOWORD(wParam) != 0);
        return 0;
    case WM_ERASEBKGND:
        // Nobody paints over the picture of the device.
        return 0;
    case WM_SETCURSOR:
        if (LOWORD(lParam) == HTCLIENT) {
            SetCursor(Engine::mCursor);
            ShowCursor(FALSE);
        }
        return 1;
    case WM_MOUSEMOVE: {
        long position = static_cast<long>(lParam);
        GetMousePos(position);
        return 0;
    }
    case WM_MOUSEWHEEL: {
        unsigned int wheel = static_cast<unsigned int>(wParam);
        GetMouseScroll(wheel);
        return 0;
    }
    default:
        return DefWindowProcA(window, message, wParam, lParam);
    }
}

HCURSOR LoadPointer(HINSTANCE module) {
    if (HCURSOR cursor = LoadCursorFromFileA("data/cursor_pointer.ani"))
        return cursor;
    return static_cast<HCURSOR>(
        LoadImageA(module, MAKEINTRESOURCEA(CursorResource), IMAGE_CURSOR, 0, 0, 0));
}

} // namespace

void Engine::Init(const std::string& title, unsigned int width, unsigned int height,
                  bool fullscreen) {
    isFullscreen = fullscreen;
    // First of all, since the class refers to the title by its place in memory.
    mWindowTitle = title;
    mWindowWidth = width;
    mWindowHeight = height;

    mWc = {};
    mWc.cbSize = ClassRecordSize;
    mWc.style = CS_CLASSDC;
    mWc.lpfnWndProc = &WindowProcedure;
    mWc.hInstance = GetModuleHandleA(nullptr);
    mWc.lpszClassName = mWindowTitle.c_str();
    mCursor = LoadPointer(mWc.hInstance);
    mWc.hCursor = mCursor;
    RegisterClassExA(&mWc);

    // Measured with a frame that can be dragged, which the window does not have: where that frame
    // has a width, the client area comes out a little larger than asked for.
    const int w = static_cast<int>(width);
    const int h = static_cast<int>(height);
    mRectWindow = {0, 0, w, h};
    AdjustWindowRect(&mRectWindow, WS_OVERLAPPEDWINDOW, FALSE);
    mRectWindow = {0, 0, mRectWindow.right - mRectWindow.left,
                   mRectWindow.bottom - mRectWindow.top};

    const char* const name = mWindowTitle.c_str();
    if (fullscreen)
        mWnd = CreateWindowExA(0, name, name, WS_POPUP, 0, 0, w, h, nullptr, nullptr, mWc.hInstance,
                               nullptr);
    else
        mWnd = CreateWindowExA(0, name, name, WindowStyle, CW_USEDEFAULT, CW_USEDEFAULT,
                               mRectWindow.right, mRectWindow.bottom, nullptr, nullptr,
                               mWc.hInstance, nullptr);
    DisplayWindow();
    mGraphics->Init(mWnd, width, height, fullscreen);
}

void Engine::Free() {
    mGraphics->Free();
}

bool Engine::CheckContext() {
    return mGraphics->CheckContext();
}

void Engine::Reset() {
    mResourcePackManager->Release();
    mGraphics->Reset();
    mResourcePackManager->Reload();
}

void Engine::ToggleFullScreen() {
    isFullscreen = !isFullscreen;
    if (isFullscreen)
        GetWindowRect(mWnd, &mRectWindow);

    // The device first, in its new mode, and the window after it.
    mGraphics->WaitForLostDevice();
    const D3DPRESENT_PARAMETERS before = Graphic::m3Dpp;
    Graphic::m3Dpp = isFullscreen ? Graphic::m3DppFull : Graphic::m3DppWindow;
    try {
        Reset();
    } catch (...) {
        isFullscreen = !isFullscreen;
        Graphic::m3Dpp = before;
        throw;
    }

    if (isFullscreen) {
        SetWindowLongA(mWnd, GWL_STYLE, static_cast<LONG>(WS_POPUP));
        if (!mMenu) {
            mMenu = GetMenu(mWnd);
            SetMenu(mWnd, nullptr);
        }
    } else {
        SetWindowLongA(mWnd, GWL_STYLE, static_cast<LONG>(WindowStyle));
        if (mMenu)
            SetMenu(mWnd, std::exchange(mMenu, nullptr));
        const RECT& r = mRectWindow;
        SetWindowPos(mWnd, HWND_NOTOPMOST, r.left, r.top, r.right - r.left, r.bottom - r.top,
                     SWP_SHOWWINDOW);
    }
    DisplayWindow();
}

void Engine::DisplayWindow() {
    ShowWindow(mWnd, SW_SHOWDEFAULT);
    UpdateWindow(mWnd);
}

RECT Engine::GetRect() const {
    RECT rect{};
    GetWindowRect(mWnd, &rect);
    return rect;
}

} // namespace Vorn
