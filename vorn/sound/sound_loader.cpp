// SPDX-License-Identifier: MIT
#include "vorn/sound/sound_loader.hpp"

namespace Vorn {

void SoundLoader::Load(const std::string& /*name*/) {}

void SoundLoader::Unload(const std::string& /*name*/) {}

void SoundLoader::Reload() {}

void SoundLoader::Release() {}

} // namespace Vorn
