// SPDX-License-Identifier: MIT
#include "vorn/scene/scene_manager.hpp"

#include "vorn/scene/scene.hpp"

#include <utility>

namespace Vorn {

void SceneManager::Update(float dt) {
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
    // A scene that is set during the change follows with the next update.
    Scene* next = std::exchange(mNextScene, nullptr);
    const bool restart = next == mCurrentScene;
    try {
        if (mCurrentScene) {
            mCurrentScene->Deinit();
            if (!restart)
                mCurrentScene->Unload();
        }
        if (!restart)
            next->Load();
        next->Init();
    } catch (...) {
        if (!mNextScene)
            mNextScene = next;
        throw;
    }
    mCurrentScene = next;
}

} // namespace Vorn
