// SPDX-License-Identifier: MIT
#include "platform/window/message_queue.hpp"
#include "platform/window/window.hpp"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <deque>

namespace VornPlatform {

namespace {

// Never destroyed: objects that die after this file's may still post.
std::deque<MSG>& Queue() {
    static auto& queue = *new std::deque<MSG>;
    return queue;
}

bool Passes(const MSG& message, HWND window, UINT first, UINT last) {
    // NOLINTNEXTLINE(*-reinterpret-cast,performance-no-int-to-ptr): a number by definition
    HWND ownerless = reinterpret_cast<HWND>(std::intptr_t(-1));
    if (window == ownerless ? message.hwnd != nullptr : window && message.hwnd != window)
        return false;
    return (first == 0 && last == 0) || (message.message >= first && message.message <= last);
}

} // namespace

void Enqueue(const MSG& message) {
    Queue().push_back(message);
}

bool TakeMessage(MSG& message, HWND window, UINT first, UINT last, bool remove) {
    auto& queue = Queue();
    const auto found = std::find_if(queue.begin(), queue.end(), [&](const MSG& candidate) {
        return Passes(candidate, window, first, last);
    });
    if (found == queue.end())
        return false;
    message = *found;
    if (remove)
        queue.erase(found);
    return true;
}

void DropMessages(HWND window) {
    std::erase_if(Queue(), [window](const MSG& message) { return message.hwnd == window; });
}

void DropMessages(HWND window, UINT message) {
    std::erase_if(Queue(), [window, message](const MSG& waiting) {
        return waiting.hwnd == window && waiting.message == message;
    });
}

DWORD MessageTime() {
    using namespace std::chrono;
    const auto now = duration_cast<milliseconds>(steady_clock::now().time_since_epoch());
    return static_cast<DWORD>(now.count());
}

LRESULT CallProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    HWND__* record = LiveWindow(window);
    if (!record)
        return 0;
    if (message == WM_ACTIVATE)
        record->told = LOWORD(wParam) != WA_INACTIVE;
    return record->procedure(window, message, wParam, lParam);
}

} // namespace VornPlatform
