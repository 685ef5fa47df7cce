// SPDX-License-Identifier: MIT
#pragma once

#include "platform/d3d9/child.hpp"
#include "platform/d3d9/vertex_layout.hpp"

namespace VornPlatform {

class VertexDeclaration final : public CountedChild<IDirect3DVertexDeclaration9> {
public:
    VertexDeclaration(Device& device, VertexLayout layout);

    const VertexLayout& Layout() const { return mLayout; }

private:
    VertexLayout mLayout;
};

} // namespace VornPlatform
