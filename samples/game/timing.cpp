// SPDX-License-Identifier: MIT
#include "samples/game/timing.hpp"

#include "samples/game/game.hpp"
#include "samples/game/session.hpp"

#include "platform/control/vorn_platform.hpp"

#include <algorithm>
#include <cstdio>
#include <ctime>

namespace Lantern {

namespace {

constexpr int Rate = 44100;

double Now(clockid_t clock) {
    timespec time{};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) * 1e-6;
}

/// Adds up what each part of the frames takes (unit: milliseconds).
class Stopwatch {
public:
    void Start() { mThread = Now(CLOCK_THREAD_CPUTIME_ID), mAll = Now(CLOCK_PROCESS_CPUTIME_ID); }
    void End(const std::string& name) {
        const double thread = Now(CLOCK_THREAD_CPUTIME_ID), all = Now(CLOCK_PROCESS_CPUTIME_ID);
        auto part = std::find_if(mParts.begin(), mParts.end(),
                                 [&name](const Part& p) { return p.name == name; });
        if (part == mParts.end())
            part = mParts.insert(part, Part{name});
        part->thread += thread - mThread;
        part->all += all - mAll;
        Start();
    }
    void Print(int frames) const {
        Part sum{"together"};
        const auto line = [frames](const Part& part) {
            std::printf("%-12s %9.4f %9.4f\n", part.name.c_str(), part.thread / frames,
                        part.all / frames);
        };
        for (const Part& part : mParts) {
            line(part);
            sum.thread += part.thread;
            sum.all += part.all;
        }
        line(sum);
    }

private:
    struct Part {
        std::string name;
        double thread = 0.0, all = 0.0;
    };
    std::vector<Part> mParts;
    double mThread = 0.0, mAll = 0.0;
};

void Play(const std::string& file, bool draws) {
    VornPlatform::UseAudioLoopback(Rate);
    VornPlatform::PlayInput(file);
    {
        Game game(800, 600, ScratchScore());
        Stopwatch watch;
        std::vector<double> walls;
        game.partEnds = [&watch](const char* name) { watch.End(name); };
        int draw = 0, primitives = 0, calls = 0, changes = 0;
        while (game.Running()) {
            FetchMessages();
            if (!VornPlatform::IsPlayingInput())
                break;
            const double begin = Now(CLOCK_MONOTONIC);
            watch.Start();
            game.Update();
            VornPlatform::RenderAudio(Rate / FramesPerSecond);
            watch.End("sound");
            if (draws) {
                game.Draw();
                const VornPlatform::FrameCounters count = VornPlatform::CountFrame();
                draw += count.draws, calls += count.drawCalls, changes += count.stateChanges;
                primitives += static_cast<int>(count.primitives / 100);
                watch.Start();
                Vorn::Graphic::Instance()->Present();
                watch.End("present");
            }
            walls.push_back(Now(CLOCK_MONOTONIC) - begin);
        }
        const int frames = std::max(1, static_cast<int>(walls.size()));
        std::printf("%d frames, %s\n%-12s %9s %9s\n", frames, draws ? "drawn" : "not drawn",
                    "ms of CPU", "thread", "all");
        watch.Print(frames);
        std::sort(walls.begin(), walls.end());
        if (!walls.empty())
            std::printf("ms by the clock: median %.3f, one in a hundred %.3f\n",
                        walls[walls.size() / 2], walls[walls.size() * 99 / 100]);
        if (draws)
            std::printf("a frame: %d draws, %d00 primitives, %d draws and %d changes of OpenGL\n",
                        draw / frames, primitives / frames, calls / frames, changes / frames);
    }
    VornPlatform::StopInput();
    std::filesystem::remove(ScratchScore());
}

} // namespace

void TimeSession(const std::string& file) {
    Play(file, false);
    Play(file, true);
}

} // namespace Lantern
