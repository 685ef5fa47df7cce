// SPDX-License-Identifier: MIT
#pragma once

#include "vorn/core/api.hpp"
#include "vorn/render/fwd.hpp"
#include "vorn/render/line.hpp"
#include "vorn/scene/cmpt_list.hpp"
#include "vorn/scene/system.hpp"

#include <vector>

namespace Vorn {

/// Holds the components that are drawn, and the debug lines of the frame.
class VORN_API GraphicsSystem : public System<GraphicsSystem, GraphicsCmpt> {
public:
    void Init() override;
    /// Draws nothing yet. Empties the lines.
    void Update(float dt) override;
    void Deinit() override;
    void Register(GraphicsCmpt* cmpt) override;
    /// Erases the first entry of the component; another one stays.
    void Unregister(GraphicsCmpt* cmpt) override;

    void AddLine(const Vector3& a, const Vector3& b, const COLORS& c) {
        mLines.emplace_back(a, b, c);
    }
    /// A copy.
    std::vector<Line> LineContainer() const { return mLines; }
    void ClearLine() { mLines.clear(); }

private:
    CmptList<GraphicsCmpt> mCmpts;
    std::vector<Line> mLines;
};

template <>
VORN_API GraphicsSystem Singleton<GraphicsSystem>::mSingleton;

} // namespace Vorn
