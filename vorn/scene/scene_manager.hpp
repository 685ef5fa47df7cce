// SPDX-License-Identifier: MIT
//
// Holds the running scene and the one that is to follow. A change of scene happens only inside
// Update, so a scene is never swapped in the middle of a frame.
//
//   Vorn::SceneManager::Instance()->SetScene(&meadow);
//   while (running)
//       Vorn::SceneManager::Instance()->Update(dt);
//
// The host owns the scenes; a scene outlives its time here.
#pragma once

#include "vorn/core/api.hpp"
#include "vorn/core/singleton.hpp"
#include "vorn/scene/fwd.hpp"

namespace Vorn {

class VORN_API SceneManager : public Singleton<SceneManager> {
public:
    /// The scene that the next Update changes to; the last call wins. The current scene itself is
    /// restarted. Called from the old scene's Deinit or Unload it takes effect in the change that
    /// is under way, from the next scene's Load or Init in the next Update.
    void SetScene(Scene* scene) { mNextScene = scene; }
    /// Null before the first change.
    Scene* CurrentScene() const { return mCurrentScene; }

    /// If a change is pending: `Deinit` and `Unload` of the old scene, `Load` and `Init` of the
    /// next. A restart skips `Unload` and `Load`. Then `Update(dt)` of the current scene, in the
    /// same call. If one of them raises, the change stays pending. A next scene that raised in Init
    /// holds the entities made so far; the next Update begins with its Deinit, whatever scene is
    /// pending by then, so it must live until that.
    void Update(float dt);

    /// The three of them do nothing without a current scene.
    /// Pends a restart of the current scene, in place of a change that is pending.
    void Restart();
    /// Pends a restart, and runs `Deinit` and `Unload` at once.
    void Restart2();
    /// Runs `Deinit` and `Unload` at once. The scene stays the current one, with no entities.
    void UnloadCurrentScene();

private:
    void change();

    Scene* mNextScene = nullptr;
    Scene* mCurrentScene = nullptr;
    Scene* mFailedScene = nullptr; // not the current one; its Init raised, its Deinit is due
};

template <>
VORN_API SceneManager Singleton<SceneManager>::mSingleton;

} // namespace Vorn
