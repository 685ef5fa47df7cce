// SPDX-License-Identifier: MIT
#include "worlds/pasture/pasture.hpp"

#include <XInput.h>
#include <windows.h>

#include <algorithm>
#include <initializer_list>

namespace Worlds {

namespace {

constexpr unsigned int Width = 800, Height = 600;
constexpr float Pace = 8.0f; // of the sheep that is led (unit: metres / second)

void FetchMessages() {
    MSG message = {};
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
        TranslateMessage(&message);
        DispatchMessageA(&message);
    }
}

/// Where the player points to, zero while nobody does.
Vorn::Vector3 Direction(Vorn::InputManager& input) {
    using namespace Vorn;
    const AnalogMovement stick = input.AnalogLeftMove(CONTROL_PAD1);
    const auto held = [&](unsigned int key, std::initializer_list<AnalogMovement> sticks) {
        return input.IsKeyPressed(CONTROL_KEYBOARD, key) ||
               std::find(sticks.begin(), sticks.end(), stick) != sticks.end();
    };
    const bool left = held(VK_LEFT, {ANALOG_LEFT, ANALOG_UP_LEFT, ANALOG_DOWN_LEFT});
    const bool right = held(VK_RIGHT, {ANALOG_RIGHT, ANALOG_UP_RIGHT, ANALOG_DOWN_RIGHT});
    const bool up = held(VK_UP, {ANALOG_UP, ANALOG_UP_LEFT, ANALOG_UP_RIGHT});
    const bool down = held(VK_DOWN, {ANALOG_DOWN, ANALOG_DOWN_LEFT, ANALOG_DOWN_RIGHT});
    return {static_cast<float>(right - left), 0.0f, static_cast<float>(up - down)};
}

} // namespace

Pasture::Pasture(const std::string& title) {
    Vorn::Engine::Instance()->Init(title, Width, Height, false);
    mScene.DeserializePath("worlds/meadow/meadow.scene");
    Vorn::SceneManager::Instance()->SetScene(&mScene);
    Vorn::TriggerManager::Instance()->Push(Vorn::Trigger::Trigger::LoadScript("sheep.json"));
    Vorn::PhysicsSystem::Instance()->Init();
}

Pasture::~Pasture() {
    Vorn::SceneManager::Instance()->UnloadCurrentScene();
    Vorn::Engine::Instance()->Free();
}

bool Pasture::Frame() {
    FetchMessages();
    if (Vorn::Engine::Instance()->IsShutdown())
        return false;

    auto& clock = *Vorn::DeltaClock::Instance();
    clock.Update();
    const double dt = clock.GetDeltaTime();
    auto& input = *Vorn::InputManager::Instance();
    input.Update();
    Vorn::TriggerManager::Instance()->Update(dt);
    lead();
    Vorn::SceneManager::Instance()->Update(static_cast<float>(dt));
    Vorn::PhysicsSystem::Instance()->Update(static_cast<float>(dt));
    return !input.IsKeyTriggered(Vorn::CONTROL_KEYBOARD, VK_ESCAPE);
}

void Pasture::lead() {
    auto& input = *Vorn::InputManager::Instance();
    auto* sheep = dynamic_cast<Walker*>(mScene.GetEntity("sheep 0"));
    if (!sheep)
        return;
    if (const Vorn::Vector3 direction = Direction(input); direction != Vorn::Vector3())
        sheep->Velocity(direction * Pace);
    if (input.IsKeyTriggered(Vorn::CONTROL_PAD1, XINPUT_GAMEPAD_A)) {
        sheep->Velocity(Vorn::Vector3());
        input.vibrateTrigger(Vorn::CONTROL_PAD1, 0.2);
    }
}

} // namespace Worlds
