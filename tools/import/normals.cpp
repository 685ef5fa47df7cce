// SPDX-License-Identifier: MIT
#include "tools/import/normals.hpp"

#include <map>

namespace Import {
namespace {

/// Corners beyond this many at one point are all smoothed: comparing each with each takes too long.
constexpr std::size_t cornersCompared = 512;

SourceMesh unrolled(const SourceMesh& mesh) {
    SourceMesh corners = mesh;
    corners.positions.clear();
    corners.uvs.clear();
    corners.influences.clear();
    for (std::size_t t = 0; t < mesh.triangles.size(); ++t) {
        for (std::size_t c = 0; c < 3; ++c) {
            const std::uint32_t vertex = mesh.triangles[t][c];
            corners.triangles[t][c] = static_cast<std::uint32_t>(3 * t + c);
            corners.positions.push_back(mesh.positions[vertex]);
            if (!mesh.uvs.empty())
                corners.uvs.push_back(mesh.uvs[vertex]);
            if (!mesh.influences.empty())
                corners.influences.push_back(mesh.influences[vertex]);
        }
    }
    return corners;
}

} // namespace

void MakeNormals(SourceMesh& mesh) {
    mesh = unrolled(mesh);
    mesh.normalsMade = true;

    // Face normals as long as the faces are large, so that slivers count for little.
    std::vector<Vec3> faces;
    std::map<std::array<double, 3>, std::vector<std::uint32_t>> meeting;
    for (const auto& [a, b, c] : mesh.triangles) {
        const auto triangle = static_cast<std::uint32_t>(faces.size());
        const Vec3& origin = mesh.positions[a];
        faces.push_back(Cross(mesh.positions[b] - origin, mesh.positions[c] - origin));
        for (const std::uint32_t corner : {a, b, c}) {
            const Vec3& p = mesh.positions[corner];
            if (Finite(p))
                meeting[{p.x, p.y, p.z}].push_back(triangle);
        }
    }

    mesh.normals.assign(mesh.positions.size(), {0, 1, 0});
    for (std::size_t corner = 0; corner < mesh.positions.size(); ++corner) {
        const Vec3& p = mesh.positions[corner];
        if (!Finite(p))
            continue;
        const Vec3& own = faces[corner / 3];
        const std::vector<std::uint32_t>& others = meeting[{p.x, p.y, p.z}];
        Vec3 sum;
        for (const std::uint32_t other : others) {
            if (others.size() > cornersCompared ||
                Dot(own, faces[other]) >= 0.5 * Length(own) * Length(faces[other]))
                sum = sum + faces[other];
        }
        if (const double length = Length(sum); length > 0)
            mesh.normals[corner] = sum * (1 / length);
    }
}

} // namespace Import
