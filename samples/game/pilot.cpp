// SPDX-License-Identifier: MIT
#include "samples/game/pilot.hpp"

#include "platform/control/vorn_platform.hpp"

#include <cmath>

namespace Lantern {

using Vorn::Vector3;

void Pilot::hold(int key, bool down) {
    bool& held = mHeld[key & 255];
    if (held == down)
        return;
    held = down;
    if (key <= 4)
        VornPlatform::SendMouseButton(key, down);
    else
        VornPlatform::SendKey(key, down);
}

void Pilot::Fly(Game& game) {
    ++mFrame;
    if (game.GetState() != State::Diving) {
        hold(VK_LBUTTON, false);
        hold(VK_SPACE, mFrame % 120 == 60);
        return;
    }
    const Dive& dive = TheDive();
    const Vector3 me = dive.place;
    const Actor* prey = nullptr;
    float nearest = 1e9f;
    Vector3 way;
    int close = 0;
    for (const Vorn::Entity* entity : game.Scene()->EntityList()) {
        const std::string type = entity->Type();
        const Vector3 to = entity->Position() - me;
        const float distance = to.Length();
        const bool foe = type == "puffer" || type == "jelly" || type == "dart" || type == "mother";
        const bool spine = type == "bolt" && entity->Variant() == "spine";
        if (foe && distance < nearest) {
            nearest = distance;
            prey = dynamic_cast<const Actor*>(entity);
        }
        const float keep = type == "mother" ? 8.0f : foe ? 3.2f : spine ? 2.0f : 0.0f;
        if (keep > 0.0f && distance < keep) {
            way -= to * ((keep - distance) / (distance + 0.1f));
            close += distance < 3.0f;
        } else if (type == "pearl" && distance < 8.0f)
            way += to * (0.25f / (distance + 0.5f));
        else if (type == "rock" && distance < 3.5f)
            way -= to * (1.0f / (distance + 0.1f));
    }
    // Home is the middle, above the ground.
    way += (Vector3(0, 8, 0) - me) * 0.06f;
    hold('D', way.x > 0.2f);
    hold('A', way.x < -0.2f);
    hold('W', way.y > 0.2f);
    hold('S', way.y < -0.2f);
    if (prey) {
        const Vorn::Point2 at = game.Camera().WorldToScreen(prey->Position());
        VornPlatform::SendMouseMove(static_cast<int>(400.0f + 400.0f * at.x),
                                    static_cast<int>(300.0f + 300.0f * at.y));
    }
    hold(VK_LBUTTON, prey && nearest < 9.0f);
    hold(VK_SPACE, close >= 3 && mFrame % 30 == 0);
}

void Pilot::Flail(unsigned int width, unsigned int height) {
    ++mFrame;
    static constexpr int keys[] = {'W', 'A', 'S', 'D', VK_SPACE,   VK_RETURN,  VK_UP,    VK_LEFT,
                                   'P', 'R', 'O', 'M', VK_LBUTTON, VK_RBUTTON, VK_ESCAPE};
    constexpr unsigned int count = sizeof keys / sizeof *keys;
    // Escape is rare: on the title it ends the game.
    const unsigned int which = below(count + 20);
    if (which < count - 1 || below(400) == 0) {
        const int key = keys[which < count ? which : count - 1];
        hold(key, !mHeld[key & 255]);
    }
    if (below(3) == 0)
        VornPlatform::SendMouseMove(static_cast<int>(below(width)),
                                    static_cast<int>(below(height)));
}

} // namespace Lantern
