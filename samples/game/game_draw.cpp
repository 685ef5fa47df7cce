// SPDX-License-Identifier: MIT
//
// A frame of the game: three targets one after the other, then the screen.
#include "samples/game/game.hpp"

#include <algorithm>

namespace Lantern {

using namespace Vorn;

namespace {

constexpr D3DCOLOR Black = D3DCOLOR_XRGB(0, 0, 0), Deep = D3DCOLOR_XRGB(2, 7, 16);
const Vector3 LampColor(1.0f, 0.93f, 0.78f), LampGloss(0.9f, 0.85f, 0.7f);
constexpr COLORS GraphColor{D3DCOLOR_XRGB(120, 230, 200)};

} // namespace

void Game::Draw() {
    mProfiler.StartClock(PROFILE_GRAPHICS);
    const float dt = mState == State::Paused ? 0.0f : mFrame;
    // Update has moved the camera: drawing or not, the game goes the same way.
    mGraphic.SetView(mCamera.viewMatrix());
    mGraphic.SetProjection(mCamera.Projection());
    mGraphic.CameraPos(mCamera.Position());
    // The lamp is all the light there is, and each hit takes of it; on the title, a light goes
    // round.
    const Dive& dive = TheDive();
    const bool title = mState == State::Title;
    const float lit =
        title ? 1.0f
              : 0.4f + 0.6f * static_cast<float>(dive.light) / static_cast<float>(Dive::MaxLight);
    mGraphic.SetPointLightSettings(LampColor * lit, LampGloss * lit, {0, 0, 0});
    mGraphic.SetPointLightPosition(title ? mLookAt + Vector3(0, 0, -5.0f)
                                         : dive.place + Vector3(0, 0.4f, -2.2f));
    drawBeams(dt);
    part("draw beams");
    drawScene(dt);
    part("draw lit");
    drawParticles();
    part("draw flakes");
    drawScreen();
    part("draw screen");
    mProfiler.EndClock(PROFILE_GRAPHICS);
}

void Game::drawBeams(float dt) {
    mGraphic.RTBeamBegin();
    mGraphic.SetBackBufferColor(Black);
    if (mState != State::Title)
        mDisplay.DrawLamp(TheDive());
    drawSonar();
    const Texture* glow = TextureManager::Instance()->Get("glow.png");
    mGraphic.SetTexture(*glow->mTexture); // skinned models draw with what is bound
    GraphicsSystem::Instance()->BeamEffects(dt);
    mGraphic.RTBeamEnd();
}

// The pulse shows the ground as a grid, which runs out from it and sinks.
void Game::drawSonar() {
    const Dive& dive = TheDive();
    if (dive.waveTime <= 0.0f || !mSeabed.GetMesh())
        return;
    const float age = 1.0f - dive.waveTime / Dive::WaveTime;
    const float wide = 1.6f + 8.0f * age, deep = 0.5f - 3.0f * age * age;
    const Matrix4 place(wide, 0, 0, dive.waveFrom.x, 0, 0.012f, 0, deep, 0, 0, 3.2f, 6.0f, 0, 0, 0,
                        1);
    mGraphic.SetWorldTransform(place.Transposed());
    mGraphic.SetTexture(*TextureManager::Instance()->Get("sonar.png")->mTexture);
    mSeabed.Draw();
    mGraphic.SetWireFrame(false);
}

void Game::drawScene(float dt) {
    mGraphic.RTBegin();
    mGraphic.SetBackBufferColor(Deep);
    mDisplay.DrawBackdrop(mState == State::Title ? 0 : mLevelIndex);
    const InSight inSight(*mLevel, mCamera, mRadii);
    GraphicsSystem::Instance()->Update(dt);
    mGraphic.RTEnd();
}

void Game::drawParticles() {
    mGraphic.RTParticlesBegin();
    mGraphic.SetBackBufferColor(Black);
    Graphics2DSystem::Instance()->RenderParticle();
    mGraphic.RTParticlesEnd();
}

void Game::drawScreen() {
    const Dive& dive = TheDive();
    const Point2 wave = mCamera.WorldToScreen(dive.waveFrom);
    const Point2 cross = mCamera.WorldToScreen(dive.aim);
    mGraphic.SetView(Matrix4::Identity);
    mGraphic.SetProjection(Matrix4::orthogonal(800, 600, -1.0f, 1.0f));
    mGraphic.SetBackBufferColor(Black);
    mGraphic.BeginScene();
    Graphic::GetDevice()->SetRenderState(D3DRS_ZENABLE, FALSE); // all of it is flat
    mGraphic.DistortionEffect(wave, dive.waveTime > 0.0f);
    if (mState == State::Title)
        mDisplay.DrawTitle(mTime, mBest);
    else
        mDisplay.DrawDive(dive, cross, mLevels[mLevelIndex].name);
    if (mState == State::Paused)
        mDisplay.DrawPaused();
    else if (mState == State::Dark || mState == State::Done)
        mDisplay.DrawEnd(mState == State::Done, dive.score, mBest, mTime);
    mProfiler.Output(PROFILE_PHYSICS, GraphColor, 552.0f, 8.0f);
    mProfiler.Output(PROFILE_GRAPHICS, GraphColor, 576.0f, 8.0f);
    mGraphic.EndScene();
}

} // namespace Lantern
