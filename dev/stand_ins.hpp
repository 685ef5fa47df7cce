// SPDX-License-Identifier: MIT
//
// What is seen in place of what cannot be loaded: a chequered texture in magenta, a box with its
// edges in magenta.
#pragma once

#include "vorn/math/fwd.hpp"
#include "vorn/resource/fwd.hpp"
#include "vorn/scene/fwd.hpp"

#include <map>

namespace Vorn::Dev {

class Messages;

class StandIns {
public:
    /// Once a frame: looks through the stores for slots and meshes that are empty, fills them, and
    /// tells of them; draws the edges of boxes in the current scene.
    void Update(Messages& messages);

private:
    void drawEdges(Entity& entity) const;

    // The box's vertices, by which it is told from what came in its place.
    std::map<const Mesh*, const Vertex_UTx*> mBoxes;
};

} // namespace Vorn::Dev
