// SPDX-License-Identifier: MIT
//
// Everybody in the water. All move in the plane z = 0. What they are comes from data/entity; how
// they behave stands here.
//
// An actor meets another one inside PhysicsSystem::Update, where nothing may leave the scene, so
// who is done only says so (`Finish`) and leaves at the end of the frame.
#pragma once

#include "vorn/vorn.hpp"

#include <list>
#include <string>

namespace Lantern {

/// What the dive as a whole knows, and what actors tell it: one for the game, which owns it.
struct Dive {
    static constexpr int MaxLight = 4, MaxPulses = 3, MaxFactor = 9;
    static constexpr float WaveTime = 0.7f; // as the last pass has it (unit: seconds)

    int light = MaxLight; // hits that the lamp still bears
    int pulses = 1;
    int score = 0;
    int factor = 1; // what a pearl is worth, in tens
    int pearls = 0; // since the factor last rose
    int foes = 0;   // in the water
    int motherLife = 0, motherFull = 0;
    bool motherDead = false;
    float hurt = 0.0f;       // fades from 1 after a hit
    float waveTime = 0.0f;   // the shock wave is seen for so long yet (unit: seconds)
    float bannerTime = 0.0f; // the text is shown for so long yet (unit: seconds)
    std::string banner;
    Vorn::Vector3 place;  // of the lantern
    Vorn::Vector3 facing; // where its lamp points, a direction of length 1
    Vorn::Vector3 aim;    // of the cross, in the plane
    Vorn::Vector3 waveFrom;

    void Banner(const std::string& text, float seconds);
    void Score(int points) { score += points; }
};
/// The one that actors speak to.
Dive& TheDive();

/// The numbers of the sounds, by their order in data/pack/sound.json.
enum Sounds {
    DiveMusic = 1,
    MotherMusic,
    TitleMusic,
    Shot = 11,
    Hit,
    Boom,
    PearlSound,
    PulseSound,
    Hurt,
    WaveSound,
    OverSound,
    Click,
    DartSound
};
inline Vorn::SoundType NumberOf(Sounds sound) {
    return static_cast<Vorn::SoundType>(sound);
}
/// Once in a frame, however many ask for it: ten that burst at once are one bang.
void Play(Sounds sound);
/// A new frame begins.
void ForgetPlayed();

/// How far the field goes.
constexpr float FieldX = 20.0f, FieldTop = 17.0f, FieldBottom = 1.0f;

class Actor : public Vorn::Entity, private Vorn::FunctorBase1 {
public:
    void DeserializeValue(const Json::Value& root, bool master) override;
    void Conform(const Vorn::Entity* source) override;
    /// Runs on the way in and on the way out: Scene() tells which.
    void Init() override;
    void Update(float dt) override;

    virtual void Meet(Actor&) {}
    /// Nothing for what has no life to lose.
    virtual void Wound(int) {}
    bool IsDone() const { return mDone; }

protected:
    /// What Init does on the way in.
    virtual void begin() {}
    virtual void act(float) {}
    void Finish();
    /// (unit: distance / second), and the way it looks, if it moves.
    void moveBy(const Vorn::Vector3& velocity);
    void keepInField();

    int mHealth = 1;     // hits it bears
    int mLife = 1;       // of them left
    float mSpeed = 0.0f; // (unit: distance / second)
    float mAge = 0.0f;   // in this scene (unit: seconds)
    float mSpan = 0.0f;  // age at which it is gone; 0 for never (unit: seconds)
    int mWorth = 0;      // points
    bool mBeam = false;  // shines by itself: drawn with the beams, without light
    float mFlash = 0.0f; // shows a hit, fades from 1

private:
    void operator()(Vorn::CollisionData* data) override;
    void show(float dt);

    bool mDone = false;
};

/// The player. What the keys, the mouse and the pad say comes in through Steer.
class Submarine : public Actor {
public:
    struct Orders {
        Vorn::Vector3 way; // length up to 1
        Vorn::Vector3 aim; // a direction of length 1
        bool fire = false;
        bool pulse = false;
    };
    void Steer(const Orders& orders) { mOrders = orders; }
    void Meet(Actor& other) override;
    void Wound(int points) override;

protected:
    void begin() override;
    void act(float dt) override;

private:
    void fire();
    void pulse();

    Orders mOrders;
    Vorn::Vector3 mVelocity;
    float mReload = 0.0f; // (unit: seconds)
    float mSafe = 0.0f;   // cannot be hurt for so long (unit: seconds)
};

/// What the player shoots, what foes shoot, and rings that grow: flies straight on.
class Bolt : public Actor {
public:
    void Fly(const Vorn::Vector3& velocity);
    void Meet(Actor& other) override;

protected:
    void act(float dt) override;

private:
    Vorn::Vector3 mVelocity;
};

class Foe : public Actor {
public:
    void Meet(Actor& other) override;
    void Wound(int points) override;

protected:
    void begin() override;
    virtual void die();
    Vorn::Vector3 toLantern() const { return TheDive().place - Position(); }
    void throwSpines(int count, float turn);
};

/// Comes near, and bursts into spines.
class Puffer : public Foe {
protected:
    void act(float dt) override;
    void die() override;
};

/// Drifts across, up and down.
class Jelly : public Foe {
protected:
    void begin() override;
    void act(float dt) override;

private:
    float mWay = 1.0f;
    float mHeight = 0.0f;
};

/// Lurks, and darts where it sees the lantern: rocks are cover.
class Dart : public Foe {
protected:
    void begin() override;
    void act(float dt) override;

private:
    bool seesLantern();

    enum class State { Lurks, Winds, Darts, Rests } mState = State::Lurks;
    float mLeft = 0.0f; // of the state (unit: seconds)
    Vorn::Vector3 mAim{1.0f, 0.0f, 0.0f};
};

/// Ends a level.
class Mother : public Foe {
public:
    void Wound(int points) override;

protected:
    void begin() override;
    void act(float dt) override;
    void die() override;

private:
    float mSpines = 3.0f, mBirth = 6.0f; // (unit: seconds)
    float mTurn = 0.0f;
};

class Pearl : public Actor {
public:
    void Meet(Actor& other) override;

protected:
    void begin() override;
    void act(float dt) override;

private:
    Vorn::Vector3 mVelocity;
};

/// An emitter that emits once and goes.
class Burst : public Actor {};

/// Nobody sees it: a script makes one to say that a wave begins. Its x is the number of the wave.
class Herald : public Actor {
protected:
    void begin() override;
    void act(float) override { Finish(); }
};

/// A burst of a variant of data/entity.
void Splash(Vorn::Scene& scene, const char* variant, const Vorn::Vector3& place);

} // namespace Lantern
