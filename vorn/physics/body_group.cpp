// SPDX-License-Identifier: MIT
//
// The grid is a counting sort over a hash of cells: M. Teschner, B. Heidelberger, M. Mueller,
// D. Pomeranets, M. Gross, "Optimized Spatial Hashing for Collision Detection of Deformable
// Objects", 2003.
#include "vorn/physics/body_group.hpp"

#include "vorn/core/float4.hpp"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>

namespace Vorn {

namespace {

/// Up to so many bodies a scan is faster than any grid.
constexpr std::size_t ScanOnly = 256;
/// What a row of cells costs to look up, in bodies that a scan passes over meanwhile.
constexpr std::size_t RowCost = 16;
/// What a body of a cell costs, in the same measure.
constexpr std::size_t VisitCost = 1;
/// Cells are counted in whole numbers, and what stands further out stays out of the grid.
constexpr float MaxCells = 1 << 28;

bool IsFinite(const Bounds& b) {
    return std::isfinite(b.center.x) && std::isfinite(b.center.y) && std::isfinite(b.center.z) &&
           std::isfinite(b.reach);
}

/// Lets everybody pass.
struct NoFilter {
    template <typename Block>
    Int4 operator()(const Block&) const {
        return Int4{-1, -1, -1, -1};
    }
};

/// Lets those pass whose spheres reach into the box along each of its axes.
class BoxFilter {
public:
    explicit BoxFilter(const std::function<const BoxSides&()>& sides) : mSides(sides) {}

    template <typename Block>
    Int4 operator()(const Block& four) {
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

/// Who is no further from a sphere than `stretch` times the own reach, and passes the filter.
template <typename Filter>
class Question {
public:
    Question(const Bounds& sphere, float stretch, int from, Filter filter)
        : mSphere(sphere), mStretch(stretch), mFilter(filter), mX(AllFour(sphere.center.x)),
          mY(AllFour(sphere.center.y)), mZ(AllFour(sphere.center.z)), mReach(AllFour(sphere.reach)),
          mStretches(AllFour(stretch)), mFrom{from, from, from, from} {}

    /// Half the edge of a cube about the centre that holds the centres of all who may be meant, of
    /// those who reach no further than `reach`.
    float Half(float reach) const {
        const Vector3& c = mSphere.center;
        return (mSphere.reach + mStretch * reach) * 1.00001f +
               0.000001f * (std::abs(c.x) + std::abs(c.y) + std::abs(c.z));
    }
    const Vector3& Center() const { return mSphere.center; }

    /// Appends the ids of `begin` to `end`, and perhaps of those who share a block with them.
    template <typename Lanes>
    void Ask(const Lanes& lanes, std::size_t begin, std::size_t end, std::vector<int>& out) {
        if (begin == end)
            return;
        const auto* const last = lanes.blocks.data() + (end - 1) / 4;
        for (const auto* block = lanes.blocks.data() + begin / 4; block <= last; ++block) {
            const Float4 dx = block->x - mX, dy = block->y - mY, dz = block->z - mZ;
            const Float4 sum = mReach + mStretches * block->reach;
            Int4 meets = (dx * dx + dy * dy + dz * dz <= sum * sum) & (block->id >= mFrom);
            if (!LaneBits(meets))
                continue;
            meets &= mFilter(*block);
            for (unsigned int bits = LaneBits(meets); bits; bits &= bits - 1)
                out.push_back(block->id[std::countr_zero(bits)]);
        }
    }

private:
    const Bounds mSphere;
    const float mStretch;
    Filter mFilter;
    const Float4 mX, mY, mZ, mReach, mStretches;
    const Int4 mFrom;
};

} // namespace

void BodyGroup::Lanes::Resize(std::size_t size) {
    mSize = size;
    blocks.resize((size + 3) / 4);
    // No question asks for so low an id.
    if (!blocks.empty())
        for (std::size_t at = size; at < 4 * blocks.size(); ++at)
            blocks.back().id[at % 4] = -1;
}

void BodyGroup::Lanes::Push(Id body, const Bounds& bounds) {
    if (mSize % 4 == 0)
        blocks.emplace_back().id = Int4{-1, -1, -1, -1};
    Set(mSize++, body, bounds);
}

void BodyGroup::Lanes::Set(std::size_t at, Id body, const Bounds& bounds) {
    Block& block = blocks[at / 4];
    const std::size_t lane = at % 4;
    block.x[lane] = bounds.center.x;
    block.y[lane] = bounds.center.y;
    block.z[lane] = bounds.center.z;
    block.reach[lane] = bounds.reach;
    block.id[lane] = body;
}

Bounds BodyGroup::Lanes::At(std::size_t at) const {
    const Block& block = blocks[at / 4];
    const std::size_t lane = at % 4;
    return {{block.x[lane], block.y[lane], block.z[lane]}, block.reach[lane]};
}

void BodyGroup::Clear() {
    mAll.Resize(0);
    mIds.clear();
}

void BodyGroup::Add(Id id, const Bounds& bounds) {
    mAll.Push(id, bounds);
    mIds.push_back(id);
}

void BodyGroup::Build() {
    mFirst = 0;
    mGrid = mAll.Size() > ScanOnly && chooseCell();
    if (mGrid)
        sortIntoCells();
}

void BodyGroup::Move(int index, const Bounds& bounds) {
    const auto at = static_cast<std::size_t>(index);
    const Id id = mIds[at];
    mAll.Set(at, id, bounds);
    if (!mGrid)
        return;
    if (mOutsideIndex[at] >= 0) {
        mOutside.Set(static_cast<std::size_t>(mOutsideIndex[at]), id, bounds);
        return;
    }
    mOutsideIndex[at] = static_cast<int>(mOutside.Size());
    mOutside.Push(id, bounds);
    if (mOutside.Size() > mMaxOutside) {
        mGrid = chooseCell();
        if (mGrid)
            sortIntoCells();
    }
}

void BodyGroup::MeetSphere(const Bounds& sphere, int index, Id from, std::vector<Id>& out) {
    Question question(sphere, 1.0f, from, NoFilter());
    meet(question, index, out);
}

void BodyGroup::MeetBox(const Bounds& bounds, const std::function<const BoxSides&()>& sides,
                        int index, Id from, std::vector<Id>& out) {
    // The corner of a box that is widened by a reach along each axis lies the square root of 3
    // times as far out; the axes are good to a few hundredths.
    constexpr float Skew = 1.03f;
    Question question({bounds.center, bounds.reach * Skew}, 1.7320509f * Skew, from,
                      BoxFilter(sides));
    meet(question, index, out);
}

template <typename Question>
void BodyGroup::meet(Question& question, int index, std::vector<Id>& out) {
    const auto behind = static_cast<std::size_t>(index) + 1;
    // Bodies that have asked are not asked for any more. Where many are passed over, they leave the
    // grid when they are half of it.
    const std::size_t left = mAll.Size() - behind;
    if (mGrid && left < (mAll.Size() - mFirst) / 2 && mVisited > 32 * left) {
        mFirst = behind;
        sortIntoCells();
    }
    if (!mGrid || !meetInGrid(question, left, out))
        question.Ask(mAll, behind, mAll.Size(), out);
}

// False, with nothing appended, where a scan costs less.
template <typename Question>
bool BodyGroup::meetInGrid(Question& question, std::size_t scanCost, std::vector<Id>& out) {
    const float half = question.Half(mCommonReach);
    const Vector3 corner(half, half, half);
    const Bounds lowest{question.Center() - corner, 0.0f};
    const Bounds highest{question.Center() + corner, 0.0f};
    if (!isCommon(lowest) || !isCommon(highest))
        return false;
    const Cell low = cellOf(lowest.center);
    const Cell high = cellOf(highest.center);
    const std::size_t buckets = mBucketStart.size() - 1;
    const auto run = static_cast<std::size_t>(high.x - low.x + 1);
    const std::size_t rows =
        static_cast<std::size_t>(high.y - low.y + 1) * static_cast<std::size_t>(high.z - low.z + 1);
    std::size_t cost = rows * RowCost + mOutside.Size();
    if (run > buckets || cost >= scanCost)
        return false;

    const std::size_t before = out.size();
    const auto visit = [&](std::size_t first, std::size_t last) {
        const auto begin = static_cast<std::size_t>(mBucketStart[first]);
        const auto end = static_cast<std::size_t>(mBucketStart[last]);
        mVisited += end - begin;
        cost += (end - begin) * VisitCost;
        if (cost < scanCost)
            question.Ask(mSorted, begin, end, out);
    };
    for (int z = low.z; z <= high.z; ++z) {
        for (int y = low.y; y <= high.y; ++y) {
            const std::size_t first =
                (rowOf(y, z) + static_cast<unsigned int>(low.x)) & (buckets - 1);
            const std::size_t last = first + run;
            visit(first, std::min(last, buckets));
            if (last > buckets)
                visit(0, last - buckets);
        }
        if (cost >= scanCost) {
            out.resize(before);
            return false;
        }
    }
    question.Ask(mOutside, 0, mOutside.Size(), out);

    // Cells that share a bucket, and steps of four, bring some twice.
    if (out.size() < before + 2)
        return true;
    const auto begin = out.begin() + static_cast<std::ptrdiff_t>(before);
    std::sort(begin, out.end());
    out.erase(std::unique(begin, out.end()), out.end());
    return true;
}

// By the largest of the common sizes, so that a body meets bodies in the cells around its own only.
// Those more than twice as large as three quarters of all are not common: the others would crowd in
// cells of their size.
bool BodyGroup::chooseCell() {
    constexpr std::size_t SampleSize = 256;
    const std::size_t step = std::max<std::size_t>(1, mAll.Size() / SampleSize);
    mSample.clear();
    for (std::size_t i = 0; i < mAll.Size(); i += step)
        if (IsFinite(mAll.At(i)))
            mSample.push_back(mAll.At(i).reach);
    if (mSample.empty())
        return false;
    const auto large = mSample.begin() + static_cast<std::ptrdiff_t>(mSample.size() * 3 / 4);
    std::nth_element(mSample.begin(), large, mSample.end());
    const float limit = 2.0f * *large;

    mCommonReach = 0.0f;
    for (std::size_t i = 0; i < mAll.Size(); ++i)
        if (mAll.At(i).reach <= limit)
            mCommonReach = std::max(mCommonReach, mAll.At(i).reach);
    mCell = 2.6f * mSpread * mCommonReach;
    return std::isnormal(mCell) && std::isnormal(1.0f / mCell);
}

void BodyGroup::sortIntoCells() {
    const std::size_t count = mAll.Size();
    const std::size_t buckets = std::bit_ceil(2 * (count - mFirst));
    mBucketStart.assign(buckets + 1, 0);
    mBucket.resize(count);
    mOutsideIndex.assign(count, -1);
    mVisited = 0;
    mOutside.Resize(0);
    for (std::size_t i = mFirst; i < count; ++i) {
        const Bounds bounds = mAll.At(i);
        if (isCommon(bounds)) {
            const Cell cell = cellOf(bounds.center);
            const std::size_t bucket =
                (rowOf(cell.y, cell.z) + static_cast<unsigned int>(cell.x)) & (buckets - 1);
            mBucket[i] = static_cast<int>(bucket);
            ++mBucketStart[bucket];
        } else {
            mBucket[i] = -1;
            mOutsideIndex[i] = static_cast<int>(mOutside.Size());
            mOutside.Push(mIds[i], bounds);
        }
    }
    mMaxOutside = mOutside.Size() + 8 * static_cast<std::size_t>(std::sqrt(count));

    // From the last to the first, each bucket's start moves down to where it belongs, and bodies of
    // a bucket keep their order.
    int end = 0;
    std::size_t company = 0;
    for (int& start : mBucketStart) {
        company += static_cast<std::size_t>(start) * static_cast<std::size_t>(start);
        start = end += start;
    }
    // Where a body has little company in its cell, a question costs more for its rows of cells than
    // for who stands in them; worlds change slowly, so the next grid learns from this one.
    const auto sorted = static_cast<std::size_t>(end);
    if (company < 3 * sorted)
        mSpread = std::min(mSpread * 1.25f, 4.0f);
    else if (company > 6 * sorted)
        mSpread = std::max(mSpread / 1.25f, 1.0f);
    mSorted.Resize(static_cast<std::size_t>(end));
    for (std::size_t i = count; i-- > mFirst;)
        if (mBucket[i] >= 0)
            mSorted.Set(
                static_cast<std::size_t>(--mBucketStart[static_cast<std::size_t>(mBucket[i])]),
                mIds[i], mAll.At(i));
}

bool BodyGroup::isCommon(const Bounds& b) const {
    const float edge = MaxCells * mCell;
    return b.reach <= mCommonReach && std::abs(b.center.x) < edge && std::abs(b.center.y) < edge &&
           std::abs(b.center.z) < edge;
}

BodyGroup::Cell BodyGroup::cellOf(const Vector3& point) const {
    const float scale = 1.0f / mCell;
    const auto cell = [scale](float at) { return static_cast<int>(std::floor(at * scale)); };
    return {cell(point.x), cell(point.y), cell(point.z)};
}

unsigned int BodyGroup::rowOf(int y, int z) const {
    return static_cast<unsigned int>(y) * 73856093u ^ static_cast<unsigned int>(z) * 19349663u;
}

} // namespace Vorn
