// SPDX-License-Identifier: MIT
#include "vorn/scene/scene_manager.hpp"

#include "vorn/scene/scene.hpp"

#include <utility>

namespace Vorn {

void SceneManager::Update(float dt) {
    if (mFailedScene) {
        mFailedScene->Deinit();
        mFailedScene = nullptr;
    }
    if (mNextScene)
        change();
    if (mCurrentScene)
        mCurrentScene->Update(dt);
}

void SceneManager::Restart() {
    if (mCurrentScene)
        mNextScene = mCurrentScene;
}

void SceneManager::Restart2() {
    if (!mCurrentScene)
        return;
    Restart();
    UnloadCurrentScene();
}

void SceneManager::UnloadCurrentScene() {
    if (!mCurrentScene)
        return;
    mCurrentScene->Deinit();
    mCurrentScene->Unload();
}

void SceneManager::change() {
    if (mCurrentScene) {
        mCurrentScene->Deinit();
        if (mNextScene != mCurrentScene)
            mCurrentScene->Unload();
    }
    // A scene that is set from here on follows with the next update.
    Scene* const next = std::exchange(mNextScene, nullptr);
    if (!next)
        return;
    const bool restart = next == mCurrentScene;
    bool loaded = restart;
    try {
        if (!restart)
            next->Load();
        loaded = true;
        next->Init();
    } catch (...) {
        if (loaded && !restart)
            mFailedScene = next;
        if (!mNextScene)
            mNextScene = next;
        throw;
    }
    mCurrentScene = next;
}

} // namespace Vorn
