// SPDX-License-Identifier: MIT
//
// Below BodyGroup: bounds of bodies, four side by side, and the questions that are put to four at
// a time.
#pragma once

#include "vorn/core/float4.hpp"
#include "vorn/math/box_shape.hpp"
#include "vorn/math/vector3.hpp"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <functional>
#include <vector>

namespace Vorn {

/// A sphere about a body that holds all of it, rounding included. An infinite reach meets all.
struct Bounds {
    Vector3 center;
    float reach = 0.0f;
};

/// Bounds in blocks of four, each with the id of its body; what is left of the last block has the
/// id -1, which no question is for.
class BodyLanes {
public:
    struct Block {
        Float4 x{}, y{}, z{}, reach{};
        Int4 id{-1, -1, -1, -1};
    };

    std::size_t Size() const { return mSize; }
    const Block* Blocks() const { return mBlocks.data(); }

    /// New places hold whatever the caller then sets.
    void Resize(std::size_t size) {
        mSize = size;
        mBlocks.resize((size + 3) / 4);
        for (std::size_t at = size; at < 4 * mBlocks.size(); ++at)
            mBlocks.back().id[at % 4] = -1;
    }
    void Push(int id, const Bounds& bounds) {
        if (mSize % 4 == 0)
            mBlocks.emplace_back();
        Set(mSize++, id, bounds);
    }
    void Set(std::size_t at, int id, const Bounds& bounds) {
        Block& block = mBlocks[at / 4];
        const std::size_t lane = at % 4;
        block.x[lane] = bounds.center.x;
        block.y[lane] = bounds.center.y;
        block.z[lane] = bounds.center.z;
        block.reach[lane] = bounds.reach;
        block.id[lane] = id;
    }
    int Id(std::size_t at) const { return mBlocks[at / 4].id[at % 4]; }
    Bounds At(std::size_t at) const {
        const Block& block = mBlocks[at / 4];
        const std::size_t lane = at % 4;
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

/// Lets everybody pass.
struct NoFilter {
    Int4 operator()(const BodyLanes::Block&) const { return Int4{-1, -1, -1, -1}; }
};

/// Lets those pass whose spheres reach into the box along each of its axes. An axis that has no
/// length keeps nobody off.
class BoxFilter {
public:
    /// `sides` is asked once, where anybody is in the neighbourhood at all.
    explicit BoxFilter(const std::function<const BoxSides&()>& sides) : mSides(sides) {}

    Int4 operator()(const BodyLanes::Block& four) {
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

    /// Appends the ids of `begin` to `end`, and perhaps of those who share a block with them.
    void Ask(const BodyLanes& lanes, std::size_t begin, std::size_t end, std::vector<int>& out) {
        if (begin == end)
            return;
        const BodyLanes::Block* const last = lanes.Blocks() + (end - 1) / 4;
        for (const BodyLanes::Block* block = lanes.Blocks() + begin / 4; block <= last; ++block) {
            const Float4 dx = block->x - mX, dy = block->y - mY, dz = block->z - mZ;
            const Float4 sum = mReach + mOther * block->reach;
            Int4 meets = (dx * dx + dy * dy + dz * dz <= sum * sum) & (block->id >= mFrom);
            if (!LaneBits(meets))
                continue;
            meets &= mFilter(*block);
            for (unsigned int bits = LaneBits(meets); bits; bits &= bits - 1)
                out.push_back(block->id[std::countr_zero(bits)]);
        }
    }

private:
    const Bounds mAsks;
    const Stretch mStretch;
    Filter mFilter;
    const Float4 mX, mY, mZ, mReach, mOther;
    const Int4 mFrom;
};

/// One body against others, whichever of the two comes first in the list and so asks.
class PairQuestion {
public:
    PairQuestion(const Bounds& bounds, const Stretch& stretch)
        : mX(AllFour(bounds.center.x)), mY(AllFour(bounds.center.y)), mZ(AllFour(bounds.center.z)),
          mReach(AllFour(bounds.reach)), mStretched(AllFour(bounds.reach * stretch.other)),
          mOther(AllFour(stretch.other)), mLess(AllFour(stretch.other - stretch.own)) {}

    /// Writes the places of those of `begin` to `end` that it may meet, and returns the end of what
    /// it has written; four more may be overwritten.
    int* Ask(const BodyLanes& lanes, std::size_t begin, std::size_t end, int* out) const {
        if (begin >= end)
            return out;
        std::size_t block = begin / 4;
        const std::size_t last = (end - 1) / 4;
        Int4 asked = From[begin % 4];
        for (; block != last; ++block) {
            out = write(meets(lanes.Blocks()[block]) & asked, block, out);
            asked = To[3];
        }
        return write(meets(lanes.Blocks()[block]) & asked & To[(end - 1) % 4], block, out);
    }

private:
    static constexpr Int4 From[4] = {
        {-1, -1, -1, -1}, {0, -1, -1, -1}, {0, 0, -1, -1}, {0, 0, 0, -1}};
    static constexpr Int4 To[4] = {
        {-1, 0, 0, 0}, {-1, -1, 0, 0}, {-1, -1, -1, 0}, {-1, -1, -1, -1}};

    // The larger of the two is taken for the one that is asked, and so stretched.
    Int4 meets(const BodyLanes::Block& block) const {
        const Float4 dx = block.x - mX, dy = block.y - mY, dz = block.z - mZ;
        const Float4 smaller = block.reach < mReach ? block.reach : mReach;
        const Float4 sum = mStretched + mOther * block.reach - mLess * smaller;
        // Two without an end make a NaN of the sum, and meet.
        return ~(dx * dx + dy * dy + dz * dz > sum * sum);
    }
    // Without a branch: who meets whom cannot be predicted.
    static int* write(const Int4& meets, std::size_t block, int* out) {
        // The lanes that are set, one after the other.
        static constexpr Int4 Lanes[16] = {{0, 0, 0, 0}, {0, 0, 0, 0}, {1, 0, 0, 0}, {0, 1, 0, 0},
                                           {2, 0, 0, 0}, {0, 2, 0, 0}, {1, 2, 0, 0}, {0, 1, 2, 0},
                                           {3, 0, 0, 0}, {0, 3, 0, 0}, {1, 3, 0, 0}, {0, 1, 3, 0},
                                           {2, 3, 0, 0}, {0, 2, 3, 0}, {1, 2, 3, 0}, {0, 1, 2, 3}};
        const unsigned int bits = LaneBits(meets);
        const int first = static_cast<int>(4 * block);
        const Int4 places = Lanes[bits] + Int4{first, first, first, first};
        std::memcpy(out, &places, sizeof places);
        return out + std::popcount(bits);
    }

    const Float4 mX, mY, mZ, mReach, mStretched, mOther, mLess;
};

} // namespace Vorn
