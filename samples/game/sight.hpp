// SPDX-License-Identifier: MIT
#pragma once

#include "vorn/vorn.hpp"

#include <map>
#include <utility>
#include <vector>

namespace Lantern {

/// Leaves out of the drawing what the camera cannot see, for as long as it lives: the engine draws
/// all that is registered, and most of the field lies out of the picture. What has no mesh is not
/// drawn.
class InSight {
public:
    /// How far a mesh reaches from its middle; found when it is first seen.
    using Radii = std::map<const Vorn::Mesh*, float>;

    InSight(const Vorn::Scene& scene, const Vorn::Camera& camera, Radii& radii);
    InSight(const InSight&) = delete;
    InSight& operator=(const InSight&) = delete;
    ~InSight();

private:
    std::vector<std::pair<Vorn::GraphicsCmpt*, Vorn::Mesh*>> mHidden;
};

} // namespace Lantern
