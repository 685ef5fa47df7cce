// SPDX-License-Identifier: MIT
#include "vorn/render/emitter_system.hpp"

#include "vorn/render/emitter_cmpt.hpp"

namespace Vorn {

void EmitterSystem::Init() {
    for (EmitterCmpt* cmpt : mCmpts.Cmpts())
        cmpt->Init();
}

void EmitterSystem::Update(float) {}

void EmitterSystem::Deinit() {
    for (EmitterCmpt* cmpt : mCmpts.Cmpts())
        cmpt->Deinit();
}

void EmitterSystem::Register(EmitterCmpt* cmpt) {
    mCmpts.Add(cmpt);
}

void EmitterSystem::Unregister(EmitterCmpt* cmpt) {
    mCmpts.RemoveFirst(cmpt);
}

} // namespace Vorn
