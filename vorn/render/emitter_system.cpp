// SPDX-License-Identifier: MIT
#include "vorn/render/emitter_system.hpp"

#include "vorn/render/emitter_cmpt.hpp"
#include "vorn/render/graphics_2d_system.hpp"

namespace Vorn {

void EmitterSystem::Init() {
    for (EmitterCmpt* cmpt : mCmpts.Cmpts())
        cmpt->Init();
    Graphics2DSystem::Instance()->EmitterList(&mCmpts.Cmpts());
}

void EmitterSystem::Update(float dt) {
    for (EmitterCmpt* cmpt : mCmpts.Cmpts()) {
        cmpt->Emit(dt);
        cmpt->Update(dt);
    }
}

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
