// SPDX-License-Identifier: MIT
#pragma once

#include "vorn/core/api.hpp"
#include "vorn/render/fwd.hpp"
#include "vorn/scene/cmpt_list.hpp"
#include "vorn/scene/system.hpp"

namespace Vorn {

/// Holds the components that are drawn.
class VORN_API GraphicsSystem : public System<GraphicsSystem, GraphicsCmpt> {
public:
    void Init() override;
    /// Draws nothing yet.
    void Update(float dt) override;
    void Deinit() override;
    void Register(GraphicsCmpt* cmpt) override;
    /// Erases the first entry of the component; another one stays.
    void Unregister(GraphicsCmpt* cmpt) override;

private:
    CmptList<GraphicsCmpt> mCmpts;
};

template <>
VORN_API GraphicsSystem Singleton<GraphicsSystem>::mSingleton;

} // namespace Vorn
