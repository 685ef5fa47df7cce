// SPDX-License-Identifier: MIT
//
// ImGui's renderer for OpenGL is used as it comes. Its part for SDL is not: it asks the desktop for
// the mouse in place of taking events, and shows and hides the cursor, which is the game's.
#include "dev/overlay.hpp"

#include "platform/control/vorn_overlay.hpp"

#include <SDL.h>
#include <backends/imgui_impl_opengl3.h>
#include <imgui.h>

#include <algorithm>
#include <bitset>
#include <chrono>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace Vorn::Dev {

namespace {

constexpr std::pair<ImGuiKey_, SDL_Scancode> KeyTable[] = {
    {ImGuiKey_Tab, SDL_SCANCODE_TAB},
    {ImGuiKey_LeftArrow, SDL_SCANCODE_LEFT},
    {ImGuiKey_RightArrow, SDL_SCANCODE_RIGHT},
    {ImGuiKey_UpArrow, SDL_SCANCODE_UP},
    {ImGuiKey_DownArrow, SDL_SCANCODE_DOWN},
    {ImGuiKey_PageUp, SDL_SCANCODE_PAGEUP},
    {ImGuiKey_PageDown, SDL_SCANCODE_PAGEDOWN},
    {ImGuiKey_Home, SDL_SCANCODE_HOME},
    {ImGuiKey_End, SDL_SCANCODE_END},
    {ImGuiKey_Insert, SDL_SCANCODE_INSERT},
    {ImGuiKey_Delete, SDL_SCANCODE_DELETE},
    {ImGuiKey_Backspace, SDL_SCANCODE_BACKSPACE},
    {ImGuiKey_Space, SDL_SCANCODE_SPACE},
    {ImGuiKey_Enter, SDL_SCANCODE_RETURN},
    {ImGuiKey_Escape, SDL_SCANCODE_ESCAPE},
    {ImGuiKey_KeyPadEnter, SDL_SCANCODE_KP_ENTER},
    {ImGuiKey_A, SDL_SCANCODE_A},
    {ImGuiKey_C, SDL_SCANCODE_C},
    {ImGuiKey_V, SDL_SCANCODE_V},
    {ImGuiKey_X, SDL_SCANCODE_X},
    {ImGuiKey_Y, SDL_SCANCODE_Y},
    {ImGuiKey_Z, SDL_SCANCODE_Z}};

std::size_t MouseButton(Uint8 button) {
    constexpr std::size_t order[] = {0, 2, 1, 3, 4}; // left, middle, right and the two at the side
    return order[std::clamp<std::size_t>(button, 1, std::size(order)) - 1];
}

// The renderer puts the top row last, as a window has it; in the back buffer it is the first.
void TurnOver(ImDrawData& data) {
    const float height = data.DisplaySize.y;
    for (int i = 0; i < data.CmdListsCount; ++i) {
        for (ImDrawVert& vertex : data.CmdLists[i]->VtxBuffer)
            vertex.pos.y = height - vertex.pos.y;
        for (ImDrawCmd& command : data.CmdLists[i]->CmdBuffer) {
            ImVec4& clip = command.ClipRect;
            clip = ImVec4(clip.x, height - clip.w, clip.z, height - clip.y);
        }
    }
}

} // namespace

struct Overlay::Impl final : VornPlatform::ScreenOverlay {
    using Clock = std::chrono::steady_clock;

    Impl();
    Impl(const Impl&) = delete;
    Impl& operator=(const Impl&) = delete;
    ~Impl();

    bool OnEvent(const SDL_Event& event) override;
    void OnPresent(SDL_Window* window, int width, int height) override;
    void OnContextLost(bool lives) override;

    bool onKey(const SDL_KeyboardEvent& event);
    bool onButton(const SDL_MouseButtonEvent& event);
    void drawFrame();

    ImGuiContext* mGui = nullptr;
    SDL_GLContext mContext = nullptr; // in which the renderer has its objects
    std::vector<std::function<void()>> mPanels;
    std::function<bool(int)> mKeyHandler;
    float mScaleX = 1, mScaleY = 1; // from the window's pixels to those of the picture
    Clock::time_point mLast = Clock::now();
    // A click that comes and goes between two frames counts as one.
    std::bitset<5> mDown, mPressed;
    // Presses that were kept from the game.
    std::bitset<SDL_NUM_SCANCODES> mKeptKeys;
    std::bitset<32> mKeptButtons;
};

Overlay::Impl::Impl() {
    if (VornPlatform::GetOverlay())
        throw std::logic_error("Vorn::Dev::Overlay: there is one already");
    IMGUI_CHECKVERSION();
    mGui = ImGui::CreateContext();
    ImGuiIO& io = ImGui::GetIO();
    io.IniFilename = nullptr; // a game's folder is no place for our notes
    for (const auto& [key, scancode] : KeyTable)
        io.KeyMap[key] = scancode;
    io.SetClipboardTextFn = [](void*, const char* text) { SDL_SetClipboardText(text); };
    io.GetClipboardTextFn = [](void*) -> const char* {
        static std::string text;
        char* const got = SDL_GetClipboardText();
        text = got;
        SDL_free(got);
        return text.c_str();
    };
    VornPlatform::SetOverlay(this);
}

Overlay::Impl::~Impl() {
    VornPlatform::SetOverlay(nullptr);
    // Elsewhere its objects go with the context.
    OnContextLost(mContext && SDL_GL_GetCurrentContext() == mContext);
    ImGui::DestroyContext(mGui);
}

bool Overlay::Impl::onKey(const SDL_KeyboardEvent& event) {
    const auto key = static_cast<std::size_t>(event.keysym.scancode);
    if (key >= mKeptKeys.size())
        return false;
    ImGuiIO& io = ImGui::GetIO();
    const auto modifiers = event.keysym.mod;
    io.KeyShift = (modifiers & KMOD_SHIFT) != 0;
    io.KeyCtrl = (modifiers & KMOD_CTRL) != 0;
    io.KeyAlt = (modifiers & KMOD_ALT) != 0;
    if (event.type == SDL_KEYUP) {
        io.KeysDown[key] = false;
        const bool kept = mKeptKeys[key];
        mKeptKeys.reset(key);
        return kept;
    }
    if (mKeyHandler && !event.repeat && mKeyHandler(static_cast<int>(key))) {
        mKeptKeys.set(key);
        return true;
    }
    io.KeysDown[key] = true;
    // A key that the game has down is the game's until it comes up.
    const bool kept = event.repeat ? mKeptKeys[key] : io.WantCaptureKeyboard;
    mKeptKeys.set(key, kept);
    return kept;
}

bool Overlay::Impl::onButton(const SDL_MouseButtonEvent& event) {
    ImGuiIO& io = ImGui::GetIO();
    const bool down = event.type == SDL_MOUSEBUTTONDOWN;
    mDown.set(MouseButton(event.button), down);
    mPressed.set(MouseButton(event.button), down || mPressed[MouseButton(event.button)]);
    const std::size_t button = event.button % mKeptButtons.size();
    const bool kept = down ? io.WantCaptureMouse : mKeptButtons[button];
    mKeptButtons.set(button, down && kept);
    return kept;
}

bool Overlay::Impl::OnEvent(const SDL_Event& event) {
    ImGui::SetCurrentContext(mGui);
    ImGuiIO& io = ImGui::GetIO();
    switch (event.type) {
    case SDL_KEYDOWN:
    case SDL_KEYUP:
        return onKey(event.key);
    case SDL_TEXTINPUT:
        io.AddInputCharactersUTF8(event.text.text);
        return io.WantTextInput;
    case SDL_MOUSEMOTION:
        io.MousePos = ImVec2(static_cast<float>(event.motion.x) * mScaleX,
                             static_cast<float>(event.motion.y) * mScaleY);
        return io.WantCaptureMouse;
    case SDL_MOUSEBUTTONDOWN:
    case SDL_MOUSEBUTTONUP:
        return onButton(event.button);
    case SDL_MOUSEWHEEL:
        io.MouseWheelH += static_cast<float>(event.wheel.x);
        io.MouseWheel += static_cast<float>(event.wheel.y);
        return io.WantCaptureMouse;
    case SDL_WINDOWEVENT:
        if (event.window.event == SDL_WINDOWEVENT_FOCUS_LOST)
            std::fill(std::begin(io.KeysDown), std::end(io.KeysDown), false);
        return false;
    default:
        return false;
    }
}

void Overlay::Impl::OnPresent(SDL_Window* window, int width, int height) {
    ImGui::SetCurrentContext(mGui);
    if (!mContext) {
        if (!ImGui_ImplOpenGL3_Init("#version 330 core"))
            return;
        mContext = SDL_GL_GetCurrentContext();
    }
    if (SDL_GL_GetCurrentContext() != mContext)
        return; // a second device: the panels are shown by the first
    int shownWidth = width, shownHeight = height;
    if (window)
        SDL_GetWindowSize(window, &shownWidth, &shownHeight);
    mScaleX = static_cast<float>(width) / static_cast<float>(std::max(shownWidth, 1));
    mScaleY = static_cast<float>(height) / static_cast<float>(std::max(shownHeight, 1));

    ImGuiIO& io = ImGui::GetIO();
    io.DisplaySize = ImVec2(static_cast<float>(width), static_cast<float>(height));
    const Clock::time_point now = Clock::now();
    constexpr float Least = 1e-5f;
    io.DeltaTime = std::max(std::chrono::duration<float>(now - mLast).count(), Least);
    mLast = now;
    for (std::size_t i = 0; i < mDown.size(); ++i)
        io.MouseDown[i] = mDown[i] || mPressed[i];
    mPressed.reset();
    drawFrame();
}

void Overlay::Impl::drawFrame() {
    ImGui_ImplOpenGL3_NewFrame();
    ImGui::NewFrame();
    try {
        for (const auto& panel : mPanels)
            panel();
    } catch (...) {
        ImGui::EndFrame();
        throw;
    }
    // The game may have hidden the cursor, or have one of its own.
    ImGui::GetIO().MouseDrawCursor = ImGui::GetIO().WantCaptureMouse;
    ImGui::Render();
    ImDrawData& data = *ImGui::GetDrawData();
    TurnOver(data);
    ImGui_ImplOpenGL3_RenderDrawData(&data);
}

void Overlay::Impl::OnContextLost(bool lives) {
    if (!mContext || (lives && SDL_GL_GetCurrentContext() != mContext))
        return;
    ImGui::SetCurrentContext(mGui);
    mContext = nullptr;
    if (lives)
        ImGui_ImplOpenGL3_Shutdown();
    else // which calls OpenGL; the few bytes of its record are lost
        ImGui::GetIO().BackendRendererUserData = nullptr;
}

Overlay::Overlay() : mImpl(std::make_unique<Impl>()) {}

Overlay::~Overlay() = default;

void Overlay::AddPanel(std::function<void()> panel) {
    mImpl->mPanels.push_back(std::move(panel));
}

void Overlay::OnKey(std::function<bool(int)> handler) {
    mImpl->mKeyHandler = std::move(handler);
}

bool Overlay::WantsMouse() const {
    ImGui::SetCurrentContext(mImpl->mGui);
    return ImGui::GetIO().WantCaptureMouse;
}

bool Overlay::WantsKeys() const {
    ImGui::SetCurrentContext(mImpl->mGui);
    return ImGui::GetIO().WantCaptureKeyboard;
}

} // namespace Vorn::Dev
