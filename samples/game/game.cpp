// SPDX-License-Identifier: MIT
#include "samples/game/game.hpp"

#include "samples/game/loading.hpp"

#include <XInput.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <map>

namespace Lantern {

using namespace Vorn;

namespace {

constexpr const char* TitleScene = "data/title.scene";
constexpr float CameraAway = 15.5f;
constexpr float Eyes = 6.4f; // half of the height that is seen in the plane

// The direction of a stick or of four keys; y up.
Vector3 WayOf(AnalogMovement move) {
    switch (move) {
    case ANALOG_UP:
        return {0, 1, 0};
    case ANALOG_DOWN:
        return {0, -1, 0};
    case ANALOG_LEFT:
        return {-1, 0, 0};
    case ANALOG_RIGHT:
        return {1, 0, 0};
    case ANALOG_UP_LEFT:
        return {-0.7071f, 0.7071f, 0};
    case ANALOG_UP_RIGHT:
        return {0.7071f, 0.7071f, 0};
    case ANALOG_DOWN_LEFT:
        return {-0.7071f, -0.7071f, 0};
    case ANALOG_DOWN_RIGHT:
        return {0.7071f, -0.7071f, 0};
    default:
        return {};
    }
}

void Fold(std::uint64_t& hash, const void* data, std::size_t size) {
    const auto* bytes = static_cast<const unsigned char*>(data);
    for (std::size_t i = 0; i < size; ++i)
        hash = (hash ^ bytes[i]) * 1099511628211ull;
}

// The manager keeps what is pushed for good, so each is pushed once, however many games a process
// sees; `mDone` says which of them wait.
Trigger::Trigger* Script(const char* name) {
    static std::map<std::string, Trigger::Trigger*> scripts;
    Trigger::Trigger*& script = scripts[name];
    if (!script)
        script = TriggerManager::Instance()->Push(Trigger::Trigger::LoadScript(name));
    script->mDone = true;
    return script;
}

/// What a script adds here goes straight back to its pool. The manager of scenes keeps hold of the
/// last one it had, so this one outlives games.
class Nowhere : public Vorn::Scene {
public:
    void AddEntity(Entity* entity, bool) override {
        EntityFactory::Instance()->ReturnEntity(entity);
    }
    static Nowhere* Instance() {
        static Nowhere nowhere;
        return &nowhere;
    }
};

} // namespace

Game::Game(unsigned int width, unsigned int height, const std::filesystem::path& score)
    : mLevels{{{"The shallows",
                "data/shallows.scene",
                {"shallows1.json", "shallows2.json", "shallows3.json", "shallows4.json"},
                {}},
               {"The trench",
                "data/trench.scene",
                {"trench1.json", "trench2.json", "trench3.json", "trench4.json", "trench5.json"},
                {}}}},
      mScoreFile(score), mBest(mScoreFile.Best()) {
    CheckData();
    mEngine.Init("Lantern", width, height, false);
    NamingFile("data/physics.json",
               [] { PhysicsSystem::Instance()->LoadPhysicsInfo("data/physics.json"); });
    registerTypes();
    NamingFile("data/entity", [] { EntityFactory::Instance()->LoadEntities("data/entity"); });
    mTitle.DeserializePath(TitleScene);
    mShallows.DeserializePath(mLevels[0].scene);
    mTrench.DeserializePath(mLevels[1].scene);
    for (Level& level : mLevels)
        for (const char* script : level.scripts)
            level.triggers.push_back(Script(script));
    // A scene loads its pack each time it comes, and what is there stays as it is. But a sound gets
    // another number: no scene has them.
    for (const char* pack : {"data/pack/sound.json", "data/pack/title.json", "data/pack/dive.json"})
        LoadPack(pack);
    title();
    mDisplay.Load();
    mSeabed.SetMesh(MeshManager::Instance()->CreateMesh("seabed"));
    mSeabed.Init("data/map/seabed.bmp");

    mGraphic.SetFog(16.0f, 36.0f); // what lies behind the plane of the game grows dim
    mCamera.Projection(Matrix4::Projection(mGraphic.DefaultFOV(), 4.0f / 3.0f, 1.0f, 120.0f));
}

// What holds objects of the device goes before it.
Game::~Game() {
    try {
        drain();
    } catch (const std::exception&) {
        // A script or a scene that is broken has told that already, or nobody needs to know.
    }
    SoundManager::Instance()->Free();
    mSeabed.Shutdown();
    RscPackManager::Instance()->Free();
    MeshManager::Instance()->Unload("seabed");
    mEngine.Free();
    // Nobody need have closed it; and a process may see another game.
    DestroyWindow(Engine::mWnd);
    Engine::isShutdown = false;
}

void Game::registerTypes() {
    auto& factory = *EntityFactory::Instance();
    factory.Register("lantern", &mSubmarines);
    factory.Register("bolt", &mBolts);
    factory.Register("puffer", &mPuffers);
    factory.Register("jelly", &mJellies);
    factory.Register("dart", &mDarts);
    factory.Register("mother", &mMothers);
    factory.Register("pearl", &mPearls);
    factory.Register("burst", &mBursts);
    factory.Register("herald", &mHeralds);
    factory.Register("rock", &mRocks);
    factory.Register("decor", &mDecor);
}

// States

void Game::enter(Vorn::Scene& scene, const char* file, Sounds music) {
    mLevel = &scene;
    mScenes.SetScene(&scene);
    NamingFile(file, [this] { mScenes.Update(0.0f); }); // the change itself
    PhysicsSystem::Instance()->Init();
    EmitterSystem::Instance()->Init(); // graphics are ready: the scene has done that
    SoundManager::Instance()->StopBgm();
    SoundManager::Instance()->PlayBgm(NumberOf(music));
    mTime = 0.0f;
}

void Game::title() {
    mState = State::Title;
    enter(mTitle, TitleScene, TitleMusic);
    mLookAt = {0.0f, 8.0f, 0.0f};
    log.emplace_back("title");
}

void Game::dive() {
    const Vector3 aim = TheDive().aim;
    TheDive() = Dive();
    TheDive().aim = aim;
    std::srand(1); // the same input leads the same way
    startLevel(0);
}

void Game::startLevel(std::size_t level) {
    mLevelIndex = level;
    drain();
    Dive& dive = TheDive();
    dive.foes = dive.motherLife = 0;
    dive.motherDead = false;
    mCalm = 0.0f;
    mState = State::Diving;
    enter(level == 0 ? mShallows : mTrench, mLevels[level].scene, DiveMusic);
    for (Trigger::Trigger* trigger : mLevels[level].triggers)
        trigger->mDone = false;
    mTriggers.ResetTimeElapsed();
    dive.Banner(mLevels[level].name, 3.0f);
    mLookAt = dive.place;
    log.emplace_back(std::string("level ") + mLevels[level].name);
}

// What scripts of an earlier dive have still to do is done now, where it makes nobody: nothing
// takes a running action back.
void Game::drain() {
    mScenes.SetScene(Nowhere::Instance());
    mScenes.Update(0.0f);
    for (Level& level : mLevels)
        for (Trigger::Trigger* trigger : level.triggers)
            trigger->mDone = true;
    constexpr int longest = 200; // commands of a script
    for (int i = 0; i < longest; ++i)
        mTriggers.Update(1000.0);
}

void Game::endDive(State state) {
    mState = state;
    mTime = 0.0f;
    SoundManager::Instance()->StopBgm();
    Play(OverSound);
    const int score = TheDive().score;
    if (score > mBest) {
        mBest = score;
        log.emplace_back(mScoreFile.Keep(score) ? "best score kept" : "best score not kept");
    }
    log.emplace_back((state == State::Done ? "won, score " : "lost, score ") +
                     std::to_string(score));
}

// A frame

void Game::Update() {
    if (!mEngine.CheckContext())
        mEngine.Reset();
    DeltaClock::Instance()->Update();
    mFrame = std::min(static_cast<float>(DeltaClock::Instance()->GetDeltaTime()), 0.1f);
    mInput.Update();
    ForgetPlayed();
    readKeys();
    // Who looks elsewhere does not want to die meanwhile.
    if (mWasActive && !mEngine.IsActive() && mState == State::Diving) {
        mState = State::Paused;
        SoundManager::Instance()->PauseBgm(true);
    }
    mWasActive = mEngine.IsActive();
    part("input");

    if (mState == State::Paused)
        return;
    mTime += mFrame;
    // The scripts' clock runs faster through an empty sea: who is quick need not wait.
    const float clock = TheDive().foes > 0 ? mFrame : 4.0f * mFrame;
    if (mState == State::Diving && !TheDive().motherDead)
        NamingFile("data/trigger", [&] { mTriggers.Update(static_cast<double>(clock)); });
    part("triggers");
    mProfiler.StartClock(PROFILE_PHYSICS);
    mScenes.Update(mFrame);
    part("entities");
    PhysicsSystem::Instance()->Update(mFrame);
    part("physics");
    EmitterSystem::Instance()->Update(mFrame);
    mProfiler.EndClock(PROFILE_PHYSICS);
    part("particles");
    updateDive(mFrame);
    moveCamera(mFrame);
    part("rules");
}

void Game::readKeys() {
    const auto key = [this](unsigned int code) {
        return mInput.IsKeyTriggered(CONTROL_KEYBOARD, code);
    };
    const auto button = [this](unsigned int code) {
        return mInput.IsKeyTriggered(CONTROL_PAD1, code);
    };
    if (key('F'))
        mEngine.ToggleFullScreen();
    if (key('O'))
        mProfiler.SetDebugOn(!mProfiler.GetDebugOn());
    if (key('M')) {
        auto& sound = *SoundManager::Instance();
        sound.MuteBgm(!sound.MuteBgm());
    }
    const bool go = key(VK_SPACE) || key(VK_RETURN) || button(XINPUT_GAMEPAD_A);
    const bool pause = key('P') || button(XINPUT_GAMEPAD_START);
    const bool leave = key(VK_ESCAPE);
    switch (mState) {
    case State::Title:
        if (leave)
            mRunning = false;
        else if (go) {
            Play(Click);
            dive();
        }
        break;
    case State::Diving:
        if (pause || leave) {
            mState = State::Paused;
            SoundManager::Instance()->PauseBgm(true);
        }
        break;
    case State::Paused:
        if (pause || leave || key('R'))
            SoundManager::Instance()->PauseBgm(false);
        if (leave)
            title();
        else if (key('R'))
            dive();
        else if (pause)
            mState = State::Diving;
        break;
    case State::Dark:
    case State::Done:
        if (leave)
            title();
        else if (go && mTime > 1.5f)
            dive();
        break;
    }
}

Submarine::Orders Game::orders() const {
    const auto held = [this](unsigned int a, unsigned int b) {
        return mInput.IsKeyPressed(CONTROL_KEYBOARD, a) || mInput.IsKeyPressed(CONTROL_KEYBOARD, b);
    };
    Submarine::Orders orders;
    orders.way = WayOf(mInput.AnalogLeftMove(CONTROL_PAD1));
    orders.way.x += (held('D', VK_RIGHT) ? 1.0f : 0.0f) - (held('A', VK_LEFT) ? 1.0f : 0.0f);
    orders.way.y += (held('W', VK_UP) ? 1.0f : 0.0f) - (held('S', VK_DOWN) ? 1.0f : 0.0f);
    if (orders.way.Length() > 1.0f)
        orders.way.Normalize();

    const Vector3 stick = WayOf(mInput.AnalogRightMove(CONTROL_PAD1));
    Vector3 aim = TheDive().aim - TheDive().place;
    if (stick.SquareLength() > 0.0f)
        aim = stick;
    aim.z = 0.0f;
    orders.aim = {1, 0, 0};
    if (aim.SquareLength() > 0.01f) {
        aim.Normalize();
        orders.aim = aim;
    }
    orders.fire = mInput.MmouseIsPressed(VK_LBUTTON) || stick.SquareLength() > 0.0f ||
                  mInput.IsKeyPressed(CONTROL_PAD1, XINPUT_GAMEPAD_RIGHT_SHOULDER);
    // Not with the key that has just begun the dive.
    orders.pulse = mTime > 0.3f && (mInput.IsKeyTriggered(CONTROL_KEYBOARD, VK_SPACE) ||
                                    mInput.MmouseIsTrigger(VK_RBUTTON) ||
                                    mInput.IsKeyTriggered(CONTROL_PAD1, XINPUT_GAMEPAD_A));
    return orders;
}

void Game::updateDive(float dt) {
    Dive& dive = TheDive();
    dive.hurt = std::max(0.0f, dive.hurt - dt);
    dive.waveTime = std::max(0.0f, dive.waveTime - dt);
    dive.bannerTime = std::max(0.0f, dive.bannerTime - dt);
    if (mState != State::Diving)
        return;
    // Where the cross meets the plane of the game.
    const Point2 mouse = mInput.MGetScreenMousePos();
    const Vector3 way = mCamera.ScreenToRayDir(mouse);
    const Vector3 eye = mCamera.Position();
    if (std::abs(way.z) > 0.01f)
        dive.aim = eye + way * (-eye.z / way.z);
    if (auto* lantern = dynamic_cast<Submarine*>(mLevel->GetEntity("player")))
        lantern->Steer(orders());

    if (dive.light <= 0)
        endDive(State::Dark);
    else if (dive.motherDead && (mCalm += dt) < 3.5f) // time for the last pearls
        return;
    else if (dive.motherDead && mLevelIndex + 1 < mLevels.size()) {
        dive.Score(500);
        dive.light = std::min(dive.light + 1, Dive::MaxLight);
        startLevel(mLevelIndex + 1);
    } else if (dive.motherDead) {
        dive.Score(1000 + 250 * dive.light);
        endDive(State::Done);
    }
}

void Game::moveCamera(float dt) {
    if (mState == State::Title) {
        mLookAt = {3.0f * std::sin(0.2f * mTime), 8.0f, 0.0f};
    } else {
        Vector3 wanted = TheDive().place;
        wanted.x = fclamp(wanted.x, -FieldX + 8.0f, FieldX - 8.0f);
        wanted.y = fclamp(wanted.y, Eyes - 1.2f, FieldTop + 2.0f - Eyes);
        mLookAt += (wanted - mLookAt) * std::min(1.0f, 4.0f * dt);
        mLookAt.z = 0.0f;
    }
    // From -Z, so that X goes to the right.
    mCamera.LookAt(mLookAt);
    mCamera.SetRotationDeg(90.0f, 3.0f, CameraAway);
    if (TheDive().hurt > 0.97f)
        mCamera.cameraShakeBegin(0.4f, 0.003f);
    mCamera.Update(dt);
}

std::uint64_t Game::Hash() const {
    std::uint64_t hash = 14695981039346656037ull;
    const Dive& dive = TheDive();
    for (const int number : {dive.light, dive.pulses, dive.score, dive.factor, dive.foes})
        Fold(hash, &number, sizeof number);
    for (const Entity* entity : mLevel->EntityList()) {
        const Vector3 place = entity->Position(), way = entity->Orientation();
        for (const float number : {place.x, place.y, place.z, way.x, way.y, way.z})
            Fold(hash, &number, sizeof number);
    }
    return hash;
}

} // namespace Lantern
