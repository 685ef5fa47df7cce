// SPDX-License-Identifier: MIT
//
// A window in front of a person, whose hands are xdotool.
#pragma once

#include "tests/platform/window_fixture.hpp"

#include <cstdlib>
#include <string>

namespace Tests {

class DesktopTest : public WindowTest {
protected:
    static void Type(const std::string& command) {
        ASSERT_EQ(std::system(("timeout 10 xdotool " + command).c_str()), 0) << command;
    }
    // What comes through a server takes its time. False if it has not come after ten seconds.
    template <typename Condition>
    static bool Await(Condition condition) {
        for (int i = 0; i < 2000; ++i) {
            Pump();
            if (condition())
                return true;
            Sleep(5);
        }
        return false;
    }
    static bool AwaitMessage(UINT message, std::size_t count = 1) {
        return Await([=] { return Of(message).size() >= count; });
    }
    // The pointer, in client pixels.
    static bool AwaitPointer(int x, int y) {
        return Await([=] {
            const auto moves = Of(WM_MOUSEMOVE);
            return !moves.empty() && LOWORD(moves.back().lParam) == x &&
                   HIWORD(moves.back().lParam) == y;
        });
    }
    // With what was to come by then.
    static void Settle() {
        for (int i = 0; i < 20; ++i, Sleep(5))
            Pump();
    }
};

} // namespace Tests
