// SPDX-License-Identifier: MIT
#pragma once

namespace Vorn {

class SoundLoader;
class SoundManager;
struct Sound;

} // namespace Vorn
