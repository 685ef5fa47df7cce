// SPDX-License-Identifier: MIT
//
// The game as a whole: its states, its scenes, and a frame.
//
//   Lantern::Game game(width, height, scorePath);
//   while (game.Running()) {
//       fetch messages
//       game.Update();
//       game.Draw();
//   }
#pragma once

#include "samples/game/actors.hpp"
#include "samples/game/display.hpp"
#include "samples/game/score_file.hpp"
#include "samples/game/sight.hpp"
#include "vorn/vorn.hpp"

#include <array>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace Lantern {

enum class State { Title, Diving, Paused, Dark, Done };

class Game {
public:
    /// Works in the folder of the game, which must be the current one.
    Game(unsigned int width, unsigned int height, const std::filesystem::path& score);
    Game(const Game&) = delete;
    Game& operator=(const Game&) = delete;
    ~Game();

    bool Running() const { return mRunning && !Vorn::Engine::Instance()->IsShutdown(); }
    /// A frame of time, by the engine's clock, and of input.
    void Update();
    /// Draws it, without showing it: Present is the caller's.
    void Draw();

    /// For who has changed its file.
    void ReloadFont() { mDisplay.LoadFont(); }

    State GetState() const { return mState; }
    Vorn::Scene* Scene() { return mLevel; }
    const Vorn::Camera& Camera() const { return mCamera; }
    /// Of all that takes part in the game: the same input leads to the same number.
    std::uint64_t Hash() const;
    /// What has happened, a line each; the caller empties it.
    std::vector<std::string> log;
    /// Called where a part of a frame ends, with its name: for who measures.
    std::function<void(const char*)> partEnds;

private:
    struct Level {
        const char* name;
        const char* scene;
        std::vector<const char*> scripts;
        std::vector<Vorn::Trigger::Trigger*> triggers; // the manager's
    };

    void registerTypes();
    void enter(Vorn::Scene& scene, const char* file, Sounds music);
    void title();
    void dive();
    void startLevel(std::size_t level);
    void endDive(State state);
    void drain();
    void readKeys();
    void updateDive(float dt);
    Submarine::Orders orders() const;
    void moveCamera(float dt);

    void part(const char* name) const {
        if (partEnds)
            partEnds(name);
    }

    void drawBeams(float dt);
    void drawSonar();
    void drawScene(float dt);
    void drawParticles();
    void drawScreen();

    Vorn::Engine& mEngine = *Vorn::Engine::Instance();
    Vorn::Graphic& mGraphic = *Vorn::Graphic::Instance();
    Vorn::SceneManager& mScenes = *Vorn::SceneManager::Instance();
    Vorn::TriggerManager& mTriggers = *Vorn::TriggerManager::Instance();
    Vorn::InputManager& mInput = *Vorn::InputManager::Instance();
    Vorn::Profiler& mProfiler = *Vorn::Profiler::Instance();

    Vorn::EntityPool<Submarine> mSubmarines;
    Vorn::EntityPool<Bolt> mBolts;
    Vorn::EntityPool<Puffer> mPuffers;
    Vorn::EntityPool<Jelly> mJellies;
    Vorn::EntityPool<Dart> mDarts;
    Vorn::EntityPool<Mother> mMothers;
    Vorn::EntityPool<Pearl> mPearls;
    Vorn::EntityPool<Burst> mBursts;
    Vorn::EntityPool<Herald> mHeralds;
    Vorn::EntityPool<Actor> mRocks, mDecor;

    Vorn::Scene mTitle, mShallows, mTrench;
    Vorn::Scene* mLevel = nullptr; // the one that runs
    std::array<Level, 2> mLevels;
    std::size_t mLevelIndex = 0;
    Vorn::Camera mCamera;
    Vorn::HeightMap mSeabed;
    InSight::Radii mRadii;
    Display mDisplay;
    ScoreFile mScoreFile;
    int mBest = 0;
    State mState = State::Title;
    bool mRunning = true;
    bool mWasActive = true;
    float mTime = 0.0f;  // in this state (unit: seconds)
    float mCalm = 0.0f;  // since the mother is gone (unit: seconds)
    float mFrame = 0.0f; // the last frame (unit: seconds)
    Vorn::Vector3 mLookAt;
};

} // namespace Lantern
