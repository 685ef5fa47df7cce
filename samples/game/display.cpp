// SPDX-License-Identifier: MIT
#include "samples/game/display.hpp"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace Lantern {

using namespace Vorn;

namespace {

constexpr unsigned int White = 0xFFE8F6FFu, Soft = 0xFF8FB8CCu, Warm = 0xFFFFD98Au,
                       Danger = 0xFFFF7A6Au;

unsigned int Faded(unsigned int color, float alpha) {
    const auto a = static_cast<unsigned int>(255.0f * fclamp(alpha, 0.0f, 1.0f));
    return (a << 24) | (color & 0xFFFFFFu);
}

} // namespace

void Display::LoadFont() {
    if (!mFont.loadCharData("data/font/lantern.fnt"))
        throw std::runtime_error("cannot open file: data/font/lantern.fnt");
}

void Display::Load() {
    LoadFont();
    const auto picture = [](const char* name) { return TextureManager::Instance()->Get(name); };
    mFont.mTexture = picture("lantern_font.png");
    mBackdrops[0].mTexture = picture("backdrop.png");
    mBackdrops[1].mTexture = picture("backdrop2.png");
    mLogo.mTexture = picture("logo.png");
    mLight.mTexture = picture("light.png");
    mLamp.mTexture = picture("lamp.png");
    mPulse.mTexture = picture("pulse.png");
    mCross.mTexture = picture("cross.png");
    mPanel.mTexture = picture("panel.png");
    mVignette.mTexture = picture("vignette.png");
}

void Display::DrawBackdrop(std::size_t level) {
    Vorn2DObj& backdrop = mBackdrops[level];
    backdrop.mPosition = {0.0f, 10.0f, 22.0f};
    backdrop.mWidth = 72.0f;
    backdrop.mHeight = -46.0f; // the picture's top is up
    Graphics2DSystem::Instance()->Render2DObj(&backdrop, 1.0f, false);
}

void Display::DrawLamp(const Dive& dive) {
    constexpr float size = 15.0f;
    Graphic::GetDevice()->SetRenderState(D3DRS_ZENABLE, FALSE);
    mLight.mAngle = std::atan2(dive.facing.y, dive.facing.x);
    const float lit = static_cast<float>(dive.light) / static_cast<float>(Dive::MaxLight);
    mLight.mPosition = dive.place;
    mLight.mWidth = mLight.mHeight = size;
    Graphics2DSystem::Instance()->Render2DObj(&mLight, lit * (1.0f - 0.7f * dive.hurt), true);
}

void Display::image(Vorn2DObj& object, float x, float y, float width, float height, float alpha) {
    object.mPosition = {x, y, 0.0f};
    object.mWidth = width;
    object.mHeight = height;
    Graphics2DSystem::Instance()->Render2DObj(&object, alpha, true);
}

// The font lies on pixels, everything else on units of the screen.
void Display::text(float x, float y, unsigned int color, const std::string& line, BM_ALIGN align) {
    const auto& graphic = *Graphic::Instance();
    const float toX = static_cast<float>(graphic.BackBufferWidth()) / 800.0f;
    const float toY = static_cast<float>(graphic.BackBufferHeight()) / 600.0f;
    mFont.RenderText(std::round((x + 1) * toX), std::round((y + 2) * toY),
                     Faded(0xFF000510u, static_cast<float>(color >> 24) / 400.0f), line.c_str(),
                     align);
    mFont.RenderText(std::round(x * toX), std::round(y * toY), color, line.c_str(), align);
}

void Display::veil(float alpha) {
    image(mPanel, 400, 300, 1100, 900, alpha);
}

void Display::plate(float top, float bottom, float width, float alpha) {
    image(mPanel, 400, 0.5f * (top + bottom), width, bottom - top, alpha);
}

void Display::DrawDive(const Dive& dive, const Point2& cross, const char* level) {
    image(mVignette, 400, 300, 800, 600, 0.45f + 0.55f * dive.hurt);
    for (int i = 0; i < Dive::MaxLight; ++i)
        image(mLamp, 36.0f + 34.0f * static_cast<float>(i), 34, 40, 40,
              i < dive.light ? 1.0f : 0.18f);
    for (int i = 0; i < dive.pulses; ++i)
        image(mPulse, 36.0f + 30.0f * static_cast<float>(i), 72, 30, 30, 0.95f);
    text(782, 16, White, std::to_string(dive.score), BM_ALIGN_RIGHT);
    text(782, 42, dive.factor > 1 ? Warm : Soft, "x " + std::to_string(dive.factor),
         BM_ALIGN_RIGHT);
    text(400, 16, Soft, level, BM_ALIGN_CENTER);
    if (dive.bannerTime > 0.0f) {
        plate(132, 192, 340, 0.9f * fclamp(dive.bannerTime, 0.0f, 1.0f));
        text(400, 150, Faded(White, dive.bannerTime), dive.banner, BM_ALIGN_CENTER);
    }
    if (dive.motherLife > 0) {
        const float left =
            static_cast<float>(dive.motherLife) / static_cast<float>(std::max(1, dive.motherFull));
        const int lights = static_cast<int>(std::ceil(15.0f * left));
        for (int i = 0; i < lights; ++i)
            image(mPulse, 260.0f + 20.0f * static_cast<float>(i), 56, 18, 18);
    }
    image(mCross, 400.0f + 400.0f * cross.x, 300.0f + 300.0f * cross.y, 36, 36, 0.9f);
}

void Display::DrawTitle(float time, int best) {
    image(mVignette, 400, 300, 800, 600, 0.6f);
    image(mLogo, 400, 180.0f + 6.0f * std::sin(time), 512, 256, fclamp(time, 0.0f, 1.0f));
    text(400, 352, Faded(Warm, 0.6f + 0.4f * std::sin(4.0f * time)), "press space or A to dive",
         BM_ALIGN_CENTER);
    plate(392, 512, 640, 0.8f);
    text(400, 420, Soft,
         "move: W A S D or arrows     aim and fire: mouse\npulse: space or right "
         "button     pause: P\non a pad: sticks, RB to fire, A for the pulse",
         BM_ALIGN_CENTER);
    if (best > 0)
        text(400, 540, White, "best " + std::to_string(best), BM_ALIGN_CENTER);
}

void Display::DrawPaused() {
    veil(0.5f);
    plate(215, 355, 640, 0.9f);
    text(400, 250, White, "Paused", BM_ALIGN_CENTER);
    text(400, 300, Soft, "P to go on     R to start anew     Escape for the title",
         BM_ALIGN_CENTER);
}

void Display::DrawEnd(bool won, int score, int best, float time) {
    veil(0.5f * fclamp(0.7f * time, 0.0f, 1.0f));
    plate(170, 420, 620, 0.9f * fclamp(0.7f * time, 0.0f, 1.0f));
    text(400, 210, won ? Warm : Danger, won ? "The deep is lit again" : "Your light went out",
         BM_ALIGN_CENTER);
    text(400, 262, White, std::to_string(score), BM_ALIGN_CENTER);
    text(400, 296, Soft,
         score >= best && score > 0 ? "your best so far" : "best " + std::to_string(best),
         BM_ALIGN_CENTER);
    if (time > 1.5f)
        text(400, 360, Soft, "space to dive again     Escape for the title", BM_ALIGN_CENTER);
}

} // namespace Lantern
