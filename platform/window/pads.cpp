// SPDX-License-Identifier: MIT
#include "platform/window/pads.hpp"

#include "platform/window/input_state.hpp"
#include "platform/window/pad_buttons.hpp"
#include "platform/window/session.hpp"

#include <SDL.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <filesystem>
#include <string>
#include <system_error>

namespace VornPlatform {

namespace {

struct Slot {
    SDL_GameController* pad = nullptr;
    WORD left = 0, right = 0; // what the motors were told
    Uint32 told = 0;          // when (unit: milliseconds)
};
constinit std::array<Slot, 4> slots{};

// SDL stops a motor after at most 65 seconds; XInput never does.
constexpr Uint32 RumbleLength = 60'000, RumbleRenewal = 30'000;

XINPUT_GAMEPAD Read(SDL_GameController* pad) {
    const auto axis = [pad](SDL_GameControllerAxis which) {
        return SDL_GameControllerGetAxis(pad, which);
    };
    // SDL's down is positive; its lowest value has no opposite of its own.
    const auto up = [&](SDL_GameControllerAxis which) {
        return static_cast<SHORT>(-std::max<int>(axis(which), -32767));
    };
    const auto trigger = [&](SDL_GameControllerAxis which) {
        return static_cast<BYTE>((std::max<int>(axis(which), 0) * 255 + 16383) / 32767);
    };
    int buttons = 0;
    for (const auto& [button, bit] : PadButtons)
        if (SDL_GameControllerGetButton(pad, button))
            buttons |= bit;
    return {static_cast<WORD>(buttons),
            trigger(SDL_CONTROLLER_AXIS_TRIGGERLEFT),
            trigger(SDL_CONTROLLER_AXIS_TRIGGERRIGHT),
            axis(SDL_CONTROLLER_AXIS_LEFTX),
            up(SDL_CONTROLLER_AXIS_LEFTY),
            axis(SDL_CONTROLLER_AXIS_RIGHTX),
            up(SDL_CONTROLLER_AXIS_RIGHTY)};
}

// The packet number goes on when another pad takes the slot: to the host that is a new state too.
void Answer(DWORD index, bool connected, const XINPUT_GAMEPAD& gamepad) {
    if (Source())
        return; // the answers are its own
    PadAnswer answer = Input().pads[index];
    if (answer.connected != connected ||
        std::memcmp(&answer.state.Gamepad, &gamepad, sizeof gamepad) != 0)
        ++answer.state.dwPacketNumber;
    answer.connected = connected;
    answer.state.Gamepad = gamepad;
    SetPad(index, answer);
}

void Leave(DWORD index) {
    SDL_GameControllerClose(slots[index].pad);
    slots[index] = {};
    Answer(index, false, {});
}

} // namespace

void ReadPadMappings() {
    const auto read = [](const std::string& folder) {
        const std::string path = folder + "gamecontrollerdb.txt";
        std::error_code error;
        if (std::filesystem::is_regular_file(path, error)) // SDL takes a folder for an endless file
            SDL_GameControllerAddMappingsFromFile(path.c_str());
    };
    if (char* folder = SDL_GetBasePath()) {
        read(folder);
        SDL_free(folder);
    }
    read("");
}

void SeatPads() {
    if (!PadsRun())
        return;
    for (DWORD i = 0; i < slots.size(); ++i)
        if (slots[i].pad && !SDL_GameControllerGetAttached(slots[i].pad))
            Leave(i);
    for (int device = 0; device < SDL_NumJoysticks(); ++device) {
        auto* const free =
            std::find_if(slots.begin(), slots.end(), [](const Slot& slot) { return !slot.pad; });
        if (free == slots.end())
            return;
        if (SlotOf(SDL_JoystickGetDeviceInstanceID(device)) >= 0 || !SDL_IsGameController(device))
            continue;
        free->pad = SDL_GameControllerOpen(device);
        if (free->pad)
            Answer(static_cast<DWORD>(free - slots.begin()), true, {});
    }
}

void UpdatePads() {
    if (!PadsRun())
        return;
    SDL_GameControllerUpdate();
    // All is read here; as events the same would wait for nobody.
    SDL_FlushEvents(SDL_JOYAXISMOTION, SDL_CONTROLLERSENSORUPDATE);
    SeatPads();
    for (DWORD i = 0; i < slots.size(); ++i) {
        const Slot& slot = slots[i];
        Answer(i, slot.pad != nullptr, slot.pad ? Read(slot.pad) : XINPUT_GAMEPAD{});
        if ((slot.left || slot.right) && SDL_GetTicks() - slot.told > RumbleRenewal)
            Rumble(i, slot.left, slot.right);
    }
}

int SlotOf(int instance) {
    if (!PadsRun())
        return -1;
    for (std::size_t i = 0; i < slots.size(); ++i)
        if (slots[i].pad &&
            SDL_JoystickInstanceID(SDL_GameControllerGetJoystick(slots[i].pad)) == instance)
            return static_cast<int>(i);
    return -1;
}

void Rumble(DWORD index, WORD left, WORD right) {
    Slot& slot = slots[index];
    const bool still = !left && !right;
    if (!PadsRun() || !slot.pad || (still && !slot.left && !slot.right))
        return;
    slot.left = left;
    slot.right = right;
    slot.told = SDL_GetTicks();
    SDL_GameControllerRumble(slot.pad, left, right, still ? 0 : RumbleLength);
}

void ForgetPads() {
    for (DWORD i = 0; i < slots.size(); ++i) {
        slots[i] = {};
        Answer(i, false, {});
    }
}

void ClosePads() {
    PadsRun(); // else the slots are empty
    for (DWORD i = 0; i < slots.size(); ++i) {
        if (slots[i].pad)
            SDL_GameControllerClose(slots[i].pad);
        slots[i] = {};
        SetPad(i, {});
    }
}

} // namespace VornPlatform
