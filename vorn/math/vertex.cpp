// SPDX-License-Identifier: MIT
#include "vorn/math/vertex.hpp"

namespace Vorn {

Vertex_UTx& Vertex_UTx::operator=(const Vertex_UTx& vertex) {
    x = vertex.x;
    y = vertex.y;
    z = vertex.z;
    nx = vertex.nx;
    ny = vertex.ny;
    nz = vertex.nz;
    color = vertex.color;
    u = vertex.u;
    v = vertex.v;
    return *this;
}

} // namespace Vorn
