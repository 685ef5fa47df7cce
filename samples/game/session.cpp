// SPDX-License-Identifier: MIT
#include "samples/game/session.hpp"

#include "samples/game/game.hpp"
#include "samples/game/pilot.hpp"
#include "samples/game/sheet.hpp"

#include "platform/control/vorn_platform.hpp"

#include <cstdio>
#include <cstring>
#include <fstream>
#include <memory>
#include <optional>
#include <random>
#include <stdexcept>
#include <unistd.h>

namespace Lantern {

namespace {

constexpr int FramesPerSecond = 60, Rate = 44100;

/// Kept apart from the player's own, and gone with the run.
std::filesystem::path ScratchScore() {
    return std::filesystem::temp_directory_path() /
           ("vorn-lantern-" + std::to_string(getpid()) + "-best");
}

void FetchMessages() {
    for (MSG message; PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE);) {
        TranslateMessage(&message);
        DispatchMessageA(&message);
    }
}

// The counter stands where frame `frame` begins.
void HoldFrame(int frame) {
    VornPlatform::HoldClock(VornPlatform::ClockFrequency * (15 * FramesPerSecond + frame) /
                            FramesPerSecond);
}

void WriteWav(const std::string& path, const std::vector<float>& samples) {
    std::ofstream file(path, std::ios::binary);
    const auto number = [&file](std::uint32_t value, std::streamsize size) {
        char bytes[4];
        std::memcpy(bytes, &value, sizeof bytes);
        file.write(bytes, size);
    };
    const auto size = static_cast<std::uint32_t>(samples.size() * 2);
    file << "RIFF";
    number(36 + size, 4);
    file << "WAVEfmt ";
    number(16, 4), number(1, 2), number(2, 2), number(Rate, 4), number(Rate * 4, 4);
    number(4, 2), number(16, 2);
    file << "data";
    number(size, 4);
    for (const float sample : samples) {
        const float loud = Vorn::fclamp(sample, -1.0f, 1.0f) * 32767.0f;
        number(static_cast<std::uint16_t>(static_cast<std::int16_t>(loud)), 2);
    }
    if (!file)
        throw std::runtime_error("cannot write " + path);
}

std::size_t ResidentKiB() {
    std::ifstream file("/proc/self/statm");
    std::size_t all = 0, resident = 0;
    file >> all >> resident;
    return resident * static_cast<std::size_t>(sysconf(_SC_PAGESIZE)) / 1024;
}

} // namespace

void RecordSession(const std::string& file, int frames) {
    VornPlatform::UseAudioLoopback(Rate);
    HoldFrame(0);
    VornPlatform::RecordInput(file);
    {
        Game game(800, 600, ScratchScore());
        Pilot pilot(1);
        for (int frame = 0; frame < frames && game.Running(); ++frame) {
            HoldFrame(frame);
            pilot.Fly(game);
            FetchMessages();
            game.Update();
        }
        for (const std::string& line : game.log)
            std::printf("%s\n", line.c_str());
    }
    VornPlatform::StopInput();
    VornPlatform::ReleaseClock();
    std::filesystem::remove(ScratchScore());
}

unsigned long long PlaySession(const std::string& file, const std::string& folder) {
    constexpr int pictureEach = 150;
    VornPlatform::UseAudioLoopback(Rate);
    VornPlatform::PlayInput(file);
    const bool keeps = !folder.empty();
    if (keeps)
        std::filesystem::create_directories(folder);
    std::vector<float> heard;
    std::uint64_t hash = 0;
    std::string happened;
    std::size_t most = 0;
    {
        Game game(800, 600, ScratchScore());
        Sheet sheet(4, 320, 240);
        for (int frame = 0; game.Running(); ++frame) {
            FetchMessages();
            if (!VornPlatform::IsPlayingInput())
                break;
            game.Update();
            if (keeps && frame % pictureEach == pictureEach - 1) {
                game.Draw();
                sheet.Add();
                // The fullest of them also by itself.
                if (const std::size_t count = game.Scene()->EntityList().size(); count > most) {
                    most = count;
                    SavePicture(folder + "/picture.png");
                }
                Vorn::Graphic::Instance()->Present();
            }
            if (keeps) {
                const auto now = VornPlatform::RenderAudio(Rate / FramesPerSecond);
                heard.insert(heard.end(), now.begin(), now.end());
            }
            for (const std::string& line : game.log)
                happened += "frame " + std::to_string(frame) + ": " + line + "\n";
            game.log.clear();
            hash = game.Hash();
        }
        if (keeps)
            sheet.Save(folder + "/sheet.png");
    }
    VornPlatform::StopInput();
    std::filesystem::remove(ScratchScore());
    char line[32];
    std::snprintf(line, sizeof line, "state %016llx", static_cast<unsigned long long>(hash));
    if (keeps) {
        WriteWav(folder + "/heard.wav", heard);
        std::ofstream(folder + "/log.txt") << happened << line << "\n";
        for (const char* name : {"sheet.png", "picture.png", "heard.wav", "log.txt"})
            std::printf("wrote %s/%s\n", folder.c_str(), name);
    }
    std::printf("%s\n", line);
    return hash;
}

void Soak(int frames, unsigned int seed) {
    constexpr unsigned int width = 160, height = 120;
    constexpr int settled = 10000;
    VornPlatform::UseAudioLoopback(8000);
    std::mt19937 dice(seed);
    Pilot pilot(seed);
    std::optional<VornPlatform::VirtualPad> pad;
    auto game = std::make_unique<Game>(width, height, ScratchScore());
    std::size_t before = 0;
    for (int frame = 0; frame < frames; ++frame) {
        HoldFrame(frame);
        pilot.Flail(width, height);
        const unsigned int fate = static_cast<unsigned int>(dice() % 4000);
        if (fate == 0) {
            VornPlatform::LoseDevice();
            VornPlatform::RestoreDevice();
        } else if (fate < 4)
            VornPlatform::SendFocus(fate % 2 != 0);
        else if (fate < 8)
            pad ? pad.reset() : static_cast<void>(pad.emplace());
        else if (fate < 40 && pad) {
            pad->Buttons(static_cast<unsigned int>(dice() & 0xF3FFu), fate % 2 != 0);
            pad->LeftStick(static_cast<int>(dice() % 65535) - 32767,
                           static_cast<int>(dice() % 65535) - 32767);
        }
        if (frame % 500 == 499)
            VornPlatform::SendFocus(true);
        FetchMessages();
        if (!game->Running()) { // Escape on the title: start again, as a player would
            game.reset();
            Vorn::Engine::isShutdown = false;
            game = std::make_unique<Game>(width, height, ScratchScore());
        }
        game->Update();
        game->Draw();
        Vorn::Graphic::Instance()->Present();
        VornPlatform::RenderAudio(8000 / FramesPerSecond);
        for (const std::string& line : game->log)
            std::printf("frame %d: %s\n", frame, line.c_str());
        game->log.clear();
        if (frame == settled)
            before = ResidentKiB();
        if (frame % 5000 == 0)
            std::printf("frame %d: %zu KiB\n", frame, ResidentKiB());
    }
    const std::size_t after = ResidentKiB();
    game.reset();
    VornPlatform::ReleaseClock();
    std::filesystem::remove(ScratchScore());
    std::printf("memory at frame %d: %zu KiB, at the end: %zu KiB\n", settled, before, after);
    if (before && after > before + before / 20)
        throw std::runtime_error("memory grows");
}

} // namespace Lantern
