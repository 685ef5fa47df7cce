// SPDX-License-Identifier: MIT
#include "samples/game/actors.hpp"

#include <algorithm>
#include <bitset>
#include <cmath>

namespace Lantern {

using Vorn::Vector3;

namespace {

constexpr float StepsPerSecond = 60.0f;
constexpr float Pi = 3.1415927f;

Vector3 Direction(float turn) {
    return {std::cos(turn), std::sin(turn), 0.0f};
}

std::bitset<64> played;

Vector3 Unit(Vector3 v, const Vector3& otherwise) {
    if (v.SquareLength() < 0.0001f)
        return otherwise;
    v.Normalize();
    return v;
}

} // namespace

Dive& TheDive() {
    static Dive dive;
    return dive;
}

void Dive::Banner(const std::string& text, float seconds) {
    banner = text;
    bannerTime = seconds;
}

void Play(Sounds sound) {
    if (played.test(static_cast<std::size_t>(sound)))
        return;
    played.set(static_cast<std::size_t>(sound));
    Vorn::SoundManager::Instance()->PlaySfx(NumberOf(sound), false);
}

void ForgetPlayed() {
    played.reset();
}

void Splash(Vorn::Scene& scene, const char* variant, const Vector3& place) {
    scene.CreateEntity("burst", std::string(variant), false)->Position(place);
}

void Actor::DeserializeValue(const Json::Value& root, bool master) {
    Entity::DeserializeValue(root, master);
    dsParam(mHealth, Vorn::JsonInt(root, "Health", mHealth), master);
    dsParam(mSpeed, Vorn::JsonFloat(root, "Speed", mSpeed), master);
    dsParam(mSpan, Vorn::JsonFloat(root, "Span", mSpan), master);
    dsParam(mWorth, Vorn::JsonInt(root, "Worth", mWorth), master);
    dsParam(mBeam, Vorn::JsonBool(root, "Beam", mBeam), master);
}

void Actor::Conform(const Vorn::Entity* source) {
    Entity::Conform(source);
    const auto& actor = dynamic_cast<const Actor&>(*source);
    mHealth = actor.mHealth, mSpeed = actor.mSpeed, mSpan = actor.mSpan, mWorth = actor.mWorth;
    mBeam = actor.mBeam;
}

void Actor::Init() {
    if (!Scene())
        return;
    mAge = mFlash = 0.0f;
    mLife = mHealth;
    mDone = false;
    if (Physics()) {
        Physics()->ClearProperties();
        Physics()->RegisterCollisionResponse(this);
    }
    if (Emitter())
        Emitter()->Init(); // a scene leaves that to us
    begin();
}

void Actor::Update(float dt) {
    mAge += dt;
    if (!mDone)
        act(dt);
    show(dt);
    if (mSpan > 0.0f && mAge > mSpan)
        Finish();
    Entity::Update(dt);
    if (mDone)
        Scene()->DestroyEntity(this, false);
}

// A hit shows as a flash of white. Who shines by itself is drawn with the beams.
void Actor::show(float dt) {
    mFlash = std::max(0.0f, mFlash - 5.0f * dt);
    if (!Graphics())
        return;
    Graphics()->Distortion(mBeam); // its Init, which comes after ours, clears it
    const int light = static_cast<int>(170.0f * mFlash);
    Graphics()->GetMaterial().AdditiveColor(Vorn3DColorSigned(0, light, light, light));
}

void Actor::Finish() {
    mDone = true;
    Alive(false); // neither met nor drawn any more
}

void Actor::operator()(Vorn::CollisionData* data) {
    auto* other = dynamic_cast<Actor*>(data->other->Parent());
    if (other && !mDone && !other->mDone)
        Meet(*other);
}

// Bodies move by the physics: a velocity is a way for each of its steps.
void Actor::moveBy(const Vector3& velocity) {
    if (Physics())
        Physics()->LinearVelocity(velocity * (1.0f / StepsPerSecond));
}

void Actor::keepInField() {
    Vector3 place = Position();
    place.x = Vorn::fclamp(place.x, -FieldX, FieldX);
    place.y = Vorn::fclamp(place.y, FieldBottom, FieldTop);
    place.z = 0.0f;
    LocalPosition(place);
}

// The lantern

void Submarine::begin() {
    mOrders = {};
    mVelocity = Vector3();
    mReload = 0.0f;
    mSafe = 2.0f;
    TheDive().place = Position();
}

void Submarine::act(float dt) {
    // The water slows: it takes a third of a second to get going.
    mVelocity += (mOrders.way * mSpeed - mVelocity) * std::min(1.0f, 5.0f * dt);
    moveBy(mVelocity);
    keepInField();
    // It looks to the side that it aims at, and leans with its way.
    const float side = mOrders.aim.x < 0.0f ? -1.0f : 1.0f;
    Orientation(Unit({side, 0.05f * mVelocity.y, -0.25f}, {1, 0, 0}));
    TheDive().place = Position();
    TheDive().facing = mOrders.aim;

    mSafe = std::max(0.0f, mSafe - dt);
    mReload = std::max(0.0f, mReload - dt);
    if (mOrders.fire && mReload <= 0.0f)
        fire();
    if (mOrders.pulse && TheDive().pulses > 0)
        pulse();
    // It flickers while it cannot be hurt.
    const bool dark = mSafe > 0.0f && std::fmod(mAge, 0.2f) > 0.1f;
    if (Graphics())
        Graphics()->GetMaterial().ModulationColor(dark ? 0xFF808080u : 0xFFFFFFFFu);
}

void Submarine::fire() {
    mReload = 0.16f;
    auto* spark = dynamic_cast<Bolt*>(Scene()->CreateEntity("bolt", std::string("spark"), false));
    spark->Position(Position() + mOrders.aim * 0.9f);
    spark->Fly(mOrders.aim * 24.0f + mVelocity * 0.3f);
    Play(Shot);
}

void Submarine::pulse() {
    constexpr float reach = 6.5f;
    Dive& dive = TheDive();
    --dive.pulses;
    dive.waveTime = Dive::WaveTime;
    dive.waveFrom = Position();
    Play(PulseSound);
    Scene()->CreateEntity("bolt", std::string("ring"), false)->Position(Position());
    for (Vorn::Entity* entity : Scene()->EntityList()) {
        auto* actor = dynamic_cast<Actor*>(entity);
        if (actor && actor != this && actor->Position().Distance(Position()) < reach)
            actor->Wound(5);
    }
}

void Submarine::Meet(Actor& other) {
    // Rocks push back.
    if (other.Type() == "rock") {
        const Vector3 away = Unit(Position() - other.Position(), {0, 1, 0});
        mVelocity = away * 5.0f;
    }
}

void Submarine::Wound(int points) {
    Dive& dive = TheDive();
    if (mSafe > 0.0f || dive.light <= 0 || dive.motherDead)
        return;
    dive.light = std::max(0, dive.light - points);
    dive.factor = 1;
    dive.pearls = 0;
    dive.hurt = 1.0f;
    mSafe = 2.0f;
    mFlash = 1.0f;
    Play(Hurt);
    Splash(*Scene(), "bubbles", Position());
    Vorn::InputManager::Instance()->vibrateTrigger(Vorn::CONTROL_PAD1, 0.3);
    if (dive.light == 0) {
        Splash(*Scene(), "boom", Position());
        Play(Boom);
        Finish();
    }
}

// What flies

void Bolt::Fly(const Vector3& velocity) {
    mVelocity = velocity;
    Orientation(Unit(velocity, {1, 0, 0}));
}

void Bolt::act(float dt) {
    if (Variant() == "ring") {
        const float size = 0.5f + 12.0f * mAge;
        Scale(size, size, size);
        Angle(Angle() + 2.0f * dt);
        return;
    }
    moveBy(mVelocity);
    if (std::abs(Position().x) > FieldX + 2.0f || Position().y < 0.0f ||
        Position().y > FieldTop + 3.0f)
        Finish();
}

void Bolt::Meet(Actor& other) {
    if (other.Type() == "rock") {
        Splash(*Scene(), "chip", Position());
        Finish();
        return;
    }
    other.Wound(1);
    Splash(*Scene(), "chip", Position());
    Finish();
}

// Foes

void Foe::begin() {
    ++TheDive().foes;
}

void Foe::Meet(Actor& other) {
    if (other.Type() == "lantern")
        other.Wound(1);
}

void Foe::Wound(int points) {
    if (IsDone())
        return;
    mFlash = 1.0f;
    mLife -= points;
    if (mLife > 0)
        Play(Hit);
    else
        die();
}

void Foe::die() {
    TheDive().Score(mWorth);
    Play(Boom);
    Splash(*Scene(), "boom", Position());
    Splash(*Scene(), "flash", Position());
    for (int i = 0; i < 1 + mWorth / 50; ++i)
        Scene()->CreateEntity("pearl", std::string("master"), false)->Position(Position());
    --TheDive().foes;
    Finish();
}

void Foe::throwSpines(int count, float turn) {
    for (int i = 0; i < count; ++i) {
        const Vector3 way =
            Direction(turn + 2.0f * Pi * static_cast<float>(i) / static_cast<float>(count));
        auto* spine =
            dynamic_cast<Bolt*>(Scene()->CreateEntity("bolt", std::string("spine"), false));
        spine->Position(Position() + way * 0.6f * Scale().x);
        spine->Fly(way * 5.5f);
    }
}

void Puffer::act(float) {
    Vector3 way = Unit(toLantern(), {1, 0, 0}) * mSpeed;
    way.y += 0.8f * std::sin(2.1f * mAge + Position().x);
    moveBy(way);
    Orientation(Unit(Vector3(way.x, way.y, -1.5f), {1, 0, 0}));
    // It swells where the lantern is near.
    const float near = Vorn::fclamp(1.0f - toLantern().Length() / 6.0f, 0.0f, 1.0f);
    const float size = 1.0f + 0.35f * near + 0.04f * std::sin(7.0f * mAge);
    Scale(size, size, size);
}

void Puffer::die() {
    throwSpines(6, mAge);
    Foe::die();
}

void Jelly::begin() {
    Foe::begin();
    mWay = Position().x < TheDive().place.x ? 1.0f : -1.0f;
    mHeight = Position().y;
}

void Jelly::act(float dt) {
    if (std::abs(Position().x) > FieldX && Position().x * mWay > 0.0f)
        mWay = -mWay;
    mHeight += Vorn::fclamp(toLantern().y, -1.0f, 1.0f) * 0.35f * dt;
    const float wanted = mHeight + 1.6f * std::sin(0.9f * mAge);
    moveBy({mWay * mSpeed, 2.0f * (wanted - Position().y), 0.0f});
    Orientation(0.0f, 0.0f, 1.0f);
}

void Dart::begin() {
    Foe::begin();
    mState = State::Lurks;
    mLeft = 0.6f;
}

// A ray of its own width: what it meets first is what it sees.
bool Dart::seesLantern() {
    const Vector3 way = Unit(toLantern(), {1, 0, 0});
    std::list<Vorn::Entity*> others;
    for (Vorn::Entity* entity : Scene()->EntityList())
        if (entity != this && entity->Physics() && entity->IsAlive())
            others.push_back(entity);
    Vorn::Entity* seen = nullptr;
    return Vorn::RayCastFromObject(this, way, others, seen, 0.0f) && seen &&
           seen->Type() == "lantern";
}

void Dart::act(float dt) {
    mLeft -= dt;
    switch (mState) {
    case State::Lurks:
        moveBy(Unit(toLantern(), {1, 0, 0}) * mSpeed * 0.25f);
        Orientation(Unit(Vector3(toLantern().x, toLantern().y, -1.0f), {1, 0, 0}));
        if (mLeft < 0.0f) {
            mLeft = 0.4f;
            if (seesLantern()) {
                mState = State::Winds;
                mAim = Unit(toLantern(), {1, 0, 0});
                mLeft = 0.55f;
                Play(DartSound);
            }
        }
        break;
    case State::Winds: // a moment to get out of its way
        mFlash = std::max(mFlash, 0.5f);
        moveBy(mAim * -1.2f);
        Orientation(mAim);
        if (mLeft < 0.0f) {
            mState = State::Darts;
            mLeft = 0.9f;
        }
        break;
    case State::Darts:
        moveBy(mAim * mSpeed * 3.6f);
        if (mLeft < 0.0f) {
            mState = State::Rests;
            mLeft = 1.2f;
        }
        break;
    case State::Rests:
        moveBy(mAim * mSpeed * 0.15f);
        if (mLeft < 0.0f) {
            mState = State::Lurks;
            mLeft = 0.5f;
        }
        break;
    }
    keepInField();
}

void Mother::begin() {
    Foe::begin();
    mSpines = 3.0f;
    mBirth = 6.0f;
    mTurn = 0.0f;
    TheDive().motherFull = TheDive().motherLife = mHealth;
    TheDive().Banner("The mother of lights", 3.0f);
    Vorn::SoundManager::Instance()->StopBgm();
    Vorn::SoundManager::Instance()->PlayBgm(NumberOf(MotherMusic));
}

void Mother::act(float dt) {
    // She comes from above the field, so that all of her is seen before she is near.
    constexpr float arrival = 3.0f;
    Vector3 way = Unit(toLantern(), {1, 0, 0}) * mSpeed;
    way.y += 0.6f * std::sin(0.7f * mAge);
    if (mAge < arrival)
        way = Vector3(0.0f, -2.4f, 0.0f);
    moveBy(way);
    Orientation(0.0f, 0.0f, 1.0f);
    mSpines -= dt;
    mBirth -= dt;
    if (mSpines < 0.0f) {
        mTurn += 0.35f;
        throwSpines(14, mTurn);
        mSpines = mLife * 2 < mHealth ? 1.7f : 2.6f;
        Play(DartSound);
    }
    if (mBirth < 0.0f) {
        Scene()->CreateEntity("jelly", std::string("small"), false)->Position(Position());
        mBirth = 7.0f;
    }
}

void Mother::Wound(int points) {
    Foe::Wound(points);
    TheDive().motherLife = std::max(0, mLife);
}

void Mother::die() {
    TheDive().motherDead = true;
    TheDive().Banner("She sinks into the dark", 3.0f);
    // All others go with her.
    for (Vorn::Entity* entity : Scene()->EntityList())
        if (auto* foe = dynamic_cast<Foe*>(entity); foe && foe != this)
            foe->Wound(100);
    for (int i = 0; i < 5; ++i)
        Splash(*Scene(), "boom", Position() + Direction(1.3f * static_cast<float>(i)) * 1.5f);
    Foe::die();
}

// Pearls

void Pearl::begin() {
    mVelocity = Direction(Vorn::Random(0.0f, 2.0f * Pi)) * 2.5f;
}

void Pearl::act(float dt) {
    // They sink, and a lantern that is near draws them.
    mVelocity += (Vector3(0.0f, -0.7f, 0.0f) - mVelocity) * std::min(1.0f, 1.5f * dt);
    const Vector3 way = TheDive().place - Position();
    const float distance = way.Length();
    Vector3 velocity = mVelocity;
    if (distance < 3.2f && TheDive().light > 0)
        velocity += way * (9.0f / std::max(distance, 0.5f));
    moveBy(velocity);
    keepInField();
    Angle(Angle() + 2.0f * dt);
}

void Pearl::Meet(Actor& other) {
    if (other.Type() != "lantern")
        return;
    Dive& dive = TheDive();
    dive.Score(10 * dive.factor);
    if (++dive.pearls >= 5) {
        dive.pearls = 0;
        dive.factor = std::min(dive.factor + 1, Dive::MaxFactor);
        if (dive.factor % 2 != 0 && dive.pulses < Dive::MaxPulses)
            ++dive.pulses;
        else if (dive.factor % 2 != 0)
            dive.light = std::min(dive.light + 1, Dive::MaxLight);
    }
    Play(PearlSound);
    Splash(*Scene(), "glint", Position());
    Finish();
}

// What is not seen

void Herald::begin() {
    const int wave = static_cast<int>(Position().x);
    if (wave <= 0)
        return;
    TheDive().Banner("Wave " + std::to_string(wave), 2.5f);
    Play(WaveSound);
}

} // namespace Lantern
