// SPDX-License-Identifier: MIT
//
// Effects and music under keys and pad, heard live or in a file: see README.md beside this file.
#include "platform/control/vorn_platform.hpp"
#include "samples/support.hpp"

#include <XInput.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <fstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

constexpr unsigned int Width = 800, Height = 600;
constexpr D3DCOLOR Night = D3DCOLOR_XRGB(22, 28, 44);
constexpr unsigned int TextColor = D3DCOLOR_XRGB(226, 226, 214);
constexpr auto LitColor = static_cast<Vorn::COLORS>(D3DCOLOR_XRGB(242, 186, 73));
constexpr auto DarkColor = static_cast<Vorn::COLORS>(D3DCOLOR_XRGB(58, 68, 96));

// As data/pack/sound.json lists them: the first music is 1, the effects are 11 and on.
constexpr auto Tune = Vorn::SoundType(1);
constexpr std::array Effects = {"bell", "pluck", "step", "whoosh", "drop"};
constexpr auto Step = Vorn::SoundType(13);

constexpr std::pair<unsigned int, char> PadKeys[] = {
    {XINPUT_GAMEPAD_A, '1'},          {XINPUT_GAMEPAD_B, '2'},
    {XINPUT_GAMEPAD_X, '3'},          {XINPUT_GAMEPAD_Y, '4'},
    {XINPUT_GAMEPAD_DPAD_DOWN, '5'},  {XINPUT_GAMEPAD_START, 'P'},
    {XINPUT_GAMEPAD_BACK, 'M'},       {XINPUT_GAMEPAD_DPAD_UP, 'L'},
    {XINPUT_GAMEPAD_DPAD_LEFT, 'V'},  {XINPUT_GAMEPAD_DPAD_RIGHT, 'B'},
    {XINPUT_GAMEPAD_LEFT_THUMB, 'X'},
};
constexpr char Keys[] = "12345MPVBLX";

class Player {
public:
    Player() : mGraphics(*Vorn::Graphic::Instance()) {
        Vorn::Engine::Instance()->Init("Vorn: sound", Width, Height, false);
    }
    Player(const Player&) = delete;
    Player& operator=(const Player&) = delete;
    ~Player() {
        mSound.Free();
        Vorn::RscPackManager::Instance()->Free();
        Vorn::Engine::Instance()->Free();
    }

    void Load() {
        auto& pack = *Vorn::RscPackManager::Instance()->LoadRscPack("data/pack/sound.json");
        pack.InitLoad();
        while (!pack.Load(nullptr)) {
        }
        mSound.BgmVolume(0.75f);
    }

    void Press(char key) {
        switch (key) {
        case 'M':
            mMusic = !mMusic;
            mMusic ? static_cast<void>(mSound.PlayBgm(Tune)) : mSound.StopBgm();
            break;
        case 'P':
            mSound.PauseBgm(!mSound.PauseBgm());
            break;
        case 'V':
            mSound.BgmVolume(Quieter(mSound.BgmVolume()));
            break;
        case 'B':
            mSound.SfxVolume(Quieter(mSound.SfxVolume()));
            break;
        case 'L':
            mWalks = !mWalks;
            mWalks ? play(Step, true) : mSound.StopSfx(Step);
            break;
        case 'X':
            mMuted = !mMuted;
            mute();
            break;
        default:
            play(Vorn::SoundType(11 + key - '1'), false);
        }
    }

    /// Once a frame.
    void Update(float dt) {
        // With the focus the engine has taken both switches off, whatever the player had set.
        const bool active = Vorn::Engine::Instance()->IsActive();
        if (active && !std::exchange(mActive, active))
            mute();
        mActive = active;
        mSound.Update(dt);
        mWalks = mWalks && Plays(2);
    }

    /// Of the n-th effect.
    bool Plays(std::size_t n) const {
        bool plays = false;
        return mChannels[n] && mChannels[n]->isPlaying(&plays) == FMOD_OK && plays;
    }

    std::string State() const {
        char text[160];
        std::snprintf(text, sizeof text, "music %s at %.2f, effects at %.2f%s%s",
                      !mMusic             ? "off"
                      : mSound.PauseBgm() ? "paused"
                                          : "on",
                      static_cast<double>(mSound.BgmVolume()),
                      static_cast<double>(mSound.SfxVolume()), mWalks ? ", walking" : "",
                      mMuted ? ", muted" : "");
        return text;
    }

    void Draw() {
        mGraphics.SetBackBufferColor(Night);
        mGraphics.BeginScene();
        mGraphics.RenderText(40, 34, TextColor, "Keys and sounds");
        for (std::size_t n = 0; n < Effects.size(); ++n) {
            const int y = 96 + 44 * static_cast<int>(n);
            bar(y + 10, 40, 76, Plays(n) ? LitColor : DarkColor);
            mGraphics.RenderText(96, y, TextColor, std::to_string(n + 1).c_str());
            mGraphics.RenderText(130, y, TextColor, Effects[n]);
        }
        const bool music = mMusic && !mSound.PauseBgm() && !mMuted;
        level(330, "V  music", mSound.BgmVolume(), music);
        level(374, "B  effects", mSound.SfxVolume(), !mMuted);
        mGraphics.RenderText(40, 452, TextColor, State().c_str());
        mGraphics.RenderText(40, 530, TextColor,
                             "M music   P pause   L walk   X mute   Escape ends");
        mGraphics.EndScene();
    }

private:
    static float Quieter(float volume) { return volume > 0.0f ? volume - 0.25f : 1.0f; }

    void play(Vorn::SoundType type, bool loop) {
        if (FMOD::Channel* const channel = mSound.PlaySfx(type, loop))
            mChannels[static_cast<std::size_t>(type - 11)] = channel;
    }
    void mute() {
        mSound.MuteBgm(mMuted);
        mSound.MuteSfx(mMuted);
    }
    void bar(int y, int left, int right, Vorn::COLORS color) {
        const auto at = [y](int x) {
            return Vorn::Point2(static_cast<float>(x), static_cast<float>(y));
        };
        const Vorn::Point2 line[] = {at(left), at(right), at(right)}; // the last is left out
        mGraphics.Draw2DLine(line, 3, color, 16.0f);
    }
    void level(int y, const char* name, float volume, bool heard) {
        mGraphics.RenderText(40, y, TextColor, name);
        bar(y + 10, 220, 620, DarkColor);
        if (volume > 0.0f)
            bar(y + 10, 220, 220 + static_cast<int>(400.0f * volume), heard ? LitColor : DarkColor);
    }

    Vorn::Graphic& mGraphics;
    Vorn::SoundManager& mSound = *Vorn::SoundManager::Instance();
    std::array<FMOD::Channel*, Effects.size()> mChannels{};
    bool mMusic = false, mWalks = false, mMuted = false, mActive = false;
};

void Show(Player& player) {
    auto& input = *Vorn::InputManager::Instance();
    Samples::Loop([&](float dt) {
        for (const char key : std::string_view(Keys))
            if (input.IsKeyTriggered(Vorn::CONTROL_KEYBOARD, static_cast<unsigned char>(key)))
                player.Press(key);
        for (const auto& [button, key] : PadKeys)
            if (input.IsKeyTriggered(Vorn::CONTROL_PAD1, button))
                player.Press(key);
        player.Update(dt);
        player.Draw();
    });
}

constexpr unsigned int Rate = 48'000, FramesPerSecond = 60; // of the performance

/// The keys of the performance. The tune has 128 beats a minute, and begins with beat 8.
struct Note {
    double beat;
    char key;
};
constexpr Note Performance[] = {
    {0, '1'},  {2, '2'},  {3, '2'},    {4, '5'},  {4.5, '5'}, {5.5, '4'}, {8, 'M'},
    {16, 'L'}, {20, '1'}, {22, '5'},   {24, 'V'}, {26, 'V'},  {28, 'V'},  {28, 'B'},
    {29, '2'}, {30, '2'}, {31, '2'},   {32, 'V'}, {33, 'V'},  {34, 'V'},  {36, 'L'},
    {37, 'X'}, {38, '1'}, {39.5, 'X'}, {40, '1'}, {44, 'P'},  {45, '5'},  {46, 'P'},
    {48, '2'}, {49, '2'}, {50, '4'},   {54, 'M'}, {54, '1'},
};

/// What would be heard, by simulated time: left and right by turns.
std::vector<float> Play(Player& player) {
    std::vector<float> heard;
    std::size_t next = 0;
    constexpr unsigned int frames = 28 * FramesPerSecond;
    for (unsigned int frame = 0; frame < frames; ++frame) {
        const double seconds = static_cast<double>(frame) / FramesPerSecond;
        std::string pressed;
        for (; next < std::size(Performance) && Performance[next].beat * 60 / 128 <= seconds;
             ++next) {
            player.Press(Performance[next].key);
            pressed += Performance[next].key;
        }
        player.Update(1.0f / FramesPerSecond);
        if (!pressed.empty()) {
            std::printf("second %6.3f: key %s, %s\n", seconds, pressed.c_str(),
                        player.State().c_str());
            player.Draw();
        }
        const auto samples = VornPlatform::RenderAudio(Rate / FramesPerSecond);
        heard.insert(heard.end(), samples.begin(), samples.end());
    }
    return heard;
}

/// 16 bits.
void Save(const std::string& path, const std::vector<float>& heard) {
    std::ofstream file(path, std::ios::binary);
    const auto write = [&file](std::uint32_t value, int bytes) {
        for (; bytes > 0; --bytes, value >>= 8)
            file.put(static_cast<char>(value & 0xff));
    };
    const auto size = static_cast<std::uint32_t>(heard.size() * 2);
    file << "RIFF", write(36 + size, 4), file << "WAVEfmt ", write(16, 4);
    write(1, 2), write(2, 2), write(Rate, 4), write(Rate * 4, 4), write(4, 2), write(16, 2);
    file << "data", write(size, 4);
    for (const float sample : heard)
        write(static_cast<std::uint32_t>(std::lround(std::clamp(sample, -1.0f, 1.0f) * 32'767)), 2);
    if (!file.flush())
        throw std::runtime_error("cannot write " + path);
    std::printf("wrote %s\n", path.c_str());
}

} // namespace

int main(int argc, char** argv) {
    if (argc > 2) {
        std::fprintf(stderr, "05-sound [FILE.wav]\n");
        return 2;
    }
    try {
        Player player; // its window tells whether somebody is there; sound comes up with Load
        if (argc == 1 && VornPlatform::HasDisplay() && VornPlatform::HasAudio()) {
            player.Load();
            Show(player);
            return 0;
        }
        VornPlatform::UseAudioLoopback(Rate);
        player.Load();
        Save(argc > 1 ? argv[1] : Samples::InTemporaryFolder("vorn-05-sound.wav"), Play(player));
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "05-sound: %s\n", error.what());
        return 1;
    }
}
