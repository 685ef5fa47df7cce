// SPDX-License-Identifier: MIT
#pragma once

#include "vorn/core/api.hpp"
#include "vorn/render/fwd.hpp"
#include "vorn/scene/cmpt_list.hpp"
#include "vorn/scene/system.hpp"

namespace Vorn {

/// Steps the emitters, in the order in which they came. Graphics2DSystem draws what they give off.
class VORN_API EmitterSystem : public System<EmitterSystem, EmitterCmpt> {
public:
    /// Hands its list to Graphics2DSystem when all are ready.
    void Init() override;
    /// Each emitter in turn emits and then moves its particles (unit: seconds).
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
