// SPDX-License-Identifier: MIT
//
// The switches of sound.
//
//   Vorn::SoundManager::Instance()->MuteBgm(true);
//
// A muted music goes on without being heard; a muted effect is not started at all, and those that
// play go on. The engine sets both switches when the window loses the focus and clears both when it
// has it again, whatever the game had set; a game that offers them to the player sets them anew
// when Engine::isActive comes back. Nothing plays yet: so far the switches are kept and read.
#pragma once

#include "vorn/core/api.hpp"
#include "vorn/core/singleton.hpp"

namespace Vorn {

class VORN_API SoundManager : public Singleton<SoundManager> {
public:
    void MuteBgm(bool mute) { mMuteBgm = mute; }
    bool MuteBgm() const { return mMuteBgm; }
    void MuteSfx(bool mute) { mMuteSfx = mute; }
    bool MuteSfx() const { return mMuteSfx; }

private:
    bool mMuteSfx = false;
    bool mMuteBgm = false;
};

template <>
VORN_API SoundManager Singleton<SoundManager>::mSingleton;

} // namespace Vorn
