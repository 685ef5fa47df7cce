// SPDX-License-Identifier: MIT
//
// Draws the components that are registered, in the order in which they came, and the debug lines of
// the frame.
//
//   graphic->BeginScene();
//   GraphicsSystem::Instance()->BeamEffects(dt);    // skinned and unlit ones, and the lines
//   GraphicsSystem::Instance()->Update(dt);         // lit ones, and the lines, which are gone then
//   graphic->EndScene();
//
// Both passes draw into the target that is current, with the device's view and projection, and only
// the components of living entities. They set their own states of depth and blending and leave
// blending on, by alpha. What Graphic::SetTransparent has set stays, alpha test and no culling.
// Nothing is sorted, merged or left out by its place.
#pragma once

#include "vorn/core/api.hpp"
#include "vorn/render/fwd.hpp"
#include "vorn/render/line.hpp"
#include "vorn/scene/cmpt_list.hpp"
#include "vorn/scene/system.hpp"

#include <list>
#include <vector>

namespace Vorn {

class VORN_API GraphicsSystem : public System<GraphicsSystem, GraphicsCmpt> {
public:
    void Init() override;
    /// The lit pass: the components without Distortion, skinned ones too, whose bones and clock
    /// rest then. Advances the ramps of their materials by `dt` (unit: seconds). Empties the lines.
    void Update(float dt) override;
    /// The components with Distortion: skinned ones with their bones, which DeltaClock moves on,
    /// and the others unlit, with their ramps advanced by `dt`. Leaves the lines.
    void BeamEffects(float dt);
    void Deinit() override;
    void Register(GraphicsCmpt* cmpt) override;
    /// Erases the first entry of the component; another one stays.
    void Unregister(GraphicsCmpt* cmpt) override;
    /// A list that neither pass reads.
    void RegisterAlpha(GraphicsCmpt* cmpt) { mAlphaCmpts.push_back(cmpt); }
    /// Erases the first entry of the component.
    void UnregisterAlpha(GraphicsCmpt* cmpt);

    void AddLine(const Vector3& a, const Vector3& b, const COLORS& c) {
        mLines.emplace_back(a, b, c);
    }
    /// A copy.
    std::vector<Line> LineContainer() const { return mLines; }
    void ClearLine() { mLines.clear(); }

private:
    void beginPass() const;
    void drawLit(GraphicsCmpt& cmpt, float dt) const;
    void drawBeam(GraphicsCmpt& cmpt, float dt) const;

    CmptList<GraphicsCmpt> mCmpts;
    std::list<GraphicsCmpt*> mAlphaCmpts;
    std::vector<Line> mLines;
};

template <>
VORN_API GraphicsSystem Singleton<GraphicsSystem>::mSingleton;

} // namespace Vorn
