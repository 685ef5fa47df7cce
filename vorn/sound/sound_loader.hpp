// SPDX-License-Identifier: MIT
#pragma once

#include "vorn/core/api.hpp"
#include "vorn/core/singleton.hpp"
#include "vorn/resource/rsc_manager.hpp"

namespace FMOD {
class Sound;
}

namespace Vorn {

/// The number that a sound is played by: 0 is none, 1 to 10 are music, 11 to 33 are effects.
enum SoundType : int {};

struct Sound {
    SoundType mType{};
    FMOD::Sound* mSound = nullptr;

    Sound() = default;
    Sound(SoundType type, FMOD::Sound* sound = nullptr) : mType(type), mSound(sound) {}
};

/// The sounds of "data/audio/", as a pack lists them. The store's own map stays empty: Get raises
/// for every name.
/// So far nothing sounds: there is no sound system yet, and names are passed over.
class VORN_API SoundLoader : public RscManager<Sound>, public Singleton<SoundLoader> {
public:
    void Load(const std::string& name) override;
    void Unload(const std::string& name) override;
    /// Nothing: sounds are not the device's.
    void Reload() override;
    void Release() override;
};

template <>
VORN_API SoundLoader Singleton<SoundLoader>::mSingleton;

} // namespace Vorn
