// SPDX-License-Identifier: MIT
//
// The grid is a counting sort over a hash of cells: M. Teschner, B. Heidelberger, M. Mueller,
// D. Pomeranets, M. Gross, "Optimized Spatial Hashing for Collision Detection of Deformable
// Objects", 2003.
#include "vorn/physics/body_group.hpp"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

namespace Vorn {

namespace {

/// Up to so many bodies a scan is faster than any grid.
constexpr std::size_t ScanOnly = 256;
/// What a row of cells costs to look up, in bodies that a scan passes over meanwhile.
constexpr std::size_t RowCost = 12;
/// What a body of a cell costs, in the same measure.
constexpr std::size_t VisitCost = 3;
/// Cells are counted in whole numbers, and what stands further out stays out of the grid.
constexpr float MaxCells = 1 << 28;

using Float4 = float __attribute__((vector_size(16)));
using Int4 = std::int32_t __attribute__((vector_size(16)));

Float4 Load(const float* p) {
    Float4 v;
    std::memcpy(&v, p, sizeof v);
    return v;
}

Int4 Load(const int* p) {
    Int4 v;
    std::memcpy(&v, p, sizeof v);
    return v;
}

Float4 All(float f) {
    return Float4{f, f, f, f};
}

bool Any(const Int4& mask) {
    std::uint64_t halves[2];
    std::memcpy(halves, &mask, sizeof mask);
    return (halves[0] | halves[1]) != 0;
}

/// Whether spheres meet the sphere.
struct SphereTest {
    Float4 x, y, z, reach;

    explicit SphereTest(const Bounds& sphere)
        : x(All(sphere.center.x)), y(All(sphere.center.y)), z(All(sphere.center.z)),
          reach(All(sphere.reach)) {}
    Int4 operator()(Float4 ox, Float4 oy, Float4 oz, Float4 oreach) const {
        const Float4 dx = ox - x, dy = oy - y, dz = oz - z, sum = oreach + reach;
        return dx * dx + dy * dy + dz * dz <= sum * sum;
    }
};

/// Whether spheres reach into the box along each of its three axes.
struct BoxTest {
    Float4 nx[3], ny[3], nz[3], low[3], high[3];

    BoxTest(const BoxShape& box, float slack) {
        static constexpr int axes[3] = {1, 3, 4};
        for (int i = 0; i < 3; ++i) {
            const int axis = axes[i];
            nx[i] = All(box.nx[axis]);
            ny[i] = All(box.ny[axis]);
            nz[i] = All(box.nz[axis]);
            low[i] = All(box.low[axis] - slack);
            high[i] = All(box.high[axis] + slack);
        }
    }
    Int4 operator()(Float4 ox, Float4 oy, Float4 oz, Float4 oreach) const {
        Int4 meets{-1, -1, -1, -1};
        for (int i = 0; i < 3; ++i) {
            const Float4 along = ox * nx[i] + oy * ny[i] + oz * nz[i];
            meets &= (along - oreach <= high[i]) & (along + oreach >= low[i]);
        }
        return meets;
    }
};

bool IsFinite(const Bounds& b) {
    return std::isfinite(b.center.x) && std::isfinite(b.center.y) && std::isfinite(b.center.z) &&
           std::isfinite(b.reach);
}

// Appends the ids from `from` on of those that pass, and of up to three that stand behind `end`.
template <typename Test, typename Lanes>
void Scan(const Test& test, const Lanes& lanes, std::size_t begin, std::size_t end, int from,
          std::vector<int>& out) {
    const Int4 first{from, from, from, from};
    for (std::size_t i = begin; i < end; i += 4) {
        const Int4 id = Load(lanes.id.data() + i);
        const Int4 pass = test(Load(lanes.x.data() + i), Load(lanes.y.data() + i),
                               Load(lanes.z.data() + i), Load(lanes.reach.data() + i)) &
                          (id >= first);
        if (!Any(pass))
            continue;
        for (int lane = 0; lane < 4; ++lane)
            if (pass[lane])
                out.push_back(id[lane]);
    }
}

} // namespace

void BodyGroup::Lanes::Resize(std::size_t size) {
    mSize = size;
    const std::size_t room = size + 4;
    if (id.size() < room) {
        for (std::vector<float>* lane : {&x, &y, &z, &reach})
            lane->resize(std::max(room, 2 * id.size()));
        id.resize(x.size());
    }
    // No question asks for so low an id.
    std::fill_n(id.begin() + static_cast<std::ptrdiff_t>(size), 4, -1);
}

void BodyGroup::Lanes::Push(Id body, const Bounds& bounds) {
    Resize(mSize + 1);
    Set(mSize - 1, body, bounds);
}

void BodyGroup::Lanes::Set(std::size_t at, Id body, const Bounds& bounds) {
    x[at] = bounds.center.x;
    y[at] = bounds.center.y;
    z[at] = bounds.center.z;
    reach[at] = bounds.reach;
    id[at] = body;
}

void BodyGroup::Clear() {
    mAll.Resize(0);
}

void BodyGroup::Add(Id id, const Bounds& bounds) {
    mAll.Push(id, bounds);
}

void BodyGroup::Build() {
    mGrid = mAll.Size() > ScanOnly && chooseCell();
    if (mGrid)
        sortIntoCells();
}

void BodyGroup::Move(int index, const Bounds& bounds) {
    const auto at = static_cast<std::size_t>(index);
    const Id id = mAll.id[at];
    mAll.Set(at, id, bounds);
    if (!mGrid)
        return;
    if (mOutsideIndex[at] >= 0) {
        mOutside.Set(static_cast<std::size_t>(mOutsideIndex[at]), id, bounds);
        return;
    }
    mOutsideIndex[at] = static_cast<int>(mOutside.Size());
    mOutside.Push(id, bounds);
    if (mOutside.Size() > mMaxOutside)
        Build();
}

void BodyGroup::MeetSphere(const Bounds& sphere, int index, Id from, std::vector<Id>& out) {
    const float half = sphere.reach + mCommonReach;
    const Region region{sphere.center, {half, half, half}};
    meet(SphereTest(sphere), &region, index, from, out);
}

void BodyGroup::MeetBox(const BoxShape& box, const Bounds& bounds, int index, Id from,
                        std::vector<Id>& out) {
    // What the box's own rounding may add.
    const Vector3& c = bounds.center;
    const float slack =
        0.000001f * (std::abs(c.x) + std::abs(c.y) + std::abs(c.z)) + 0.0001f * bounds.reach;
    const BoxTest test(box, slack);

    // Three normals of length 1 at right angles bound the region; a flat or crushed box reaches on
    // without an end along those that it lacks.
    const Vector3 axes[3] = {box.Normal(1), box.Normal(3), box.Normal(4)};
    constexpr float Skew = 0.01f;
    bool upright = true;
    Region region{c, {}};
    for (int i = 0; i < 3; ++i) {
        const Vector3& axis = axes[i];
        upright = upright && std::abs(axis.SquareLength() - 1.0f) < Skew &&
                  std::abs(axis.DotProduct(axes[(i + 1) % 3])) < Skew;
        const int face = i == 0 ? 1 : i + 2;
        const float middle = axis.DotProduct(c);
        const float half = std::max(box.high[face] - middle, middle - box.low[face]) + slack;
        const float reach = (half + mCommonReach) * (1.0f + 4.0f * Skew);
        region.half += Vector3(std::abs(axis.x), std::abs(axis.y), std::abs(axis.z)) * reach;
    }
    meet(test, upright ? &region : nullptr, index, from, out);
}

// Without a region the answer may lie anywhere.
template <typename Test>
void BodyGroup::meet(const Test& test, const Region* region, int index, Id from,
                     std::vector<Id>& out) {
    const auto behind = static_cast<std::size_t>(index) + 1;
    if (!mGrid || !region || !meetInGrid(test, *region, mAll.Size() - behind, from, out))
        Scan(test, mAll, behind, mAll.Size(), from, out);
}

// False, with nothing appended, where a scan costs less.
template <typename Test>
bool BodyGroup::meetInGrid(const Test& test, const Region& region, std::size_t scanCost, Id from,
                           std::vector<Id>& out) const {
    const Vector3& c = region.center;
    const float slack = 0.000001f * (std::abs(c.x) + std::abs(c.y) + std::abs(c.z));
    const Vector3 half = region.half * 1.00001f + Vector3(slack, slack, slack);
    const Bounds extremes[2] = {{c - half, 0.0f}, {c + half, 0.0f}};
    if (!isCommon(extremes[0]) || !isCommon(extremes[1]))
        return false;
    const Cell low = cellOf(extremes[0].center);
    const Cell high = cellOf(extremes[1].center);
    const std::size_t buckets = mBucketStart.size() - 1;
    const auto run = static_cast<std::size_t>(high.x - low.x + 1);
    const std::size_t rows =
        static_cast<std::size_t>(high.y - low.y + 1) * static_cast<std::size_t>(high.z - low.z + 1);
    std::size_t cost = (rows + mOutside.Size() / RowCost) * RowCost;
    if (run > buckets || cost >= scanCost)
        return false;

    const std::size_t before = out.size();
    const auto visit = [&](std::size_t first, std::size_t last) {
        const auto begin = static_cast<std::size_t>(mBucketStart[first]);
        const auto end = static_cast<std::size_t>(mBucketStart[last]);
        cost += (end - begin) * VisitCost;
        if (cost < scanCost)
            Scan(test, mSorted, begin, end, from, out);
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
    Scan(test, mOutside, 0, mOutside.Size(), from, out);

    // Cells that share a bucket, and steps of four, bring some twice.
    const auto begin = out.begin() + static_cast<std::ptrdiff_t>(before);
    std::sort(begin, out.end());
    out.erase(std::unique(begin, out.end()), out.end());
    return true;
}

// By the largest of the common sizes, so that a body meets bodies in the cells around its own only.
bool BodyGroup::chooseCell() {
    constexpr std::size_t SampleSize = 256;
    const std::size_t step = std::max<std::size_t>(1, mAll.Size() / SampleSize);
    mSample.clear();
    for (std::size_t i = 0; i < mAll.Size(); i += step)
        if (IsFinite(mAll.At(i)))
            mSample.push_back(mAll.reach[i]);
    if (mSample.empty())
        return false;
    const auto large = mSample.begin() + static_cast<std::ptrdiff_t>(mSample.size() * 31 / 32);
    std::nth_element(mSample.begin(), large, mSample.end());
    const float limit = 2.0f * *large;

    mCommonReach = 0.0f;
    for (std::size_t i = 0; i < mAll.Size(); ++i)
        if (mAll.reach[i] <= limit)
            mCommonReach = std::max(mCommonReach, mAll.reach[i]);
    mCell = 2.0f * mCommonReach;
    return std::isnormal(mCell) && std::isnormal(1.0f / mCell);
}

void BodyGroup::sortIntoCells() {
    const std::size_t count = mAll.Size();
    const std::size_t buckets = std::bit_ceil(2 * count);
    mBucketStart.assign(buckets + 1, 0);
    mBucket.resize(count);
    mOutsideIndex.assign(count, -1);
    mOutside.Resize(0);
    for (std::size_t i = 0; i < count; ++i) {
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
            mOutside.Push(mAll.id[i], bounds);
        }
    }
    mMaxOutside = mOutside.Size() + 8 * static_cast<std::size_t>(std::sqrt(count));

    // From the last to the first, each bucket's start moves down to where it belongs, and bodies of
    // a bucket keep their order.
    int end = 0;
    for (int& start : mBucketStart)
        start = end += start;
    mSorted.Resize(static_cast<std::size_t>(end));
    for (std::size_t i = count; i-- > 0;)
        if (mBucket[i] >= 0)
            mSorted.Set(
                static_cast<std::size_t>(--mBucketStart[static_cast<std::size_t>(mBucket[i])]),
                mAll.id[i], mAll.At(i));
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
