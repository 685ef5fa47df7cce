// SPDX-License-Identifier: MIT
#include "vorn/render/graphics_system.hpp"

#include "vorn/render/graphics_cmpt.hpp"

namespace Vorn {

void GraphicsSystem::Init() {
    for (GraphicsCmpt* cmpt : mCmpts.Cmpts())
        cmpt->Init();
}

void GraphicsSystem::Update(float) {
    ClearLine();
}

void GraphicsSystem::Deinit() {
    for (GraphicsCmpt* cmpt : mCmpts.Cmpts())
        cmpt->Deinit();
}

void GraphicsSystem::Register(GraphicsCmpt* cmpt) {
    mCmpts.Add(cmpt);
}

void GraphicsSystem::Unregister(GraphicsCmpt* cmpt) {
    mCmpts.RemoveFirst(cmpt);
}

} // namespace Vorn
