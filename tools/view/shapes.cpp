// SPDX-License-Identifier: MIT
#include "tools/view/shapes.hpp"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

namespace View {
namespace {

using Vorn::Vector3;

struct Geometry {
    std::vector<Vorn::Vertex_UTx> vertices;
    std::vector<unsigned int> indices;

    void Vertex(const Vector3& at, const Vector3& normal, float u, float v) {
        vertices.emplace_back(at.x, at.y, at.z, normal.x, normal.y, normal.z, u, v);
    }
    /// Of a grid's corners: a, its right neighbour, and those of the row below.
    void Quad(unsigned int a, unsigned int below) {
        for (const unsigned int index : {a, a + 1, below + 1, below + 1, below, a})
            indices.push_back(index);
    }
    /// A side of the cube, or the plane.
    void Face(const Vector3& middle, const Vector3& right, const Vector3& up) {
        const auto first = static_cast<unsigned int>(vertices.size());
        const Vector3 normal = right.CrossProduct(up) * -1.0f;
        for (const float v : {0.0f, 1.0f})
            for (const float u : {0.0f, 1.0f})
                Vertex(middle + right * (2 * u - 1) + up * (1 - 2 * v), normal, u, v);
        Quad(first, first + 2);
    }
};

Geometry Sphere() {
    constexpr unsigned int rows = 32, columns = 64;
    constexpr float pi = std::numbers::pi_v<float>;
    Geometry sphere;
    for (unsigned int row = 0; row <= rows; ++row)
        for (unsigned int column = 0; column <= columns; ++column) {
            const float v = static_cast<float>(row) / rows;
            const float u = static_cast<float>(column) / columns;
            const float level = std::sin(pi * v), turn = 2 * pi * u;
            // The middle of the picture looks along Z.
            const Vector3 out(level * std::sin(turn), std::cos(pi * v), -level * std::cos(turn));
            sphere.Vertex(out, out, u, v);
        }
    for (unsigned int row = 0; row < rows; ++row)
        for (unsigned int column = 0; column < columns; ++column)
            sphere.Quad(row * (columns + 1) + column, (row + 1) * (columns + 1) + column);
    return sphere;
}

Geometry Cube() {
    Geometry cube;
    cube.Face({0, 0, 1}, {-1, 0, 0}, {0, 1, 0});
    cube.Face({0, 0, -1}, {1, 0, 0}, {0, 1, 0});
    cube.Face({1, 0, 0}, {0, 0, 1}, {0, 1, 0});
    cube.Face({-1, 0, 0}, {0, 0, -1}, {0, 1, 0});
    cube.Face({0, 1, 0}, {1, 0, 0}, {0, 0, 1});
    cube.Face({0, -1, 0}, {1, 0, 0}, {0, 0, -1});
    return cube;
}

Geometry Plane() {
    Geometry plane;
    plane.Face({0, 0, 0}, {-1, 0, 0}, {0, 1, 0});
    return plane;
}

} // namespace

void MakeShape(Shape shape, Vorn::Mesh& mesh) {
    const Geometry made = shape == Shape::Sphere ? Sphere()
                          : shape == Shape::Cube ? Cube()
                                                 : Plane();
    mesh.mVertexCount = static_cast<std::uint32_t>(made.vertices.size());
    mesh.mIndexCount = static_cast<std::uint32_t>(made.indices.size());
    mesh.mVertices = new Vorn::Vertex_UTx[made.vertices.size()];
    mesh.mIndices = new unsigned int[made.indices.size()];
    std::copy(made.vertices.begin(), made.vertices.end(), mesh.mVertices);
    std::copy(made.indices.begin(), made.indices.end(), mesh.mIndices);
}

} // namespace View
