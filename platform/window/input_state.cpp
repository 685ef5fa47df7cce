// SPDX-License-Identifier: MIT
#include "platform/window/input_state.hpp"
#include "platform/window/message_queue.hpp"

#include <cstring>

namespace VornPlatform {

namespace {

constinit InputState input;
constinit InputListener* listener = nullptr;
constinit InputSource* source = nullptr;

bool Same(const PadAnswer& a, const PadAnswer& b) {
    return a.connected == b.connected && a.state.dwPacketNumber == b.state.dwPacketNumber &&
           std::memcmp(&a.state.Gamepad, &b.state.Gamepad, sizeof a.state.Gamepad) == 0;
}

} // namespace

const InputState& Input() {
    return input;
}

void SetKey(int virtualKey, WORD state) {
    WORD& key = input.keys[static_cast<std::size_t>(virtualKey)];
    if (key == state)
        return;
    key = state;
    if (listener)
        listener->OnKey(virtualKey, state);
}

void SetPointer(POINT position) {
    if (input.cursor.x == position.x && input.cursor.y == position.y)
        return;
    input.cursor = position;
    if (listener)
        listener->OnCursor(position);
}

void SetPad(DWORD index, const PadAnswer& answer) {
    if (Same(input.pads[index], answer))
        return;
    input.pads[index] = answer;
    if (listener)
        listener->OnPad(index, answer);
}

void PostInput(const MSG& message) {
    if (listener)
        listener->OnMessage(message);
    Enqueue(message);
}

void PostInput(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    PostInput(MSG{window, message, wParam, lParam, MessageTime(), input.cursor});
}

void ListenToInput(InputListener* newListener) {
    listener = newListener;
}

InputListener* Listener() {
    return listener;
}

void TakeInputFrom(InputSource* newSource) {
    source = newSource;
}

InputSource* Source() {
    return source;
}

} // namespace VornPlatform
