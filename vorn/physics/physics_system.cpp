// SPDX-License-Identifier: MIT
#include "vorn/physics/physics_system.hpp"

#include "vorn/physics/physics_cmpt.hpp"

namespace Vorn {

void PhysicsSystem::Init() {
    for (PhysicsCmpt* cmpt : mCmpts.Cmpts())
        cmpt->Init();
}

void PhysicsSystem::Update(float) {}

void PhysicsSystem::Deinit() {
    for (PhysicsCmpt* cmpt : mCmpts.Cmpts())
        cmpt->Deinit();
}

void PhysicsSystem::Register(PhysicsCmpt* cmpt) {
    mCmpts.Add(cmpt);
}

void PhysicsSystem::Unregister(PhysicsCmpt* cmpt) {
    mCmpts.RemoveAll(cmpt);
}

} // namespace Vorn
