// SPDX-License-Identifier: MIT
//
// A reef out of data files, and a camera that follows a fish: see README.md beside this file.
#include "platform/control/vorn_platform.hpp"
#include "samples/support.hpp"

#include <XInput.h>

#include <cmath>
#include <cstdio>
#include <exception>

namespace {

constexpr unsigned int Width = 800, Height = 600;
constexpr D3DCOLOR Water = D3DCOLOR_XRGB(128, 140, 153); // the colour of fog in the shader files
constexpr unsigned int TextColor = D3DCOLOR_XRGB(20, 34, 52);

/// Swims in circles about the middle.
class Fish : public Vorn::Entity {
public:
    void DeserializeValue(const Json::Value& root, bool master) override {
        Entity::DeserializeValue(root, master);
        dsParam(mRadius, Vorn::JsonFloat(root, "Radius", mRadius), master);
        dsParam(mSpeed, Vorn::JsonFloat(root, "Speed", mSpeed), master);
        dsParam(mHeight, Vorn::JsonFloat(root, "Height", mHeight), master);
        dsParam(mTurn, Vorn::JsonFloat(root, "Start", mTurn), master);
    }
    void Conform(const Vorn::Entity* source) override {
        Entity::Conform(source);
        const auto& fish = dynamic_cast<const Fish&>(*source);
        mRadius = fish.mRadius, mSpeed = fish.mSpeed, mHeight = fish.mHeight, mTurn = fish.mTurn;
    }
    void Update(float dt) override {
        mTurn += mSpeed * dt;
        LocalPosition({mRadius * std::sin(mTurn), mHeight + 0.4f * std::sin(3.0f * mTurn),
                       mRadius * std::cos(mTurn)});
        // Models look along Z, and this takes Z to where it swims, tail and all.
        const float wag = mTurn + 0.12f * std::sin(14.0f * mTurn);
        Orientation({std::cos(wag), 0.15f * std::cos(3.0f * mTurn), -std::sin(wag)});
        Entity::Update(dt);
    }

private:
    float mRadius = 0.0f;
    float mSpeed = 0.0f; // (unit: radians / second)
    float mHeight = 0.0f;
    float mTurn = 0.0f;
};

class Reef {
public:
    Reef() : mGraphics(*Vorn::Graphic::Instance()) {
        Vorn::Engine::Instance()->Init("Vorn: scene", Width, Height, false);
        auto& factory = *Vorn::EntityFactory::Instance();
        factory.Register("thing", &mThings);
        factory.Register("fish", &mFish);
        factory.LoadEntities("samples/04-scene/entity");
        mScene.DeserializePath("samples/04-scene/reef.scene");
        mScenes.SetScene(&mScene);
        mScenes.Update(0.0f); // loads the pack, fetches the entities, gives them their models
        prepare();
    }
    Reef(const Reef&) = delete;
    Reef& operator=(const Reef&) = delete;
    // What holds objects of the device goes before it.
    ~Reef() {
        mScenes.UnloadCurrentScene();
        Vorn::RscPackManager::Instance()->Free();
        Vorn::Engine::Instance()->Free();
    }

    /// By arrows and wheel, and by the first pad's right stick and shoulders.
    void Steer(float dt) {
        using namespace Vorn;
        auto& input = *InputManager::Instance();
        const auto held = [&input](unsigned int more, unsigned int less) {
            return (input.IsKeyPressed(CONTROL_KEYBOARD, more) ? 1.0f : 0.0f) -
                   (input.IsKeyPressed(CONTROL_KEYBOARD, less) ? 1.0f : 0.0f);
        };
        float yaw = held(VK_LEFT, VK_RIGHT), pitch = held(VK_UP, VK_DOWN);
        float radius = static_cast<float>(-input.MmouseScrollCurr()) / 120.0f;
        const AnalogMovement stick = input.AnalogRightMove(CONTROL_PAD1);
        yaw += stick == ANALOG_LEFT ? 1.0f : stick == ANALOG_RIGHT ? -1.0f : 0.0f;
        pitch += stick == ANALOG_UP ? 1.0f : stick == ANALOG_DOWN ? -1.0f : 0.0f;
        radius += input.IsKeyPressed(CONTROL_PAD1, XINPUT_GAMEPAD_LEFT_SHOULDER) ? 8.0f * dt : 0;
        radius -= input.IsKeyPressed(CONTROL_PAD1, XINPUT_GAMEPAD_RIGHT_SHOULDER) ? 8.0f * dt : 0;
        mCamera.RotateCamDeg(90.0f * yaw * dt, 60.0f * pitch * dt, radius);
    }

    void Update(float dt) { mScenes.Update(dt); }

    void Draw(float dt) {
        mCamera.Update(dt);
        mGraphics.CameraPos(mCamera.Position());
        mGraphics.SetBackBufferColor(Water);
        mGraphics.BeginScene();
        auto& graphics = *Vorn::GraphicsSystem::Instance();
        graphics.Update(dt); // sand, stones and fish
        // The weed, with its bones; this path draws with what is bound.
        mGraphics.SetTexture(*mWeed->mTexture);
        graphics.BeamEffects(dt);
        mGraphics.RenderText(22, 18, TextColor, "A reef");
        mGraphics.EndScene();
    }

private:
    void prepare() {
        for (Vorn::Entity* entity : mScene.EntityList())
            if (entity->Variant() == "weed")
                entity->Graphics()->Distortion(true);
        mWeed = Vorn::TextureManager::Instance()->Get("reef_weed.png");

        using namespace Vorn;
        mGraphics.SetPointLightPosition({18.0f, 24.0f, 14.0f});
        mGraphics.SetPointLightSettings({1.0f, 0.97f, 0.86f}, {0.8f, 0.8f, 0.7f},
                                        {0.05f, 0.08f, 0.1f});
        mGraphics.SetFog(12.0f, 48.0f);
        mCamera.Projection(Matrix4::Projection(mGraphics.DefaultFOV(), 4.0f / 3.0f, 0.5f, 200));
        mCamera.RegisterEntity(mScene.GetEntity("fish"));
        mCamera.SetRotationDeg(-28.0f, 14.0f, 9.5f);
    }

    Vorn::Graphic& mGraphics;
    Vorn::SceneManager& mScenes = *Vorn::SceneManager::Instance();
    Vorn::EntityPool<Vorn::Entity> mThings;
    Vorn::EntityPool<Fish> mFish;
    Vorn::Scene mScene;
    Vorn::Camera mCamera;
    Vorn::Texture* mWeed = nullptr;
};

void Show(Reef& reef) {
    Samples::Loop([&](float dt) {
        reef.Steer(dt);
        reef.Update(dt);
        reef.Draw(dt);
    });
}

/// Three seconds, by a clock that goes the same way each time.
void Play(Reef& reef) {
    constexpr int frames = 45, perSecond = 15;
    for (int frame = 0; frame <= frames; ++frame) {
        VornPlatform::HoldClock(VornPlatform::ClockFrequency * (150 + frame) / perSecond);
        Vorn::DeltaClock::Instance()->Update();
        const auto dt = static_cast<float>(Vorn::DeltaClock::Instance()->GetDeltaTime());
        reef.Update(dt);
        reef.Draw(dt);
        if (frame < frames)
            Vorn::Graphic::Instance()->Present();
    }
    VornPlatform::ReleaseClock();
}

} // namespace

int main(int argc, char** argv) {
    if (argc > 2) {
        std::fprintf(stderr, "04-scene [FILE.png]\n");
        return 2;
    }
    try {
        Reef reef;
        if (argc == 1 && VornPlatform::HasDisplay()) {
            Show(reef);
            return 0;
        }
        Play(reef);
        Samples::SavePicture(argc > 1 ? argv[1] : Samples::InTemporaryFolder("vorn-04-scene.png"));
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "04-scene: %s\n", error.what());
        return 1;
    }
}
