// SPDX-License-Identifier: MIT
#include "vorn/scene/scene_manager.hpp"

#include "vorn/scene/scene.hpp"

namespace Vorn {

void SceneManager::Update(float dt) {
    if (mNextScene) {
        const bool restart = mNextScene == mCurrentScene;
        if (mCurrentScene) {
            mCurrentScene->Deinit();
            if (!restart)
                mCurrentScene->Unload();
        }
        if (!restart)
            mNextScene->Load();
        mNextScene->Init();
        mCurrentScene = mNextScene;
        mNextScene = nullptr;
    }
    if (mCurrentScene)
        mCurrentScene->Update(dt);
}

void SceneManager::Restart() {
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

} // namespace Vorn
