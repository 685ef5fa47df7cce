// SPDX-License-Identifier: MIT
//
// Below BodyGroup: bounds of bodies, eight side by side, and the question of one body to others,
// four at a time. That of all bodies to all stands in pair_lanes.hpp.
#pragma once

#include "vorn/core/float4.hpp"
#include "vorn/math/box_shape.hpp"
#include "vorn/math/vector3.hpp"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <vector>

namespace Vorn {

/// A sphere about a body that holds all of it, rounding included. An infinite reach meets all.
struct Bounds {
    Vector3 center;
    float reach = 0.0f;
};

/// Bounds in blocks of eight, each with the id of its body; what is left of the last block has the
/// id -1, which no question is for.
class BodyLanes {
public:
    static constexpr std::size_t Lanes = 8;
    struct alignas(32) Block {
        float x[Lanes] = {}, y[Lanes] = {}, z[Lanes] = {}, reach[Lanes] = {};
        std::int32_t id[Lanes] = {-1, -1, -1, -1, -1, -1, -1, -1};
    };
    /// Half of a block.
    struct Four {
        Float4 x, y, z, reach;
        Int4 id;
    };

    std::size_t Size() const { return mSize; }
    const Block* Blocks() const { return mBlocks.data(); }
    Four FourAt(std::size_t four) const {
        const Block& block = mBlocks[four / 2];
        const std::size_t lane = four % 2 * 4;
        Four at;
        std::memcpy(&at.x, block.x + lane, sizeof at.x);
        std::memcpy(&at.y, block.y + lane, sizeof at.y);
        std::memcpy(&at.z, block.z + lane, sizeof at.z);
        std::memcpy(&at.reach, block.reach + lane, sizeof at.reach);
        std::memcpy(&at.id, block.id + lane, sizeof at.id);
        return at;
    }

    /// New places hold whatever the caller then sets.
    void Resize(std::size_t size) {
        mSize = size;
        mBlocks.resize((size + Lanes - 1) / Lanes);
        for (std::size_t at = size; at < Lanes * mBlocks.size(); ++at)
            mBlocks.back().id[at % Lanes] = -1;
    }
    void Push(int id, const Bounds& bounds) {
        if (mSize % Lanes == 0)
            mBlocks.emplace_back();
        Set(mSize++, id, bounds);
    }
    void Set(std::size_t at, int id, const Bounds& bounds) {
        Block& block = mBlocks[at / Lanes];
        const std::size_t lane = at % Lanes;
        block.x[lane] = bounds.center.x;
        block.y[lane] = bounds.center.y;
        block.z[lane] = bounds.center.z;
        block.reach[lane] = bounds.reach;
        block.id[lane] = id;
    }
    int Id(std::size_t at) const { return mBlocks[at / Lanes].id[at % Lanes]; }
    Bounds At(std::size_t at) const {
        const Block& block = mBlocks[at / Lanes];
        const std::size_t lane = at % Lanes;
        return {{block.x[lane], block.y[lane], block.z[lane]}, block.reach[lane]};
    }

private:
    std::vector<Block> mBlocks;
    std::size_t mSize = 0;
};

/// How far from another a body may be and still be met: `own` times the reach of the one that asks
/// and `other` times that of the one that is asked.
struct Stretch {
    float own, other;
};

/// Spheres meet when they touch.
inline constexpr Stretch SphereStretch{1.0f, 1.0f};

/// A box asks along each of its axes: the corner of a box that is widened by a reach along each
/// axis lies the square root of 3 times as far out; the axes are good to a few hundredths.
inline constexpr Stretch BoxStretch{1.03f, 1.7320509f * 1.03f};

/// Half the edge of a cube about the centre that holds the centres of all who may be meant, of
/// those who reach no further than `reach`.
inline float HalfWindow(const Bounds& asks, const Stretch& stretch, float reach) {
    const Vector3& c = asks.center;
    return (stretch.own * asks.reach + stretch.other * reach) * 1.00001f +
           0.000001f * (std::abs(c.x) + std::abs(c.y) + std::abs(c.z));
}

/// The same of four bodies.
inline Float4 HalfWindows(const BodyLanes::Four& ask, const Stretch& stretch, float reach) {
    return (stretch.own * ask.reach + stretch.other * reach) * 1.00001f +
           0.000001f * (SizeOf(ask.x) + SizeOf(ask.y) + SizeOf(ask.z));
}

/// Lets everybody pass.
struct NoFilter {
    Int4 operator()(const BodyLanes::Four&) const { return Int4{-1, -1, -1, -1}; }
};

/// Lets those pass whose spheres reach into the box along each of its axes. An axis that has no
/// length keeps nobody off.
class BoxFilter {
public:
    /// `sides` is asked once, where anybody is in the neighbourhood at all.
    explicit BoxFilter(const std::function<const BoxSides&()>& sides) : mSides(sides) {}

    Int4 operator()(const BodyLanes::Four& four) {
        if (!mKnown)
            know();
        Int4 pass{-1, -1, -1, -1};
        for (int i = 0; i < 3; ++i) {
            const Float4 along = four.x * mX[i] + four.y * mY[i] + four.z * mZ[i];
            pass &= (along - four.reach <= mHigh[i]) & (along + four.reach >= mLow[i]);
        }
        return pass;
    }

private:
    void know() {
        mKnown = true;
        const BoxSides& sides = mSides();
        for (int i = 0; i < 3; ++i) {
            const float low = sides.reach.low[i], high = sides.reach.high[i];
            const float slack = 0.00001f * (std::abs(low) + std::abs(high));
            mX[i] = AllFour(sides.axes.x[i]);
            mY[i] = AllFour(sides.axes.y[i]);
            mZ[i] = AllFour(sides.axes.z[i]);
            mLow[i] = AllFour(low - slack);
            mHigh[i] = AllFour(high + slack);
        }
    }

    const std::function<const BoxSides&()>& mSides;
    bool mKnown = false;
    Float4 mX[3] = {}, mY[3] = {}, mZ[3] = {}, mLow[3] = {}, mHigh[3] = {};
};

/// Who of those from an id on is within the stretch of a sphere, and passes the filter.
template <typename Filter>
class BodyQuestion {
public:
    BodyQuestion(const Bounds& asks, const Stretch& stretch, int from, Filter filter)
        : mAsks(asks), mStretch(stretch), mFilter(filter), mX(AllFour(asks.center.x)),
          mY(AllFour(asks.center.y)), mZ(AllFour(asks.center.z)),
          mReach(AllFour(asks.reach * stretch.own)),
          mOther(AllFour(stretch.other)), mFrom{from, from, from, from} {}

    const Vector3& Center() const { return mAsks.center; }
    float HalfWindow(float reach) const { return Vorn::HalfWindow(mAsks, mStretch, reach); }

    /// Appends the ids of `begin` to `end`, and perhaps of those beside them.
    void Ask(const BodyLanes& lanes, std::size_t begin, std::size_t end, std::vector<int>& out) {
        if (begin == end)
            return;
        for (std::size_t i = begin / 4; i <= (end - 1) / 4; ++i) {
            const BodyLanes::Four four = lanes.FourAt(i);
            const Float4 dx = four.x - mX, dy = four.y - mY, dz = four.z - mZ;
            const Float4 sum = mReach + mOther * four.reach;
            Int4 meets = (dx * dx + dy * dy + dz * dz <= sum * sum) & (four.id >= mFrom);
            if (!LaneBits(meets))
                continue;
            meets &= mFilter(four);
            for (unsigned int bits = LaneBits(meets); bits; bits &= bits - 1)
                out.push_back(four.id[std::countr_zero(bits)]);
        }
    }

private:
    const Bounds mAsks;
    const Stretch mStretch;
    Filter mFilter;
    const Float4 mX, mY, mZ, mReach, mOther;
    const Int4 mFrom;
};

} // namespace Vorn
