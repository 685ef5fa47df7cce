// SPDX-License-Identifier: MIT
#include "tests/support/rounds.hpp"
#include "vorn/math/intersection.hpp"
#include "vorn/physics/pair_lanes.hpp"
#include "vorn/physics/slim_box.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

namespace {

using namespace Vorn;

struct Case {
    std::mt19937 random;

    float number(float low, float high) {
        return low + (high - low) * static_cast<float>(random() % 100'001) * 1e-5f;
    }
    Vector3 vector(float reach) {
        const float x = number(-reach, reach), y = number(-reach, reach);
        return {x, y, number(-reach, reach)};
    }
};

enum Verdict { Miss, Hit, Unsure };

struct Box {
    Vector3 center, size;
    BodyTurn turn;

    OBB Plain() const { return {BodyTransform(center, turn), size}; }
    SlimBox Slim() const { return SlimBoxOf(center, turn, size, DoubtOf(center, size)); }
};

// Two boxes that just touch, near the origin or far out, thick or thin, are moved apart and into
// each other by the last bits: whoever is sure is right, and few are not once they are apart.
TEST(SlimBox, IsSureOnlyWhereTheCornersAgree) {
    Case c{std::mt19937(7)};
    int near = 0, nearSure = 0;
    for (unsigned int round = 0; round < Tests::Rounds(20'000); ++round) {
        const float out = std::pow(10.0f, c.number(-1, 4)), thin = round % 2 ? 1.0f : 0.02f;
        const auto make = [&](const Vector3& center) {
            const Vector3 size(c.number(0.5f, 2), c.number(0.5f, 2) * thin, c.number(-2, -0.5f));
            Vector3 axis = c.vector(1);
            if (round % 5 == 0) // hardly a side to take from Y
                axis = Vector3(0.033f, 1, 0.001f) * c.number(0.5f, 100);
            return Box{center, size, TurnOf(axis, c.number(-4, 4))};
        };
        const Box a = make(c.vector(out));
        Box b = make(a.center);
        const Vector3 way = c.vector(1);
        const auto at = [&](float t) {
            b.center = a.center + way * t;
            return OBBToOBB(a.Plain(), b.Plain());
        };
        float touching = 0, apart = 16;
        for (int i = 0; i < 40; ++i)
            (at((touching + apart) / 2) ? touching : apart) = (touching + apart) / 2;
        constexpr int most = 24;
        const auto off = [](int step) {
            return std::ldexp(step < 0 ? -1.0f : 1.0f, std::abs(step) - 26);
        };
        std::vector<SlimBox> boxes{a.Slim()};
        std::vector<PlacedPair> pairs;
        std::vector<Verdict> hits, verdicts(2 * most + 1, Miss);
        for (int step = -most; step <= most; ++step) {
            hits.push_back(at(touching * (1 + off(step))) ? Hit : Miss);
            pairs.push_back({{0, 0}, {step + most, static_cast<int>(boxes.size())}});
            boxes.push_back(b.Slim());
        }
        std::vector<PlacedPair> unsure(pairs.size());
        const Judged judged = JudgePairs(boxes.data(), pairs, unsure.data());
        for (std::size_t i = 0; i < judged.hits; ++i)
            verdicts[static_cast<std::size_t>(pairs[i].second.id)] = Hit;
        for (std::size_t i = 0; i < judged.unsure; ++i)
            verdicts[static_cast<std::size_t>(unsure[i].second.id)] = Unsure;
        for (int step = -most; step <= most; ++step) {
            const Verdict verdict = verdicts[static_cast<std::size_t>(step + most)];
            ASSERT_TRUE(verdict == Unsure || verdict == hits[static_cast<std::size_t>(step + most)])
                << "round " << round << ", off " << off(step);
            if (out < 10 && thin == 1.0f && std::abs(off(step)) > 0.01f) {
                ++near;
                nearSure += verdict != Unsure;
            }
        }
    }
    EXPECT_GT(nearSure, near * 99 / 100);
}

} // namespace
