// SPDX-License-Identifier: MIT
#include "samples/game/pilot.hpp"

#include "platform/control/vorn_platform.hpp"

#include <algorithm>
#include <string>

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
    // What a session is to show once: the profiler, and a pause.
    hold('O', mFrame == 560 || mFrame == 740);
    hold('P', mFrame == 800 || mFrame == 880);
    if (game.GetState() != State::Diving) {
        hold(VK_LBUTTON, false);
        hold(VK_SPACE, game.GetState() != State::Done && mFrame % 150 == 149);
        return;
    }
    look(game);
    if (mFrame >= mThinks) { // nobody changes his mind faster
        mThinks = mFrame + 3 + static_cast<int>(below(4));
        steer();
    }
    shoot(game);
}

// All that moves, and how much it is to be feared or wanted.
void Pilot::look(Game& game) {
    mSeen.clear();
    mClose = 0;
    for (const Vorn::Entity* entity : game.Scene()->EntityList()) {
        const std::string type = entity->Type();
        if (!entity->Physics() || !entity->IsAlive())
            continue;
        Seen seen{entity->Position(), entity->Physics()->LinearVelocity() * 60.0f};
        const float size = entity->Scale().x;
        seen.foe = type == "puffer" || type == "jelly" || type == "dart" || type == "mother";
        if (seen.foe)
            seen.radius = 0.8f + 1.1f * size, seen.reach = 2.4f, seen.weight = 1.0f;
        else if (type == "bolt" && entity->Variant() == "spine")
            seen.radius = 1.0f, seen.reach = 1.0f, seen.weight = 1.2f;
        else if (type == "rock")
            seen.radius = 0.6f + size, seen.reach = 0.8f, seen.weight = 0.4f, seen.rock = true;
        else if (type == "pearl")
            seen.radius = 0.0f, seen.reach = 8.0f, seen.weight = -0.1f;
        else
            continue;
        mClose += seen.weight >= 1.0f && seen.place.Distance(TheDive().place) < seen.radius + 2.5f;
        mSeen.push_back(seen);
    }
}

void Pilot::steer() {
    Vector3 best;
    float least = 1e9f;
    for (float x = -1.0f; x <= 1.0f; x += 1.0f)
        for (float y = -1.0f; y <= 1.0f; y += 1.0f) {
            Vector3 way(x, y, 0.0f);
            if (x * y != 0.0f)
                way *= 0.7071f;
            const float bad = danger(way);
            if (bad < least)
                least = bad, best = way;
        }
    hold('D', best.x > 0.0f);
    hold('A', best.x < 0.0f);
    hold('W', best.y > 0.0f);
    hold('S', best.y < 0.0f);
}

// How bad it is to go that way for a second; what comes first counts most.
float Pilot::danger(const Vector3& way) const {
    constexpr float speed = 8.5f, step = 0.1f, slow = 0.15f; // it takes a moment to get going
    const Vector3 me = TheDive().place;
    float sum = 0.0f;
    for (float time = step; time < 1.05f; time += step) {
        const Vector3 then = me + way * (speed * std::max(0.0f, time - slow));
        for (const Seen& seen : mSeen) {
            const float gap = then.Distance(seen.place + seen.velocity * time) - seen.radius;
            if (gap < seen.reach)
                sum += seen.weight * (1.0f - gap / seen.reach) / (0.4f + time);
        }
    }
    // Home is the middle, where ways are open to all sides.
    const Vector3 end = me + way * 4.0f;
    if (mHunts && isHidden(mPrey, end))
        sum += 0.5f;
    return sum + 0.004f * end.SquareDistance(Vector3(0.0f, 6.8f, 0.0f)) +
           std::max(0.0f, 2.5f - end.y) + std::max(0.0f, end.y - 15.0f);
}

// Whether a rock lies in the line of fire.
bool Pilot::isHidden(const Vector3& prey, const Vector3& from) const {
    const Vector3 way = prey - from;
    for (const Seen& seen : mSeen) {
        if (!seen.rock)
            continue;
        const Vector3 to = seen.place - from;
        const float along =
            Vorn::fclamp(to.DotProduct(way) / std::max(way.SquareLength(), 0.01f), 0.0f, 1.0f);
        if (seen.place.Distance(from + way * along) < seen.radius)
            return true;
    }
    return false;
}

// At the nearest, where it will be when the spark comes there.
void Pilot::shoot(const Game& game) {
    constexpr float spark = 24.0f, sight = 8.5f;
    const Vector3 me = TheDive().place;
    const Seen* prey = nullptr;
    float nearest = sight;
    for (const Seen& seen : mSeen) {
        if (!seen.foe)
            continue;
        const float far =
            seen.place.Distance(me) - seen.radius + (isHidden(seen.place, me) ? 4.0f : 0.0f);
        if (far < nearest)
            nearest = far, prey = &seen;
    }
    mHunts = prey != nullptr;
    if (prey) {
        mPrey = prey->place;
        const Vorn::Point2 at = game.Camera().WorldToScreen(
            prey->place + prey->velocity * (mPrey.Distance(me) / spark));
        VornPlatform::SendMouseMove(static_cast<int>(400.0f + 400.0f * at.x),
                                    static_cast<int>(300.0f + 300.0f * at.y));
    }
    hold(VK_LBUTTON, prey != nullptr);
    hold(VK_SPACE, mClose >= 3 && mFrame % 40 == 0);
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
