// SPDX-License-Identifier: MIT
#include "tools/view.hpp"

#include "tools/view/panel.hpp"
#include "tools/view/steer.hpp"
#include "tools/view/window.hpp"

#include "dev/file_watch.hpp"
#include "dev/overlay.hpp"
#include "platform/control/vorn_picture.hpp"
#include "platform/control/vorn_platform.hpp"
#include "vorn/core/delta_clock.hpp"
#include "vorn/input/input_manager.hpp"
#include "vorn/render/graphic.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <stdexcept>
#include <system_error>

namespace View {
namespace {

namespace fs = std::filesystem;

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

void SavePicture(const std::string& path) {
    VornPlatform::SavePicture(Vorn::Graphic::GetDevice(), path);
}

/// Without the panel, and with what is written in the world.
void SaveShown(Viewer& viewer) {
    const Shown shown = viewer.shown;
    viewer.shown.panel = viewer.shown.pointer = false;
    viewer.Tell("");
    viewer.Draw();
    Vorn::Graphic::Instance()->Present();
    const std::string name = FreeName(viewer.Stage());
    try {
        SavePicture(name);
        viewer.Tell("wrote " + name);
        fmt::print("wrote {}\n", name);
        std::fflush(stdout);
    } catch (const std::runtime_error& error) {
        viewer.Tell(error.what());
        fmt::print(stderr, "vorn: {}\n", error.what());
    }
    viewer.shown = shown;
}

void Show(Window& window, Viewer& viewer) {
    auto& clock = *Vorn::DeltaClock::Instance();
    Changes changes(viewer.Stage());
    while (Window::FetchMessages()) {
        clock.Update();
        Vorn::InputManager::Instance()->Update();
        const auto dt = static_cast<float>(clock.GetDeltaTime());
        window.Update(viewer, dt);
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
    SavePicture(path);
}

void Run(const Options& options, const Overheard& said) {
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
    Window window(options, said);
    if (picture.empty() && !VornPlatform::HasDisplay())
        throw std::runtime_error("there is no display; --picture needs none");
    Options complete = options;
    complete.shown.panel = picture.empty() || options.panel;
    Viewer viewer(complete, stage);
    Vorn::Dev::Overlay overlay;
    StylePanel();
    overlay.AddPanel([&viewer] { DrawPanel(viewer); });
    if (picture.empty())
        Show(window, viewer);
    else
        Save(viewer, options, picture);
}

} // namespace

int Run(const Options& options) {
    const Overheard said;
    try {
        Run(options, said);
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
