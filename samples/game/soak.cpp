// SPDX-License-Identifier: MIT
#include "samples/game/soak.hpp"

#include "samples/game/game.hpp"
#include "samples/game/pilot.hpp"
#include "samples/game/session.hpp"

#include "platform/control/vorn_platform.hpp"

#include <malloc.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <stdexcept>
#include <string>

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#include <sanitizer/allocator_interface.h>
#define LANTERN_SANITIZED
#endif
#endif

namespace Lantern {

namespace {

constexpr unsigned int Width = 160, Height = 120;
constexpr int Rate = 8000;

std::size_t HeapBytes() {
#ifdef LANTERN_SANITIZED
    return __sanitizer_get_current_allocated_bytes(); // mallinfo knows nothing here
#else
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd; // large pieces are not of the arena
#endif
}

std::size_t ResidentBytes() {
    std::ifstream file("/proc/self/statm");
    std::size_t all = 0, resident = 0;
    file >> all >> resident;
    return resident * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

/// What is held while a scene runs, over a stretch of frames: the least, since what is in the water
/// comes and goes.
struct Footprint {
    static constexpr std::size_t Most = std::numeric_limits<std::size_t>::max();

    std::size_t resident = Most, heap = Most; // (unit: bytes)
    int objects = std::numeric_limits<int>::max(), gpu = objects;

    void Look() {
        const VornPlatform::LiveObjects live = VornPlatform::CountLiveObjects();
        const VornPlatform::GpuObjects gl = VornPlatform::CountGpuObjects();
        resident = std::min(resident, ResidentBytes());
        heap = std::min(heap, HeapBytes());
        objects = std::min(objects, live.textures + live.surfaces + live.vertexBuffers +
                                        live.indexBuffers + live.declarations + live.vertexShaders +
                                        live.pixelShaders + live.fonts + live.lines +
                                        live.renderToSurfaces + live.dataBuffers +
                                        live.constantTables + live.effects);
        gpu = std::min(gpu, gl.textures + gl.buffers);
    }
    void Print(const std::string& scene) const {
        std::printf("  %-20s %6zu KiB resident, %6zu KiB of heap, %d objects of the device, %d of "
                    "OpenGL\n",
                    scene.c_str(), resident >> 10, heap >> 10, objects, gpu);
    }
    /// Pages are the allocator's to keep, and a driver's own memory grows by steps of a megabyte as
    /// it meets new things: that of a game which leaks grows with every stretch.
    bool HasGrown(const Footprint& since) const {
        return resident > since.resident + since.resident / 10 || heap > since.heap + (4u << 20) ||
               objects > since.objects || gpu > since.gpu;
    }
};

/// What befalls the game, at random.
class Fate {
public:
    explicit Fate(unsigned int seed) : mDice(seed) {}

    void Strike(const Game& game) {
        ++mFrame;
        switch (below(4000)) {
        case 0:
            ++mLosses;
            VornPlatform::LoseDevice();
            VornPlatform::RestoreDevice();
            VornPlatform::FailResets(static_cast<int>(below(3)), D3DERR_DEVICELOST);
            break;
        case 1:
        case 2:
            ++mFocus;
            mAway = mFrame;
            VornPlatform::SendFocus(false);
            break;
        case 3:
        case 4:
        case 5:
            ++mPlugs;
            mPad ? mPad.reset() : static_cast<void>(mPad.emplace());
            break;
        case 6:
        case 7:
            ++mScreens;
            VornPlatform::SendKey('F', true);
            VornPlatform::SendKey('F', false);
            break;
        case 8:
        case 9:
        case 10:
            if (game.GetState() == State::Diving)
                TheDive().motherDead = true;
            break;
        case 11:
            if (below(4) == 0) {
                ++mCloses;
                VornPlatform::SendClose();
            }
            break;
        default:
            break;
        }
        if (mPad && below(50) == 0)
            move(*mPad);
        if (mFrame == mAway + 60)
            VornPlatform::SendFocus(true);
    }

    void Print() const {
        std::printf("thrown in: %d lost devices, %d times another window, %d pads in or out, %d "
                    "times full screen or back, %d windows closed\n",
                    mLosses, mFocus, mPlugs, mScreens, mCloses);
    }

private:
    unsigned int below(unsigned int count) { return static_cast<unsigned int>(mDice() % count); }
    int stick() { return static_cast<int>(below(65536)) - 32768; }
    void move(VornPlatform::VirtualPad& pad) {
        pad.Buttons(below(0x10000) & 0xF3FFu, below(2) == 0);
        pad.LeftStick(stick(), stick());
        pad.RightStick(stick(), stick());
        pad.Triggers(static_cast<int>(below(256)), static_cast<int>(below(256)));
    }

    std::mt19937 mDice;
    std::optional<VornPlatform::VirtualPad> mPad;
    int mFrame = 0, mAway = -60;
    int mLosses = 0, mFocus = 0, mPlugs = 0, mScreens = 0, mCloses = 0;
};

} // namespace

void Soak(int frames, unsigned int seed) {
    constexpr int stretch = 10000, look = 100;
    VornPlatform::UseAudioLoopback(Rate);
    Fate fate(seed);
    Pilot pilot(seed);
    auto game = std::make_unique<Game>(Width, Height, ScratchScore());
    int scenes = 0, games = 1;
    std::map<std::string, Footprint> first, now; // by the scene
    for (int frame = 0; frame < frames; ++frame) {
        HoldFrame(frame);
        pilot.Flail(Width, Height);
        fate.Strike(*game);
        FetchMessages();
        if (!game->Running()) { // closed, or Escape on the title: begin again, as a player would
            game.reset();
            game = std::make_unique<Game>(Width, Height, ScratchScore());
            ++games;
        }
        const Vorn::Scene* scene = game->Scene();
        game->Update();
        game->Draw();
        Vorn::Graphic::Instance()->Present();
        VornPlatform::RenderAudio(Rate / FramesPerSecond);
        scenes += game->Scene() != scene;
        game->log.clear();

        if (frame % look == look - 1)
            now[game->Scene()->Path()].Look();
        if (frame % stretch == stretch - 1) {
            std::printf("frame %d: %d changes of scene, %d games so far\n", frame + 1, scenes,
                        games);
            for (const auto& [name, held] : now) {
                held.Print(name);
                if (frame >= stretch && held.HasGrown(first.try_emplace(name, held).first->second))
                    throw std::runtime_error("memory grows in " + name);
            }
            std::fflush(stdout);
            now.clear();
        }
    }
    fate.Print();
    game.reset();
    VornPlatform::ReleaseClock();
    std::filesystem::remove(ScratchScore());
}

} // namespace Lantern
