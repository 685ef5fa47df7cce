// SPDX-License-Identifier: MIT
#include "dev/dev_mode.hpp"

#include "dev/file_watch.hpp"
#include "dev/messages.hpp"
#include "dev/overlay.hpp"
#include "dev/panel.hpp"
#include "dev/resource_reload.hpp"
#include "dev/scene_reload.hpp"
#include "dev/stand_ins.hpp"
#include "dev/time_control.hpp"
#include "dev/trigger_reload.hpp"
#include "vorn/scene/scene.hpp"
#include "vorn/scene/scene_manager.hpp"

#include <exception>
#include <filesystem>
#include <map>
#include <set>
#include <stdexcept>
#include <utility>

namespace Vorn::Dev {

namespace {

namespace fs = std::filesystem;

fs::path Normal(const fs::path& path) {
    return fs::absolute(path).lexically_normal();
}

/// The name of a file in a store's folder; empty for another file.
std::string NameBelow(const char* folder, const std::string& path) {
    const std::string name = Normal(path).lexically_relative(Normal(folder)).generic_string();
    return name == "." || name.starts_with("..") ? std::string() : name;
}

/// What is needed by others comes before them.
enum class Kind { Texture, Mesh, Material, Shader, Entity, Scene, Trigger, Other };

Kind KindOf(const std::string& path) {
    const auto isIn = [&](const char* folder) { return !NameBelow(folder, path).empty(); };
    if (isIn("data/img"))
        return Kind::Texture;
    if (isIn("data/mesh"))
        return Kind::Mesh;
    if (isIn("data/mat"))
        return Kind::Material;
    if (isIn("data/trigger"))
        return Kind::Trigger;
    const std::string extension = fs::path(path).extension();
    if (extension == ".fx" || extension == ".fxh" || isIn("data/shaders"))
        return Kind::Shader;
    if (EntityFiles::Is(path))
        return Kind::Entity;
    const Scene* scene = SceneManager::Instance()->CurrentScene();
    if (scene && !scene->Path().empty() && Normal(scene->Path()) == Normal(path))
        return Kind::Scene;
    return Kind::Other;
}

class DevMode {
public:
    explicit DevMode(const Options& options);
    void Update();

    std::vector<std::function<void()>> mPanels;
    std::map<fs::path, std::function<void()>> mReaders; // the host's own

private:
    void followChanges();
    void follow(const std::string& path);
    bool reload(const std::string& path);
    bool reloadShader(const std::string& path);

    Messages mMessages;
    TimeControl mTime;
    Panel mPanel{mTime, mMessages};
    EntityFiles mEntityFiles;
    StandIns mStandIns;
    FileWatch mWatch;
    Overlay mOverlay;
};

// Never freed by the end of the process alone: by then the library's singletons may be gone.
DevMode* running = nullptr;

DevMode::DevMode(const Options& options) {
    mPanel.open = options.panelOpen;
    for (const std::string& folder : options.folders) {
        mWatch.Add(folder);
        std::error_code gone;
        for (const auto& entry : fs::recursive_directory_iterator(folder, gone))
            if (EntityFiles::Is(entry.path()) && entry.is_regular_file(gone))
                mEntityFiles.Learn(entry.path());
    }
    mOverlay.OnKey([this, key = options.key](int scancode) {
        if (scancode == key)
            mPanel.open = !mPanel.open;
        return scancode == key;
    });
    mOverlay.AddPanel([this] {
        if (mPanel.open) {
            mPanel.Draw();
            for (const auto& panel : mPanels)
                panel();
        }
        mMessages.Draw();
    });
}

void DevMode::Update() {
    mTime.Update();
    followChanges();
    mStandIns.Update(mMessages);
    mPanel.AddVolumes();
}

void DevMode::followChanges() {
    const std::vector<std::string> changed = mWatch.Changed();
    if (changed.empty())
        return;
    std::set<std::pair<Kind, std::string>> files;
    for (const std::string& path : changed)
        files.emplace(KindOf(path), path);
    // One that is broken may have waited for another.
    for (const auto& [path, text] : mMessages.Faults())
        files.emplace(KindOf(path), path);
    for (const auto& [kind, path] : files)
        follow(path);
}

void DevMode::follow(const std::string& path) {
    std::error_code fault;
    if (!fs::is_regular_file(path, fault))
        return; // gone, or between two states; what ran goes on
    try {
        const bool used = reload(path);
        const auto reader = mReaders.find(Normal(path));
        if (!used && reader == mReaders.end())
            return;
        if (reader != mReaders.end())
            std::function(reader->second)(); // it may put another in its own place
        mMessages.Mended(path);
        mMessages.Note(path);
    } catch (const std::exception& error) {
        mMessages.Fault(path, error.what());
    }
}

/// False for a file that nobody uses.
bool DevMode::reload(const std::string& path) {
    switch (KindOf(path)) {
    case Kind::Texture:
        return ReloadTexture(NameBelow("data/img", path));
    case Kind::Mesh:
        return ReloadMesh(NameBelow("data/mesh", path));
    case Kind::Material:
        return ReloadMaterial(NameBelow("data/mat", path));
    case Kind::Shader:
        return reloadShader(path);
    case Kind::Entity:
        mEntityFiles.Reload(path);
        return true;
    case Kind::Scene:
        ReloadScene(*SceneManager::Instance()->CurrentScene());
        return true;
    case Kind::Trigger:
        return ReloadTrigger(NameBelow("data/trigger", path));
    case Kind::Other:
        return false;
    }
    return false;
}

// Any of the device's may include it; what is not the device's is the game's to load.
bool DevMode::reloadShader(const std::string& path) {
    if (fs::path(path).extension() == ".fx")
        CheckEffect(path);
    ReloadShaders();
    return true;
}

} // namespace

void Start(const Options& options) {
    if (running)
        throw std::logic_error("Vorn::Dev::Start: it is on already");
    running = new DevMode(options);
}

void Update() {
    if (running)
        running->Update();
}

void Stop() {
    delete std::exchange(running, nullptr);
}

bool IsOn() {
    return running != nullptr;
}

void Follow(const std::string& path, std::function<void()> read) {
    if (!running)
        throw std::logic_error("Vorn::Dev::Follow: the mode is off");
    if (read)
        running->mReaders[Normal(path)] = std::move(read);
    else
        running->mReaders.erase(Normal(path));
}

void AddPanel(std::function<void()> panel) {
    if (!running)
        throw std::logic_error("Vorn::Dev::AddPanel: the mode is off");
    running->mPanels.push_back(std::move(panel));
}

} // namespace Vorn::Dev
