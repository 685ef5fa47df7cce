// SPDX-License-Identifier: MIT
#include "tests/support/host.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <utility>
#include <vector>

namespace {

using testing::FieldsAre;
using Vorn::Point2;

class Mouse : public testing::Test {
protected:
    static Point2 Client() {
        Point2 at;
        Vorn::GetClientMousePos(at);
        return at;
    }
    Point2 Movement() const {
        Point2 by;
        input.GetMouseMovement(by);
        return by;
    }
    std::pair<int, int> Scrolled() {
        input.Update();
        EXPECT_EQ(input.MmouseIsScrolled(), input.MmouseScrollCurr() != 0);
        return {input.MmouseScrollCurr(), input.MmouseScrollPrev()};
    }

    Tests::Host host;
    Vorn::InputManager input; // of the test alone: it has scrolled nothing yet
};

TEST_F(Mouse, PositionIsTakenFromTheMessageWithXUnsignedAndYSigned) {
    struct Row {
        int x, y;
        float storedX, storedY;
    };
    for (const Row& row : std::vector<Row>{{7, 9, 7.0f, 9.0f},
                                           {-5, -3, 65531.0f, -3.0f},
                                           {32767, 32767, 32767.0f, 32767.0f},
                                           {32768, 32768, 32768.0f, -32768.0f},
                                           {65535, 0, 65535.0f, 0.0f},
                                           {0, 65535, 0.0f, -1.0f}}) {
        host.Send(WM_MOUSEMOVE, 0, Tests::Packed(row.x, row.y));
        EXPECT_THAT(Client(), FieldsAre(row.storedX, row.storedY));
        long packed = 0;
        Vorn::GetMousePos(packed);
        packed = static_cast<std::int32_t>(Tests::Packed(row.x, row.y)); // widened with its sign
        Vorn::GetMousePos(packed);
        EXPECT_THAT(input.GetOriginalMousePos(), FieldsAre(row.storedX, row.storedY));
    }
}

TEST_F(Mouse, ScreenPositionStandsForAllReadersUntilTheMouseMoves) {
    host.MoveMouse(100, 50);
    EXPECT_THAT(Client(), FieldsAre(100.0f, 50.0f));
    POINT cursor = {};
    ASSERT_TRUE(GetCursorPos(&cursor));
    ASSERT_NE(cursor.x, 100);
    const auto atCursor = FieldsAre(static_cast<float>(cursor.x), static_cast<float>(cursor.y));
    Point2 screen;
    Vorn::GetScreenMousePos(screen);
    EXPECT_THAT(screen, atCursor);
    EXPECT_THAT(Client(), atCursor);
    EXPECT_THAT(input.GetOriginalMousePos(), atCursor);
    host.MoveMouse(101, 50);
    EXPECT_THAT(Client(), FieldsAre(101.0f, 50.0f));
}

TEST_F(Mouse, MovementIsFromUpdateToUpdate) {
    host.MoveMouse(100, 50);
    input.Update();
    EXPECT_THAT(Movement(), FieldsAre(100.0f, 50.0f));
    host.MoveMouse(300, 300);
    host.MoveMouse(90, 80);
    EXPECT_THAT(Movement(), FieldsAre(100.0f, 50.0f));
    input.Update();
    EXPECT_THAT(Movement(), FieldsAre(-10.0f, 30.0f));
    input.Update();
    EXPECT_THAT(Movement(), FieldsAre(0.0f, 0.0f));
}

TEST_F(Mouse, RangeFromMinusOneToOneIsOfAFixedArea) {
    SetWindowPos(Vorn::Engine::mWnd, HWND_NOTOPMOST, 60, 40, 1000, 700, SWP_SHOWWINDOW);
    struct Row {
        int x, y;
        float rangeX, rangeY;
    };
    for (const Row& row : std::vector<Row>{{0, 0, -1.0f, -1.0f},
                                           {400, 300, 0.0f, 0.0f},
                                           {800, 600, 1.0f, 1.0f},
                                           {200, 450, -0.5f, 0.5f},
                                           {900, 675, 1.25f, 1.25f}}) {
        host.MoveMouse(row.x, row.y);
        EXPECT_THAT(input.MGetScreenMousePos(), FieldsAre(row.rangeX, row.rangeY));
    }
    SetWindowPos(Vorn::Engine::mWnd, HWND_NOTOPMOST, 60, 40, 800, 600, SWP_SHOWWINDOW);
}

TEST_F(Mouse, WheelIsAnEventOfOneFrameAndKeepsItsLastDelta) {
    host.Wheel(-2.0f);
    EXPECT_FALSE(Vorn::GetScrollEvent());
    Vorn::InputUpdate();
    EXPECT_TRUE(Vorn::GetScrollEvent());
    EXPECT_TRUE(Vorn::GetScrollEvent());
    EXPECT_EQ(Vorn::MouseIsScrolled(), -240);
    Vorn::InputUpdate();
    EXPECT_FALSE(Vorn::GetScrollEvent());
    EXPECT_EQ(Vorn::MouseIsScrolled(), -240);
    unsigned int packed = 0xFF38'1234u;
    Vorn::GetMouseScroll(packed);
    EXPECT_EQ(Vorn::MouseIsScrolled(), -200);
    // Of two in a frame the last one counts.
    host.Send(WM_MOUSEWHEEL, static_cast<WPARAM>(Tests::Packed(0, 120)), 0);
    host.Send(WM_MOUSEWHEEL, static_cast<WPARAM>(Tests::Packed(8, 360)), 0);
    EXPECT_EQ(Vorn::MouseIsScrolled(), 360);
    Vorn::InputUpdate();
    EXPECT_TRUE(Vorn::GetScrollEvent());
    Vorn::InputUpdate();
    EXPECT_FALSE(Vorn::GetScrollEvent());
}

TEST_F(Mouse, ManagerKeepsTheLastDeltaThatWasNotZero) {
    EXPECT_EQ(Scrolled(), std::pair(0, 0));
    host.Wheel(1.0f);
    EXPECT_EQ(Scrolled(), std::pair(120, 0));
    EXPECT_EQ(Scrolled(), std::pair(0, 120));
    EXPECT_EQ(Scrolled(), std::pair(0, 120));
    host.Wheel(-1.0f);
    EXPECT_EQ(Scrolled(), std::pair(-120, 120));
    host.Wheel(3.0f);
    EXPECT_EQ(Scrolled(), std::pair(360, -120));
    EXPECT_EQ(Scrolled(), std::pair(0, 360));
}

TEST_F(Mouse, WheelTurnsUnseenWithoutTheFocus) {
    host.Wheel(1.0f);
    host.Focus(false);
    EXPECT_EQ(Scrolled(), std::pair(0, 0));
    EXPECT_TRUE(Vorn::GetScrollEvent());
    EXPECT_EQ(Vorn::MouseIsScrolled(), 0);
    host.Focus(true);
    EXPECT_EQ(Vorn::MouseIsScrolled(), 120);
    EXPECT_EQ(Scrolled(), std::pair(0, 0));
}

TEST_F(Mouse, ManagerReadsTheButtons) {
    host.Key(VK_RBUTTON, true);
    input.Update();
    EXPECT_TRUE(input.MmouseIsPressed(VK_RBUTTON) && input.MmouseIsTrigger(VK_RBUTTON));
    EXPECT_FALSE(input.MmouseIsReleased(VK_RBUTTON) || input.MmouseIsPressed(VK_LBUTTON));
    host.Key(VK_RBUTTON, false);
    input.Update();
    EXPECT_FALSE(input.MmouseIsPressed(VK_RBUTTON) || input.MmouseIsTrigger(VK_RBUTTON));
    EXPECT_TRUE(input.MmouseIsReleased(VK_RBUTTON));
}

} // namespace
