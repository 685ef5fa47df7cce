// SPDX-License-Identifier: MIT
#include "vorn/vorn.hpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>
#include <type_traits>
#include <utility>
#include <vector>

namespace {

using Vorn::Point2;
using Vorn::Vertex_UTx;

static_assert(sizeof(Point2[2]) == 4 * sizeof(float) && std::is_trivially_copyable_v<Point2>);

template <class T>
T At(const Vertex_UTx& vertex, std::size_t offset) {
    T value;
    std::memcpy(&value, reinterpret_cast<const char*>(&vertex) + offset, sizeof(T));
    return value;
}

// Distinct in every field: `first` names the vertex.
Vertex_UTx Skinned(float first) {
    Vertex_UTx vertex(first, first + 1, first + 2, first + 3, first + 4, first + 5, first + 6,
                      first + 7);
    vertex.color = 0xFF000000u + static_cast<unsigned int>(first);
    for (int i = 0; i < 4; ++i) {
        vertex.weights[i] = first + 8 + static_cast<float>(i);
        vertex.bones[i] = static_cast<unsigned char>(static_cast<int>(first) + 12 + i);
    }
    return vertex;
}

void ExpectUnskinnedPart(const Vertex_UTx& vertex, float first) {
    const float floats[] = {vertex.x,  vertex.y,  vertex.z, vertex.nx,
                            vertex.ny, vertex.nz, vertex.u, vertex.v};
    for (int i = 0; i < 8; ++i)
        EXPECT_EQ(floats[i], first + static_cast<float>(i)) << i;
    EXPECT_EQ(vertex.color, 0xFF000000u + static_cast<unsigned int>(first));
}

void ExpectSkinningPart(const Vertex_UTx& vertex, float first) {
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(vertex.weights[i], first + 8 + static_cast<float>(i)) << i;
        EXPECT_EQ(vertex.bones[i], static_cast<int>(first) + 12 + i) << i;
    }
}

TEST(Vertex, LiesInMemoryAsTheStreamReadsIt) {
    const Vertex_UTx vertex = Skinned(20);
    EXPECT_EQ(sizeof(Vertex_UTx[2]), 112u);
    for (std::size_t i = 0; i < 6; ++i)
        EXPECT_EQ(At<float>(vertex, 4 * i), 20 + static_cast<float>(i)) << i;
    EXPECT_EQ(At<std::uint32_t>(vertex, 24), 0xFF000014u);
    EXPECT_EQ(At<float>(vertex, 28), 26.0f);
    EXPECT_EQ(At<float>(vertex, 32), 27.0f);
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(At<float>(vertex, 36 + 4 * i), 28 + static_cast<float>(i)) << i;
        EXPECT_EQ(At<unsigned char>(vertex, 52 + i), 32 + i) << i;
    }
}

TEST(Vertex, ConstructorsGiveWhiteAndNoBones) {
    // On dirty memory, where a field that is left out shows.
    alignas(Vertex_UTx) unsigned char memory[sizeof(Vertex_UTx)];
    std::memset(memory, 0xCD, sizeof(memory));
    const Vertex_UTx* vertex = new (memory) Vertex_UTx();
    unsigned char expected[sizeof(Vertex_UTx)] = {};
    std::memset(expected + 24, 0xFF, 4);
    EXPECT_EQ(std::memcmp(vertex, expected, sizeof(expected)), 0);

    std::memset(memory, 0xCD, sizeof(memory));
    vertex = new (memory) Vertex_UTx(1, 2, 3, 4, 5, 6, 7, 8);
    EXPECT_EQ(vertex->x, 1.0f);
    EXPECT_EQ(vertex->z, 3.0f);
    EXPECT_EQ(vertex->nx, 4.0f);
    EXPECT_EQ(vertex->nz, 6.0f);
    EXPECT_EQ(vertex->u, 7.0f);
    EXPECT_EQ(vertex->v, 8.0f);
    EXPECT_EQ(vertex->color, 0xFFFFFFFFu);
    EXPECT_EQ(std::memcmp(memory + 36, expected + 36, 20), 0);
}

TEST(Vertex, ACopyCarriesTheSkinningOver) {
    Vertex_UTx source = Skinned(20);
    const Vertex_UTx copy(source);
    const Vertex_UTx moved(std::move(source));
    EXPECT_EQ(std::memcmp(&copy, &moved, sizeof(copy)), 0);
    ExpectUnskinnedPart(copy, 20);
    ExpectSkinningPart(copy, 20);
    // A list that grows copies its elements.
    std::vector<Vertex_UTx> list(1, copy);
    list.reserve(list.capacity() + 1);
    ExpectUnskinnedPart(list[0], 20);
    ExpectSkinningPart(list[0], 20);
}

TEST(Vertex, AssignmentKeepsTheTargetsSkinning) {
    const Vertex_UTx source = Skinned(20);
    Vertex_UTx target = Skinned(60);
    EXPECT_EQ(&(target = source), &target);
    ExpectUnskinnedPart(target, 20);
    ExpectSkinningPart(target, 60);
    target = Skinned(100);
    ExpectUnskinnedPart(target, 100);
    ExpectSkinningPart(target, 60);
    const Vertex_UTx& same = target;
    target = same;
    ExpectUnskinnedPart(target, 100);
    ExpectSkinningPart(target, 60);
    ExpectSkinningPart(source, 20);
}

TEST(Point2, SubtractsAndConverts) {
    EXPECT_EQ(Point2().x, 0.0f);
    EXPECT_EQ(Point2().y, 0.0f);
    Point2 p(3, -4);
    const Point2 difference = p - Point2(1, 10);
    EXPECT_EQ(difference.x, 2.0f);
    EXPECT_EQ(difference.y, -14.0f);
    EXPECT_EQ(p.x, 3.0f);
    EXPECT_EQ(&(p -= difference), &p);
    EXPECT_EQ(p.x, 1.0f);
    EXPECT_EQ(p.y, 10.0f);
    const D3DXVECTOR2 platform = p;
    EXPECT_EQ(platform.x, 1.0f);
    EXPECT_EQ(platform.y, 10.0f);
    const Point2& same = p;
    p -= same;
    EXPECT_EQ(p.x, 0.0f);
    EXPECT_EQ(p.y, 0.0f);
}

} // namespace
