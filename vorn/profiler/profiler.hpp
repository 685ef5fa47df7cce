// SPDX-License-Identifier: MIT
//
// Times stretches of a frame, once in 60 frames, and draws the last ten times.
//
//   auto& profiler = *Vorn::Profiler::Instance();
//   profiler.SetDebugOn(true);
//   profiler.StartClock(Vorn::PROFILE_PHYSICS);
//   Vorn::PhysicsSystem::Instance()->Update(dt);
//   profiler.EndClock(Vorn::PROFILE_PHYSICS);
//   ...
//   profiler.Output(Vorn::PROFILE_PHYSICS, color, 200.0f, 40.0f); // within a scene of Graphic
//
// The engine times nothing of its own accord. A stretch may not stand within itself.
#pragma once

#include "vorn/core/api.hpp"
#include "vorn/core/singleton.hpp"
#include "vorn/render/line.hpp"

#include <cstdint>
#include <list>
#include <map>
#include <string>

namespace Vorn {

/// Other values may be used too; they have no name in the picture.
enum PROFILE_TYPE : int { PROFILE_PHYSICS = 0, PROFILE_GRAPHICS = 1 };

/// The times of one stretch.
class VORN_API ProfileObject {
public:
    void StartClock();
    /// The first one, and each sixtieth after it, takes a sample of the time since StartClock.
    void EndClock();
    /// The last ten samples at most, the oldest first (unit: seconds).
    const std::list<float>& PerformanceTime() const { return mPerformanceTime; }

private:
    bool isSampling() const;

    std::list<float> mPerformanceTime;
    int mFrameCount = 60;
    std::int64_t mStart = 0;
};

class VORN_API Profiler : public Singleton<Profiler> {
public:
    /// Off at the start: StartClock, EndClock, Output and Unregister do nothing then, and what was
    /// sampled stays.
    void SetDebugOn(bool on) { mDebugOn = on; }
    bool GetDebugOn() const { return mDebugOn; }
    void StartClock(PROFILE_TYPE type);
    void EndClock(PROFILE_TYPE type);
    /// Empty for what was never timed. Good until Unregister.
    const std::list<float>& PerformanceTime(PROFILE_TYPE type);
    /// A graph of ten samples, 100 pixels apart, above `baseY`, and from left to right the oldest
    /// first; and at `baseY` a line of text in red with name, least and greatest (unit: pixels of
    /// the target). `height` stands for the range of the samples up to each one, so that the graph
    /// leaves the picture where they differ by less than they are; at `baseY` where they do not
    /// differ. The last sample is left out, and with less than ten there is no graph.
    void Output(PROFILE_TYPE type, COLORS color, float baseY, float height);
    /// Draws nothing.
    void Output(PROFILE_TYPE type, float unused);
    void Unregister(PROFILE_TYPE type);
    /// In red, also while it is off.
    void RenderDebugText(int x, int y, std::string text);

private:
    std::map<PROFILE_TYPE, ProfileObject> mProfiles;
    bool mDebugOn = false;
};

template <>
VORN_API Profiler Singleton<Profiler>::mSingleton;

} // namespace Vorn
