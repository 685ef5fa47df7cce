// SPDX-License-Identifier: MIT
#include "vorn/sound/sound_loader.hpp"

namespace Vorn {

namespace {

constexpr const char* Directory = "data/audio/";

} // namespace

void SoundLoader::Load(const std::string& name) {
    SoundManager::Instance()->CreateSound(Directory + name);
}

void SoundLoader::Unload(const std::string& name) {
    SoundManager::Instance()->ReleaseSound(Directory + name);
}

void SoundLoader::Reload() {}

void SoundLoader::Release() {}

} // namespace Vorn
