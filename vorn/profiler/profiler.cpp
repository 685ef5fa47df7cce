// SPDX-License-Identifier: MIT
#include "vorn/profiler/profiler.hpp"

#include "vorn/math/point2.hpp"
#include "vorn/render/graphic.hpp"

#include <windows.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>
#include <limits>

namespace Vorn {

namespace {

constexpr int FramesPerSample = 60;
constexpr std::size_t MaxSamples = 10;
constexpr unsigned int Red = 0xFFFF0000u;

const char* NameOf(PROFILE_TYPE type) {
    switch (type) {
    case PROFILE_PHYSICS:
        return "Physics";
    case PROFILE_GRAPHICS:
        return "Graphics";
    }
    return "";
}

std::int64_t Counter() {
    LARGE_INTEGER counter;
    QueryPerformanceCounter(&counter);
    return counter.QuadPart;
}

std::int64_t CountsPerSecond() {
    LARGE_INTEGER frequency;
    QueryPerformanceFrequency(&frequency);
    return frequency.QuadPart;
}

// A float that int cannot hold stays at its end.
int Whole(float number) {
    constexpr auto limit = static_cast<float>(std::numeric_limits<int>::max());
    if (number >= limit)
        return std::numeric_limits<int>::max();
    return number > -limit ? static_cast<int>(number) : std::numeric_limits<int>::min();
}

} // namespace

bool ProfileObject::isSampling() const {
    return mFrameCount >= FramesPerSample;
}

void ProfileObject::StartClock() {
    if (isSampling())
        mStart = Counter();
}

void ProfileObject::EndClock() {
    if (isSampling()) {
        mFrameCount = 0;
        const auto counts = static_cast<double>(Counter() - mStart);
        mPerformanceTime.push_back(
            static_cast<float>(counts / static_cast<double>(CountsPerSecond())));
        if (mPerformanceTime.size() > MaxSamples)
            mPerformanceTime.pop_front();
    }
    ++mFrameCount;
}

void Profiler::StartClock(PROFILE_TYPE type) {
    if (mDebugOn)
        mProfiles[type].StartClock();
}

void Profiler::EndClock(PROFILE_TYPE type) {
    if (mDebugOn)
        mProfiles[type].EndClock();
}

const std::list<float>& Profiler::PerformanceTime(PROFILE_TYPE type) {
    return mProfiles[type].PerformanceTime();
}

void Profiler::Output(PROFILE_TYPE type, COLORS color, float baseY, float height) {
    if (!mDebugOn)
        return;
    float min = 1000.0f, max = -1.0f;
    std::array<Point2, MaxSamples> points{};
    std::size_t count = 0;
    for (const float sample : mProfiles[type].PerformanceTime()) {
        min = std::min(min, sample);
        max = std::max(max, sample);
        const float range = max - min;
        points[count] = {100.0f * static_cast<float>(count),
                         range > 0.0f ? baseY - height * sample / range : baseY};
        ++count;
    }
    Graphic& graphic = *Graphic::Instance();
    if (count == MaxSamples)
        graphic.Draw2DLine(points.data(), MaxSamples, color, 2.0f);

    char text[100];
    std::snprintf(text, sizeof text, "%s : Min: %f, Max: %f", NameOf(type),
                  static_cast<double>(min), static_cast<double>(max));
    graphic.RenderText(0, Whole(baseY), Red, text);
}

void Profiler::Output(PROFILE_TYPE type, float) {
    if (mDebugOn)
        mProfiles.try_emplace(type);
}

void Profiler::Unregister(PROFILE_TYPE type) {
    if (mDebugOn)
        mProfiles.erase(type);
}

void Profiler::RenderDebugText(int x, int y, std::string text) {
    Graphic::Instance()->RenderText(x, y, Red, text.c_str());
}

} // namespace Vorn
