// SPDX-License-Identifier: MIT
#include "tools/view.hpp"

#include "tools/view/panel.hpp"
#include "tools/view/steer.hpp"
#include "tools/view/viewer.hpp"

#include "dev/file_watch.hpp"
#include "dev/overlay.hpp"
#include "platform/control/vorn_platform.hpp"
#include "vorn/core/delta_clock.hpp"
#include "vorn/input/input_manager.hpp"
#include "vorn/render/emitter_system.hpp"
#include "vorn/render/graphic.hpp"
#include "vorn/shell/engine.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <system_error>

namespace View {
namespace {

namespace fs = std::filesystem;

/// The engine tells standard output of each thing that it loads; what a shader's compiler says of
/// the shader that ends it is wanted.
class Quiet {
public:
    Quiet() : mBefore(std::cout.rdbuf(mText.rdbuf())) {}
    Quiet(const Quiet&) = delete;
    Quiet& operator=(const Quiet&) = delete;
    ~Quiet() { std::cout.rdbuf(mBefore); }
    std::string Text() const { return mText.str(); }

private:
    std::ostringstream mText;
    std::streambuf* mBefore;
};

/// The window with its device.
class Window {
public:
    Window(const Options& options, const Quiet& quiet) {
        const std::string title = "Vorn: " + fs::path(options.file).filename().string();
        try {
            Vorn::Engine::Instance()->Init(title, options.width, options.height, false);
        } catch (const std::exception& error) {
            const std::string text = quiet.Text();
            throw std::runtime_error(
                text.empty() ? std::string("no picture can be made here: ") + error.what() : text);
        }
        // Hands its list to those who draw particles; each emitter is readied by its subject.
        Vorn::EmitterSystem::Instance()->Init();
    }
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;
    ~Window() { Vorn::Engine::Instance()->Free(); }
};

/// False when the window was closed.
bool FetchMessages() {
    for (MSG message; PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE);) {
        TranslateMessage(&message);
        DispatchMessageA(&message);
    }
    return !Vorn::Engine::Instance()->IsShutdown();
}

/// What is edited below the game is seen at once, what lies elsewhere and is only linked, within a
/// second.
class Changes {
public:
    explicit Changes(const Stage& stage) {
        const fs::path data = stage.Root() / "data";
        std::error_code none;
        if (!fs::is_directory(data, none))
            return;
        try {
            mWatch.Add(data.string());
        } catch (const std::system_error&) {
            // More folders than the machine watches: then once a second.
        }
    }
    bool Any(float dt) {
        mSince += dt;
        const bool told = !mWatch.Changed().empty();
        if (!told && mSince < 1.0f)
            return false;
        mSince = 0.0f;
        return true;
    }

private:
    Vorn::Dev::FileWatch mWatch;
    float mSince = 0.0f; // (unit: seconds)
};

/// The first name that is free, where the program was started.
std::string FreeName(const Stage& stage) {
    const std::string stem = (stage.Before() / stage.File().stem()).string();
    std::string name = stem + ".png";
    for (int number = 2; fs::exists(name); ++number)
        name = fmt::format("{}-{}.png", stem, number);
    return name;
}

/// Without the panel, and with what is written in the world.
void SaveShown(Viewer& viewer) {
    const Shown shown = viewer.shown;
    viewer.shown.panel = viewer.shown.pointer = false;
    viewer.Draw();
    Vorn::Graphic::Instance()->Present();
    const std::string name = FreeName(viewer.Stage());
    try {
        viewer.SavePicture(name);
        fmt::print("wrote {}\n", name);
        std::fflush(stdout);
    } catch (const std::runtime_error& error) {
        fmt::print(stderr, "vorn: {}\n", error.what());
    }
    viewer.shown = shown;
}

void Show(Viewer& viewer) {
    auto& engine = *Vorn::Engine::Instance();
    auto& clock = *Vorn::DeltaClock::Instance();
    Changes changes(viewer.Stage());
    while (FetchMessages()) {
        if (!engine.CheckContext()) {
            viewer.Subject().BeforeReset();
            engine.Reset();
            viewer.Subject().AfterReset();
        }
        clock.Update();
        Vorn::InputManager::Instance()->Update();
        const auto dt = static_cast<float>(clock.GetDeltaTime());
        const Wish wish = Steer(viewer, dt);
        if (wish == Wish::Quit)
            return;
        if (wish == Wish::Save)
            SaveShown(viewer);
        if (changes.Any(dt))
            viewer.CheckFiles();
        viewer.Update(dt);
        viewer.Draw();
        Vorn::Graphic::Instance()->Present();
        Sleep(4);
    }
}

void Save(Viewer& viewer, const Options& options, const std::string& path) {
    constexpr float step = 1.0f / 60;
    for (float left = options.time; left > 0; left -= step)
        viewer.Update(std::min(left, step));
    // Dear ImGui lays a window out in its first frame and shows it in the next.
    for (int frame = 0; frame < 3; ++frame) {
        viewer.Draw();
        Vorn::Graphic::Instance()->Present();
    }
    viewer.SavePicture(path);
}

void Run(const Options& options, const Quiet& quiet) {
    const std::string picture =
        options.picture.empty() ? "" : fs::absolute(options.picture).string();
    std::error_code none;
    if (!fs::exists(options.file, none))
        throw std::runtime_error("there is no such file");
    if (!fs::is_regular_file(options.file, none))
        throw std::runtime_error("it is no plain file");
    KindOf(options.file); // before a window comes up for nothing
    const Stage stage(options.file);
    if (!picture.empty())
        VornPlatform::ForceHeadless();
    const Window window(options, quiet);
    if (picture.empty() && !VornPlatform::HasDisplay())
        throw std::runtime_error("there is no display; --picture needs none");
    Options complete = options;
    complete.shown.panel = picture.empty() || options.panel;
    Viewer viewer(complete, stage);
    Vorn::Dev::Overlay overlay;
    StylePanel();
    overlay.AddPanel([&viewer] { DrawPanel(viewer); });
    if (picture.empty())
        Show(viewer);
    else
        Save(viewer, options, picture);
}

} // namespace

int Run(const Options& options) {
    const Quiet quiet;
    try {
        Run(options, quiet);
        return 0;
    } catch (const std::exception& error) {
        // A line each for what the compiler of shaders says.
        std::string text = error.what();
        while (!text.empty() && text.back() == '\n')
            text.pop_back();
        fmt::print(stderr, "vorn: cannot show {}: {}\n", options.file, text);
        return 1;
    }
}

} // namespace View
