// SPDX-License-Identifier: MIT
//
// What lies flat on the picture: lamps, score, banners, menus. In units of 800 by 600.
#pragma once

#include "samples/game/actors.hpp"
#include "vorn/vorn.hpp"

#include <string>

namespace Lantern {

class Display {
public:
    /// Once its pictures are loaded. Raises std::runtime_error without the font's description.
    void Load();
    void LoadFont();
    /// Behind everything, in the world: the water of a level, counted from 0.
    void DrawBackdrop(std::size_t level);
    /// What the lamp makes of the water, in the world, into the beams: before all other beams.
    void DrawLamp(const Dive& dive);
    /// On top of it, with the camera of the screen.
    void DrawDive(const Dive& dive, const Vorn::Point2& cross, const char* level);
    void DrawTitle(float time, int best);
    void DrawPaused();
    void DrawEnd(bool won, int score, int best, float time);

private:
    void image(Vorn::Vorn2DObj& object, float x, float y, float width, float height,
               float alpha = 1.0f);
    void text(float x, float y, unsigned int color, const std::string& line,
              Vorn::BM_ALIGN align = Vorn::BM_ALIGN_LEFT);
    void veil(float alpha);
    /// Dark and soft, behind text.
    void plate(float top, float bottom, float width, float alpha);

    Vorn::bmFont mFont;
    Vorn::Vorn2DObj mBackdrops[2], mLogo, mLight, mLamp, mPulse, mCross, mPanel, mVignette;
};

} // namespace Lantern
