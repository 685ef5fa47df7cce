// SPDX-License-Identifier: MIT
#pragma once

#include "vorn/core/api.hpp"
#include "vorn/core/singleton.hpp"
#include "vorn/resource/rsc_manager.hpp"
#include "vorn/sound/sound_manager.hpp"

namespace Vorn {

/// The sounds of "data/audio/", as a pack lists them: "bell.ogg", "meadow.ogg bgm". The store's own
/// map stays empty: Get raises for every name.
class VORN_API SoundLoader : public RscManager<Sound>, public Singleton<SoundLoader> {
public:
    /// Each time a new sound with a number of its own: SoundManager::CreateSound.
    void Load(const std::string& name) override;
    /// Raises std::out_of_range for a name that was never loaded: SoundManager::ReleaseSound.
    void Unload(const std::string& name) override;
    /// Nothing: sounds are not the device's.
    void Reload() override;
    void Release() override;
};

template <>
VORN_API SoundLoader Singleton<SoundLoader>::mSingleton;

} // namespace Vorn
