// SPDX-License-Identifier: MIT
//
// The window of the development mode: time, volumes, the scene's entities and their values.
#pragma once

#include "vorn/scene/fwd.hpp"

#include <string>

namespace Vorn::Dev {

class Messages;
class TimeControl;

class Panel {
public:
    Panel(TimeControl& time, Messages& messages) : mTime(time), mMessages(messages) {}

    bool open = false;

    /// Within a frame of ImGui.
    void Draw();
    /// Once a frame: the lines of the volumes that are to be seen.
    void AddVolumes() const;

private:
    void drawTime();
    void drawList(const Scene& scene);
    void drawEntity(Entity& entity);
    void drawTransform(Entity& entity);
    void drawPhysics(Entity& entity);
    void drawGraphics(Entity& entity);
    void drawEmitter(Entity& entity);
    void drawOwn(Entity& entity);

    TimeControl& mTime;
    Messages& mMessages;
    Entity* mChosen = nullptr; // compared only, until it is found in the scene
    char mFilter[64] = "";
    bool mAllVolumes = false;
    bool mChosenVolume = true;
};

} // namespace Vorn::Dev
