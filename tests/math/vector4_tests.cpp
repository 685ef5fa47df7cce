// SPDX-License-Identifier: MIT
#include "tests/math/exact.hpp"
#include "vorn/vorn.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

namespace {

using Vorn::Vector3;
using Vorn::Vector4;

void ExpectIs(const Vector4& v, float x, float y, float z, float w) {
    EXPECT_EQ(v.x, x);
    EXPECT_EQ(v.y, y);
    EXPECT_EQ(v.z, z);
    EXPECT_EQ(v.w, w);
    Exact::ExpectBoundToItself(v);
}

TEST(Vector4, EveryConstructorBindsItsOwnStorage) {
    ExpectIs(Vector4(), 0, 0, 0, 0);
    ExpectIs(Vector4(1, 2, 3, 4), 1, 2, 3, 4);
    ExpectIs(Vector4(Vector3(5, 6, 7), 8), 5, 6, 7, 8);
    auto original = std::make_unique<Vector4>(1.0f, 2.0f, 3.0f, 4.0f);
    Vector4 copy(*original);
    const Vector4 moved(std::move(*original));
    original->x = 9;
    original.reset();
    ExpectIs(copy, 1, 2, 3, 4);
    ExpectIs(moved, 1, 2, 3, 4);
    copy.y = -2;
    ExpectIs(copy, 1, -2, 3, 4);
}

TEST(Vector4, AssignmentCopiesNumbersAndKeepsBindings) {
    Vector4 target(9, 9, 9, 9);
    {
        Vector4 source(1, 2, 3, 4);
        EXPECT_EQ(&(target = source), &target);
        source.x = source.w = 77;
        ExpectIs(target, 1, 2, 3, 4);
        target.z = 30;
        ExpectIs(source, 77, 2, 3, 77);
    }
    ExpectIs(target, 1, 2, 30, 4);

    const Vector4& same = target;
    target = same;
    ExpectIs(target, 1, 2, 30, 4);
    target = Vector4(5, 6, 7, 8);
    ExpectIs(target, 5, 6, 7, 8);

    Vector4 other(-1, -2, -3, -4);
    std::swap(target, other);
    ExpectIs(target, -1, -2, -3, -4);
    ExpectIs(other, 5, 6, 7, 8);
}

TEST(Vector4, ElementsOfAVectorSurviveGrowthAndSorting) {
    std::vector<Vector4> list;
    for (int i = 0; i < 100; ++i) {
        const float n = static_cast<float>((i * 37) % 100);
        list.push_back(Vector4(n, n + 0.25f, n + 0.5f, n + 0.75f));
    }
    list.insert(list.begin(), list[50]);
    list.erase(list.begin());
    std::sort(list.begin(), list.end(),
              [](const Vector4& a, const Vector4& b) { return a.x < b.x; });
    ASSERT_EQ(list.size(), 100u);
    for (std::size_t i = 0; i < list.size(); ++i) {
        SCOPED_TRACE(i);
        const auto n = static_cast<float>(i);
        ExpectIs(list[i], n, n + 0.25f, n + 0.5f, n + 0.75f);
    }
}

TEST(Vector4, TwoPointsCannotBeAdded) {
    ExpectIs(Vector4(1, 2, 3, 1) + Vector4(1, 1, 1, 1), 0, 0, 0, 1);
    ExpectIs(Vector4(1, 2, 3, -2) + Vector4(4, 5, 6, 0.5f), 0, 0, 0, 1);
    ExpectIs(Vector4(1, 2, 3, 2) + Vector4(4, 5, 6, -2), 0, 0, 0, 1);
}

TEST(Vector4, APointAndADirectionAddInAllElements) {
    ExpectIs(Vector4(1, 2, 3, 1) + Vector4(1, 1, 1, 0), 2, 3, 4, 1);
    ExpectIs(Vector4(1, 2, 3, 0) + Vector4(10, 20, 30, 5), 11, 22, 33, 5);
    ExpectIs(Vector4(1, 2, 3, -0.0f) + Vector4(10, 20, 30, -5), 11, 22, 33, -5);
    ExpectIs(Vector4(1, 2, 3, 0) + Vector4(10, 20, 30, 0), 11, 22, 33, 0);
}

TEST(Vector4, SubtractionTellsPointsFromDirections) {
    ExpectIs(Vector4(1, 2, 3, 1) - Vector4(1, 1, 1, 1), 0, 1, 2, 0);
    ExpectIs(Vector4(1, 2, 3, 5) - Vector4(1, 1, 1, -2), 0, 1, 2, 0);
    ExpectIs(Vector4(1, 2, 3, 0) - Vector4(1, 1, 1, -0.0f), 0, 1, 2, 0);
    ExpectIs(Vector4(1, 2, 3, 1) - Vector4(1, 1, 1, 0), 0, 1, 2, 1);
    ExpectIs(Vector4(1, 1, 1, 0) - Vector4(1, 2, 3, 1), 0, -1, -2, 1);
    // Whatever the w of the point was.
    ExpectIs(Vector4(1, 2, 3, 5) - Vector4(1, 1, 1, 0), 0, 1, 2, 1);
    ExpectIs(Vector4(1, 2, 3, 0) - Vector4(1, 1, 1, -3), 0, 1, 2, 1);
    const Vector4 point(4, 5, 6, 1);
    ExpectIs(point - point, 0, 0, 0, 0);
}

TEST(Vector4, ScalingLeavesWAlone) {
    const Vector4 v(1, -2, 3, 5);
    ExpectIs(v * 2.0f, 2, -4, 6, 5);
    ExpectIs(0.5f * v, 0.5f, -1, 1.5f, 5);
    ExpectIs(v * 0.0f, 0, 0, 0, 5);
    ExpectIs(v, 1, -2, 3, 5);
}

TEST(Vector4, LengthAndNormalizeTakeAllFourElements) {
    EXPECT_EQ(Vector4(1, 2, 2, 4).Length(), 5.0f);
    Exact::Random random(4);
    for (int i = 0; i < 300; ++i) {
        SCOPED_TRACE(i);
        const Vector4 v(random.Vector(20), random.Float(-20, 20));
        const Exact::Quat e{Exact::Of(v.x, v.y, v.z), static_cast<double>(v.w)};
        const double length = Exact::Length(e);
        Exact::ExpectNear(v.Length(), length, 1e-5);
        const Vector4 before = v;
        const Vector4 unit = v.Normalize();
        Exact::ExpectNear4(unit, {1 / length * e.v, e.w / length}, 1e-6);
        Exact::ExpectBoundToItself(unit);
        ExpectIs(v, before.x, before.y, before.z, before.w);
    }
}

} // namespace
