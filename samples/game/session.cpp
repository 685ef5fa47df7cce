// SPDX-License-Identifier: MIT
#include "samples/game/session.hpp"

#include "samples/game/game.hpp"
#include "samples/game/pilot.hpp"
#include "samples/game/sheet.hpp"

#include "platform/control/vorn_platform.hpp"

#include <cstdio>
#include <cstring>
#include <fstream>
#include <stdexcept>
#include <unistd.h>

namespace Lantern {

namespace {

constexpr int Rate = 44100;

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

std::string StateLine(std::uint64_t hash) {
    char line[32];
    std::snprintf(line, sizeof line, "state %016llx", static_cast<unsigned long long>(hash));
    return line;
}

/// In each drawn frame the profiler counts on to the next in which it asks the clock, and for what
/// a recording has no answer the machine's clock goes on. So all frames are drawn, or none.
bool AsksClock() {
    return Vorn::Profiler::Instance()->GetDebugOn();
}

std::string FilmPath(const std::string& folder, int number) {
    char name[32];
    std::snprintf(name, sizeof name, "/film%03d.png", number);
    return folder + name;
}

} // namespace

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

void HoldFrame(int frame) {
    VornPlatform::HoldClock(VornPlatform::ClockFrequency * (15 * FramesPerSecond + frame) /
                            FramesPerSecond);
}

void RecordSession(const std::string& file, int frames, unsigned int seed) {
    VornPlatform::UseAudioLoopback(Rate);
    HoldFrame(0);
    VornPlatform::RecordInput(file);
    {
        Game game(800, 600, ScratchScore());
        Pilot pilot(seed);
        for (int frame = 0; frame < frames && game.Running(); ++frame) {
            HoldFrame(frame);
            pilot.Fly(game);
            FetchMessages();
            game.Update();
            if (AsksClock())
                game.Draw();
            for (const std::string& line : game.log)
                std::printf("frame %d: %s\n", frame, line.c_str());
            game.log.clear();
        }
        std::printf("%s\n", StateLine(game.Hash()).c_str());
    }
    VornPlatform::StopInput();
    VornPlatform::ReleaseClock();
    std::filesystem::remove(ScratchScore());
}

unsigned long long PlaySession(const std::string& file, const std::string& folder, Film film) {
    constexpr int sheetEach = 150, filmEach = 3;
    VornPlatform::UseAudioLoopback(Rate);
    VornPlatform::PlayInput(file);
    const bool keeps = !folder.empty();
    if (keeps)
        std::filesystem::create_directories(folder);
    std::vector<float> heard;
    std::uint64_t hash = 0;
    std::string happened;
    {
        Game game(800, 600, ScratchScore());
        Sheet sheet(4, 320, 240);
        for (int frame = 0; game.Running(); ++frame) {
            FetchMessages();
            if (!VornPlatform::IsPlayingInput())
                break;
            game.Update();
            const bool inSheet = frame % sheetEach == 100;
            const bool inFilm =
                frame >= film.first && frame < film.last && (frame - film.first) % filmEach == 0;
            if (keeps && (inSheet || inFilm || AsksClock())) {
                game.Draw();
                if (inSheet)
                    sheet.Add();
                if (inFilm)
                    SavePicture(FilmPath(folder, (frame - film.first) / filmEach));
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
    const std::string line = StateLine(hash);
    if (keeps) {
        WriteWav(folder + "/heard.wav", heard);
        std::ofstream(folder + "/log.txt") << happened << line << "\n";
        for (const char* name : {"sheet.png", "heard.wav", "log.txt"})
            std::printf("wrote %s/%s\n", folder.c_str(), name);
    }
    std::printf("%s\n", line.c_str());
    return hash;
}

} // namespace Lantern
