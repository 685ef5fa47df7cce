// SPDX-License-Identifier: MIT
//
// Lines of a frame, drawn in one call, with what is written at points of the world.
#pragma once

#include "vorn/math/matrix4.hpp"
#include "vorn/math/volumes.hpp"

#include <cstdint>
#include <string>
#include <vector>

namespace View {

/// What all of it lies in.
struct Bounds {
    Vorn::Vector3 low{1, 1, 1}, high{-1, -1, -1};

    bool Empty() const { return low.x > high.x; }
    void Add(const Vorn::Vector3& point);
    void Add(const Bounds& other);
    Vorn::Vector3 Middle() const { return (low + high) * 0.5f; }
    Vorn::Vector3 Size() const { return Empty() ? Vorn::Vector3() : high - low; }
    /// Of the sphere about the box.
    float Radius() const { return Size().Length() * 0.5f; }
};

struct Label {
    Vorn::Vector3 at;
    std::string text;
    std::uint32_t color = 0xFFFFFFFFu;
};

class Lines {
public:
    /// Colours as D3DCOLOR.
    void Add(const Vorn::Vector3& a, const Vorn::Vector3& b, std::uint32_t color);
    void Box(const Vorn::OBB& box, std::uint32_t color);
    void Box(const Vorn::Matrix4& world, const Bounds& bounds, std::uint32_t color);
    /// A circle in each of the planes XY, XZ and YZ.
    void Sphere(const Vorn::Vector3& middle, float radius, std::uint32_t color);
    void Write(const Vorn::Vector3& at, std::string text, std::uint32_t color);

    /// With the view that the device has. `inFront` shows what stands behind something, too.
    void Draw(const Vorn::Matrix4& projection, bool inFront) const;
    void Clear();
    std::size_t Count() const { return mEnds.size() / 2; }
    const std::vector<Label>& Labels() const { return mLabels; }

private:
    struct End {
        float x, y, z;
        std::uint32_t color;
    };
    void edges(const Vorn::Vector3* corners, std::uint32_t color);

    std::vector<End> mEnds;
    std::vector<Label> mLabels;
};

/// A grid on the ground with cells of 1, 2 or 5 times a power of ten, as fits something of that
/// size, its unit written at the edge. The length of a cell.
float AddGrid(Lines& lines, const Bounds& bounds);

} // namespace View
