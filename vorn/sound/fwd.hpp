// SPDX-License-Identifier: MIT
#pragma once

namespace Vorn {

class SoundManager;

} // namespace Vorn
