// SPDX-License-Identifier: MIT
#pragma once

#include "vorn/core/api.hpp"
#include "vorn/physics/fwd.hpp"
#include "vorn/scene/cmpt_list.hpp"
#include "vorn/scene/system.hpp"

namespace Vorn {

/// Holds the bodies.
class VORN_API PhysicsSystem : public System<PhysicsSystem, PhysicsCmpt> {
public:
    void Init() override;
    /// Moves nothing yet.
    void Update(float dt) override;
    void Deinit() override;
    void Register(PhysicsCmpt* cmpt) override;
    /// Erases every entry of the component.
    void Unregister(PhysicsCmpt* cmpt) override;

private:
    CmptList<PhysicsCmpt> mCmpts;
};

template <>
VORN_API PhysicsSystem Singleton<PhysicsSystem>::mSingleton;

} // namespace Vorn
