// SPDX-License-Identifier: MIT
//
// A whole frame, piece by piece: see README.md beside this file.
#include "platform/control/vorn_platform.hpp"
#include "samples/support.hpp"

#include <array>
#include <cmath>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace {

using namespace Vorn;

constexpr unsigned int Width = 800, Height = 600;
constexpr D3DCOLOR Night = D3DCOLOR_XRGB(4, 10, 24), Black = D3DCOLOR_XRGB(0, 0, 0);
constexpr D3DCOLOR Pale = D3DCOLOR_XRGB(206, 232, 240), Dim = D3DCOLOR_ARGB(150, 150, 175, 190);
constexpr COLORS GraphColor{D3DCOLOR_XRGB(120, 230, 200)};

enum Piece { Beams, Lit, Particles, Glow, Wave, Display, Letters, Profile, PieceCount };
constexpr std::array<const char*, PieceCount> Names = {
    "beams", "scene", "particles", "glow", "shock wave", "display", "text", "profiler"};

/// Hangs in the water and drifts.
class Jelly : public Entity {
public:
    void Init() override {
        Entity::Init();
        mHome = Position();
    }
    void Update(float dt) override {
        mTime += dt;
        const float turn = 0.4f * mTime + mHome.x;
        Position(mHome + Vector3(0.5f * std::sin(turn), 0.35f * std::sin(1.7f * turn), 0.0f));
        Entity::Update(dt);
    }

private:
    Vector3 mHome;
    float mTime = 0.0f;
};

class Dive {
public:
    Dive() {
        Engine::Instance()->Init("Vorn: frame", Width, Height, false);
        auto& factory = *EntityFactory::Instance();
        factory.Register("thing", &mThings);
        factory.Register("jelly", &mJellies);
        factory.Register("source", &mSources);
        factory.LoadEntities("samples/06-frame/entity");
        mScene.DeserializePath("samples/06-frame/night.scene");
        mScenes.SetScene(&mScene);
        mScenes.Update(0.0f); // loads the pack, fetches the entities
        prepare();
    }
    Dive(const Dive&) = delete;
    Dive& operator=(const Dive&) = delete;
    // What holds objects of the device goes before it.
    ~Dive() {
        mScenes.UnloadCurrentScene();
        RscPackManager::Instance()->Free();
        Engine::Instance()->Free();
    }

    void Toggle(unsigned int piece) { mOn.at(piece) = !mOn.at(piece); }
    void Only(unsigned int piece) {
        mOn.fill(false);
        mOn.at(piece) = true;
    }

    void Update(float dt) {
        mTime += dt;
        mProfiler.StartClock(PROFILE_PHYSICS);
        mScenes.Update(dt);
        EmitterSystem::Instance()->Update(dt);
        mProfiler.EndClock(PROFILE_PHYSICS);
    }

    /// The recipe: three targets one after the other, then the screen.
    void Draw(float dt) {
        mProfiler.StartClock(PROFILE_GRAPHICS);
        // Particles are squares that face along Z, so the camera swings before them.
        mCamera.SetRotationDeg(-90.0f + 9.0f * std::sin(0.23f * mTime), 7.0f, 13.5f);
        mCamera.Update(dt);
        mGraphic.CameraPos(mCamera.Position());
        drawBeams(dt);
        drawScene(dt);
        drawParticles();
        drawScreen();
        mProfiler.EndClock(PROFILE_GRAPHICS);
    }

private:
    void prepare() {
        EmitterSystem::Instance()->Init(); // the emitters take their textures and pools
        for (Entity* entity : mScene.EntityList())
            if (entity->Type() == "jelly")
                entity->Graphics()->Distortion(true); // into the second pass
        mGraphic.SetPointLightPosition({0.0f, 4.5f, 1.5f});
        mGraphic.SetPointLightSettings({0.75f, 1.0f, 1.0f}, {0.6f, 0.9f, 1.0f}, {0, 0, 0});
        mCamera.Projection(Matrix4::Projection(mGraphic.DefaultFOV(), 4.0f / 3.0f, 0.5f, 200));
        mCamera.LookAt(0.0f, 3.4f, 0.0f);

        const auto image = [](const char* name) { return TextureManager::Instance()->Get(name); };
        mJellySkin = image("night_jelly.png");
        const auto place = [&](Vorn2DObj& object, const char* name, Vector3 at, float w, float h) {
            object.mTexture = image(name);
            object.mPosition = at;
            object.mWidth = w, object.mHeight = h;
        };
        place(mPanel, "night_panel.png", {104, 424, 0}, 184, 172);
        place(mDial, "night_dial.png", {718, 84, 0}, 128, 128);
        place(mNeedle, "night_needle.png", {718, 84, 0}, 116, 116);
        if (!mFont.loadCharData("data/font/vorn.fnt"))
            throw std::runtime_error("cannot open data/font/vorn.fnt");
        mFont.mTexture = image("vorn_font.png");
        mProfiler.SetDebugOn(true);
    }

    // What shines: on black, in a target of its own.
    void drawBeams(float dt) {
        mGraphic.RTBeamBegin();
        mGraphic.SetBackBufferColor(Black);
        if (mOn[Beams]) {
            mGraphic.SetTexture(*mJellySkin->mTexture); // skinned models draw with what is bound
            GraphicsSystem::Instance()->BeamEffects(dt);
        }
        mGraphic.RTBeamEnd();
    }

    void drawScene(float dt) {
        mGraphic.RTBegin();
        mGraphic.SetBackBufferColor(Night);
        if (mOn[Lit])
            GraphicsSystem::Instance()->Update(dt);
        mGraphic.RTEnd();
    }

    void drawParticles() {
        mGraphic.RTParticlesBegin();
        mGraphic.SetBackBufferColor(Black);
        if (mOn[Particles])
            Graphics2DSystem::Instance()->RenderParticle();
        if (mOn[Glow])
            Graphics2DSystem::Instance()->RenderParticleGlowOverLay();
        mGraphic.RTParticlesEnd();
    }

    // The three together, and what lies flat on top, in units of the screen.
    void drawScreen() {
        mGraphic.SetView(Matrix4::Identity);
        mGraphic.SetProjection(Matrix4::orthogonal(Width, Height, -1.0f, 1.0f));
        mGraphic.SetBackBufferColor(Black);
        mGraphic.BeginScene();
        Graphic::GetDevice()->SetRenderState(D3DRS_ZENABLE, FALSE); // all of it is flat
        const Point2 wave = mCamera.WorldToScreen(mScene.GetEntity("jelly")->Position());
        mGraphic.DistortionEffect(wave, mOn[Wave]);
        if (mOn[Display])
            drawDisplay();
        if (mOn[Letters])
            drawText();
        if (mOn[Profile])
            showTimes();
        mGraphic.EndScene();
    }

    void drawDisplay() {
        auto& flat = *Graphics2DSystem::Instance();
        flat.Render2DObj(&mPanel, 0.62f, true);
        flat.Render2DObj(&mDial, 1.0f, false);
        mNeedle.mAngle = 0.6f + 0.15f * std::sin(1.3f * mTime);
        flat.Render2DObj(&mNeedle, 1.0f, false);
    }

    void drawText() {
        mFont.RenderText(400, 14, Pale, "Night dive", BM_ALIGN_CENTER);
        char depth[32];
        std::snprintf(depth, sizeof depth, "%.1f m",
                      23.0 + 0.8 * std::sin(0.5 * static_cast<double>(mTime)));
        mFont.RenderText(718, 152, Pale, depth, BM_ALIGN_CENTER);
        for (unsigned int i = 0; i < PieceCount; ++i)
            mFont.RenderText(26, 344.0f + 20.0f * static_cast<float>(i), mOn[i] ? Pale : Dim,
                             (std::to_string(i + 1) + "  " + Names[i]).c_str());
    }

    // What an update takes, as a graph with its text; what drawing takes, as text alone at first.
    void showTimes() {
        mProfiler.Output(PROFILE_PHYSICS, GraphColor, 556.0f, 8.0f);
        mProfiler.Output(PROFILE_GRAPHICS, GraphColor, 577.0f, 8.0f);
    }

    Graphic& mGraphic = *Graphic::Instance();
    SceneManager& mScenes = *SceneManager::Instance();
    Profiler& mProfiler = *Profiler::Instance();
    EntityPool<Entity> mThings, mSources;
    EntityPool<Jelly> mJellies;
    Scene mScene;
    Camera mCamera;
    Texture* mJellySkin = nullptr;
    Vorn2DObj mPanel, mDial, mNeedle;
    bmFont mFont;
    std::array<bool, PieceCount> mOn{true, true, true, false, true, true, true, true};
    float mTime = 0.0f;
};

void Show(Dive& dive) {
    Samples::Loop([&](float dt) {
        for (unsigned int piece = 0; piece < PieceCount; ++piece)
            if (InputManager::Instance()->IsKeyTriggered(CONTROL_KEYBOARD, '1' + piece))
                dive.Toggle(piece);
        dive.Update(dt);
        dive.Draw(dt);
    });
}

/// Ten seconds of time, by a clock that goes the same way each time; only the last one is drawn.
void Play(Dive& dive) {
    constexpr int frames = 600, drawn = 20, perSecond = 60;
    for (int frame = 0; frame <= frames; ++frame) {
        VornPlatform::HoldClock(VornPlatform::ClockFrequency * (600 + frame) / perSecond);
        DeltaClock::Instance()->Update();
        VornPlatform::ReleaseClock(); // the profiler shows what it really takes
        const auto dt = static_cast<float>(DeltaClock::Instance()->GetDeltaTime());
        dive.Update(dt);
        if (frame % (frames / drawn) == 0)
            dive.Draw(dt);
    }
}

/// Each piece alone, beside the picture of the whole: frame.png, frame-1-beams.png and so on.
void SavePieces(Dive& dive, const std::string& path) {
    for (unsigned int piece = 0; piece < PieceCount; ++piece) {
        dive.Only(piece);
        dive.Draw(0.0f);
        std::string name = Names[piece];
        for (char& c : name)
            c = c == ' ' ? '-' : c;
        const std::filesystem::path file(path);
        Samples::SavePicture((file.parent_path() / file.stem()).string() + "-" +
                             std::to_string(piece + 1) + "-" + name + ".png");
    }
}

} // namespace

int main(int argc, char** argv) {
    const bool pieces = argc == 3 && std::string(argv[2]) == "--pieces";
    if (argc > 2 && !pieces) {
        std::fprintf(stderr, "06-frame [FILE.png [--pieces]]\n");
        return 2;
    }
    try {
        Dive dive;
        if (argc == 1 && VornPlatform::HasDisplay()) {
            Show(dive);
            return 0;
        }
        Play(dive);
        const std::string path =
            argc > 1 ? argv[1] : Samples::InTemporaryFolder("vorn-06-frame.png");
        Samples::SavePicture(path);
        if (pieces)
            SavePieces(dive, path);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "06-frame: %s\n", error.what());
        return 1;
    }
}
