// SPDX-License-Identifier: MIT
#pragma once

#include "vorn/core/api.hpp"
#include "vorn/render/fwd.hpp"
#include "vorn/scene/cmpt_list.hpp"
#include "vorn/scene/system.hpp"

namespace Vorn {

/// Holds the emitters.
class VORN_API EmitterSystem : public System<EmitterSystem, EmitterCmpt> {
public:
    void Init() override;
    /// Emits nothing yet.
    void Update(float dt) override;
    void Deinit() override;
    void Register(EmitterCmpt* cmpt) override;
    /// Erases the first entry of the component; another one stays.
    void Unregister(EmitterCmpt* cmpt) override;

private:
    CmptList<EmitterCmpt> mCmpts;
};

template <>
VORN_API EmitterSystem Singleton<EmitterSystem>::mSingleton;

} // namespace Vorn
