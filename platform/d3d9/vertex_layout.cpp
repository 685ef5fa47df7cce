// SPDX-License-Identifier: MIT
#include "platform/d3d9/vertex_layout.hpp"

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

namespace VornPlatform {

namespace {

constexpr WORD EndStream = 0xFF;
constexpr BYTE LastUsage = 13; // that Direct3D knows
constexpr BYTE LastUsageIndex = 15;
// What comes in this order in a vertex, beside the position.
constexpr DWORD OptionalParts[] = {D3DFVF_NORMAL, D3DFVF_DIFFUSE, D3DFVF_TEX1};

// In the order of the types' numbers (unit: bytes).
constexpr std::array<UINT, 6> TypeSizes = {4, 8, 12, 16, 4, 4};

unsigned int NextId() {
    static constinit unsigned int last = 0;
    return ++last;
}

VertexLayout MakeLayout(DWORD fvf, std::vector<D3DVERTEXELEMENT9> elements) {
    VertexLayout layout{{NextId(), fvf, std::move(elements)}};
    for (const D3DVERTEXELEMENT9& element : layout.format.elements) {
        layout.size = std::max(layout.size, element.Offset + TypeSizes[element.Type]);
        layout.hasPosition |= element.Usage == D3DDECLUSAGE_POSITION && element.UsageIndex == 0;
    }
    return layout;
}

VertexLayout MakeFvfLayout(DWORD fvf) {
    std::vector<D3DVERTEXELEMENT9> elements;
    WORD offset = 0;
    const auto add = [&](BYTE type, BYTE usage) {
        elements.push_back({0, offset, type, D3DDECLMETHOD_DEFAULT, usage, 0});
        offset = static_cast<WORD>(offset + TypeSizes[type]);
    };
    add(D3DDECLTYPE_FLOAT3, D3DDECLUSAGE_POSITION);
    if (fvf & D3DFVF_NORMAL)
        add(D3DDECLTYPE_FLOAT3, D3DDECLUSAGE_NORMAL);
    if (fvf & D3DFVF_DIFFUSE)
        add(D3DDECLTYPE_D3DCOLOR, D3DDECLUSAGE_COLOR);
    if (fvf & D3DFVF_TEX1)
        add(D3DDECLTYPE_FLOAT2, D3DDECLUSAGE_TEXCOORD);
    return MakeLayout(fvf, std::move(elements));
}

// One for each choice of the optional parts.
using FvfLayouts = std::array<VertexLayout, 8>;

FvfLayouts MakeFvfLayouts() {
    FvfLayouts layouts;
    for (std::size_t choice = 0; choice < layouts.size(); ++choice) {
        DWORD fvf = D3DFVF_XYZ;
        for (std::size_t part = 0; part < std::size(OptionalParts); ++part)
            fvf |= choice >> part & 1 ? OptionalParts[part] : 0;
        layouts[choice] = MakeFvfLayout(fvf);
    }
    return layouts;
}

bool IsKnown(const D3DVERTEXELEMENT9& element) {
    // The end mark is of another stream.
    return element.Stream == 0 && element.Type < TypeSizes.size() && element.Offset % 4 == 0 &&
           element.Offset + TypeSizes[element.Type] <= MaxStride &&
           element.Method == D3DDECLMETHOD_DEFAULT && element.Usage <= LastUsage &&
           element.UsageIndex <= LastUsageIndex;
}

} // namespace

const VertexLayout* LayoutOfFvf(DWORD fvf) {
    static const FvfLayouts& layouts = *new FvfLayouts(MakeFvfLayouts());
    std::size_t choice = 0;
    DWORD rest = fvf;
    for (std::size_t part = 0; part < std::size(OptionalParts); ++part)
        if (fvf & OptionalParts[part]) {
            choice |= std::size_t(1) << part;
            rest &= ~OptionalParts[part];
        }
    return rest == D3DFVF_XYZ ? &layouts[choice] : nullptr;
}

std::size_t CountSound(const D3DVERTEXELEMENT9* elements) {
    std::size_t count = 0;
    const auto isSame = [&](const D3DVERTEXELEMENT9& other) {
        return other.Usage == elements[count].Usage &&
               other.UsageIndex == elements[count].UsageIndex;
    };
    while (count < MaxElements && IsKnown(elements[count]) &&
           std::none_of(elements, elements + count, isSame))
        ++count;
    return count;
}

std::optional<VertexLayout> LayoutOfElements(const D3DVERTEXELEMENT9* elements) {
    const std::size_t count = CountSound(elements);
    if (count == 0 || elements[count].Stream != EndStream)
        return std::nullopt;
    return MakeLayout(0, {elements, elements + count});
}

} // namespace VornPlatform
