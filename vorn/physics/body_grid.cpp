// SPDX-License-Identifier: MIT
//
// The grid is a counting sort over a hash of cells: M. Teschner, B. Heidelberger, M. Mueller,
// D. Pomeranets, M. Gross, "Optimized Spatial Hashing for Collision Detection of Deformable
// Objects", 2003. The hash is that of a dense grid, wrapped: what stands in a bounded world has its
// cells to itself.
#include "vorn/physics/body_grid.hpp"

#include "vorn/physics/pair_lanes.hpp"

#include <array>
#include <span>

namespace Vorn {

namespace {

/// Cells are counted from the origin; what stands further out stays out of the grid, as a float
/// does not tell neighbours there.
constexpr float MaxCells = 1 << 16;
/// Longer than the window of any body.
constexpr std::size_t LeastRowLength = 16;
constexpr int CellsInX = 4; // at most, to a cell in Y and Z

bool IsFinite(const Bounds& b) {
    return std::isfinite(b.center.x) && std::isfinite(b.center.y) && std::isfinite(b.center.z) &&
           std::isfinite(b.reach);
}

} // namespace

// By the largest of the common sizes, so that a body meets bodies in the cells around its own only.
// Those more than twice as large as three quarters of all are not common: the others would crowd in
// cells of their size.
bool BodyGrid::ChooseCells(const BodyLanes& all) {
    constexpr std::size_t SampleSize = 128;
    const std::size_t step = std::max<std::size_t>(1, all.Size() / SampleSize);
    mSample.clear();
    Vector3 low, high;
    for (std::size_t i = 0; i < all.Size(); i += step) {
        const Bounds bounds = all.At(i);
        if (!IsFinite(bounds))
            continue;
        const Vector3& c = bounds.center;
        if (mSample.empty())
            low = high = c;
        low = {std::min(low.x, c.x), std::min(low.y, c.y), std::min(low.z, c.z)};
        high = {std::max(high.x, c.x), std::max(high.y, c.y), std::max(high.z, c.z)};
        mSample.push_back(bounds.reach);
    }
    if (mSample.empty())
        return false;
    const auto large = mSample.begin() + static_cast<std::ptrdiff_t>(mSample.size() * 3 / 4);
    std::nth_element(mSample.begin(), large, mSample.end());
    const float limit = 2.0f * *large;

    Float4 common{};
    for (std::size_t four = 0; 4 * four < all.Size(); ++four) {
        const Float4 reach = all.FourAt(four).reach;
        common = Pick((reach <= limit) & (reach > common), reach, common);
    }
    mCommonReach = std::max({common[0], common[1], common[2], common[3]});
    mCell = cellFor(all.Size(), high - low);
    mScale = 1.0f / mCell;
    if (!std::isnormal(mCell) || !std::isnormal(mScale))
        return false;
    chooseRows(all.Size(), high - low);
    return true;
}

// So that a window reaches into few rows, and further where these are nearly empty.
float BodyGrid::cellFor(std::size_t count, const Vector3& extent) const {
    constexpr float Company = 6.0f; // bodies in a window's part of a row
    const float least = 2.6f * mCommonReach;
    const float window = 5.0f * mCommonReach;
    const float area = std::max(extent.x, least) * std::max(extent.y, least) *
                       std::max(extent.z, least) / (static_cast<float>(count) * window);
    return std::clamp(std::sqrt(Company * area), least, 4.0f * least);
}

void BodyGrid::chooseRows(std::size_t count, const Vector3& extent) {
    // One more on each side for the windows of those at the edge.
    const auto cells = [this](float length) {
        return static_cast<std::size_t>(std::min(length * mScale, MaxCells)) + 3;
    };
    const std::size_t x = cells(extent.x), y = cells(extent.y), z = cells(extent.z);
    const std::size_t buckets = std::max(4 * LeastRowLength, std::bit_ceil(2 * count));
    std::size_t rows = std::bit_ceil(y * z);
    int fine = CellsInX;
    const auto length = [&] {
        return std::max(LeastRowLength, std::bit_ceil(x * static_cast<std::size_t>(fine)));
    };
    while (fine > 1 && rows * length() > buckets)
        fine /= 2;
    mRowLength = length();
    while (rows * mRowLength > buckets) {
        if (mRowLength > rows && mRowLength > LeastRowLength)
            mRowLength /= 2;
        else
            rows /= 2;
    }
    mScaleX = mScale * static_cast<float>(fine);
    mRowMask = static_cast<unsigned int>(rows - 1);
    mStrideZ = static_cast<unsigned int>(y | 1);
}

// Of four bodies, and -1 of those that the grid does not hold.
Int4 BodyGrid::bucketsOf(const BodyLanes::Four& four) const {
    const float edge = MaxCells * mCell;
    const Int4 held = (four.reach <= mCommonReach) & (SizeOf(four.x) < edge) &
                      (SizeOf(four.y) < edge) & (SizeOf(four.z) < edge);
    const auto cell = [&](const Float4& at, float scale) {
        return __builtin_bit_cast(UInt4, FloorOf(Pick(held, at, Float4{}) * scale));
    };
    const UInt4 column = cell(four.x, mScaleX) & static_cast<unsigned int>(mRowLength - 1);
    const UInt4 bucket = rowOf(cell(four.y, mScale), cell(four.z, mScale)) + column;
    return __builtin_bit_cast(Int4, bucket) | ~held;
}

void BodyGrid::Sort(const BodyLanes& all, std::size_t first, std::vector<int>& places) {
    const std::size_t count = all.Size();
    mStart.assign((mRowMask + 1) * mRowLength + 1, 0);
    places.resize((count + 3) / 4 * 4);
    for (std::size_t i = first / 4 * 4; i < count; i += 4) {
        const Int4 buckets = bucketsOf(all.FourAt(i / 4));
        std::memcpy(&places[i], &buckets, sizeof buckets);
    }
    places.resize(count);
    std::fill_n(places.begin(), first, -1);
    for (std::size_t i = first; i < count; ++i)
        if (places[i] >= 0)
            ++mStart[static_cast<std::size_t>(places[i])];
    int end = 0;
    for (int& start : mStart)
        start = end += start;
    mSorted.Resize(static_cast<std::size_t>(end));
    // From the last to the first, each bucket's start moves down to where it belongs.
    for (std::size_t i = count; i-- > first;)
        if (places[i] >= 0) {
            places[i] = --mStart[static_cast<std::size_t>(places[i])];
            mSorted.Set(static_cast<std::size_t>(places[i]), all.Id(i), all.At(i));
        }
}

BodyGrid::Windows BodyGrid::WindowsOf(std::size_t four, const Stretch& stretch) const {
    const BodyLanes::Four ask = mSorted.FourAt(four);
    const Float4 half = HalfWindows(ask, stretch, mCommonReach);
    return {FloorOf(ask.x * mScaleX),         FloorOf(ask.y * mScale),
            FloorOf(ask.z * mScale),          FloorOf((ask.x - half) * mScaleX),
            FloorOf((ask.y - half) * mScale), FloorOf((ask.x + half) * mScaleX),
            FloorOf((ask.y + half) * mScale), FloorOf((ask.z + half) * mScale)};
}

std::size_t BodyGrid::AskInFront(std::size_t place, const Windows& windows, const Stretch& stretch,
                                 std::vector<int>& out) const {
    const std::size_t lane = place % 4;
    const PairQuestion question(mSorted.At(place), stretch);
    std::size_t count = 0;
    std::array<PlaceRange, 32> ranges; // more than there can be, as cells are chosen
    std::size_t used = 0, places = 0;
    const auto ask = [&] {
        const std::size_t needed = count + places + BodyLanes::Lanes;
        if (out.size() < needed)
            out.resize(2 * needed);
        int* const end = question.Ask(mSorted, std::span(ranges.data(), used), out.data() + count);
        count = static_cast<std::size_t>(end - out.data());
        used = places = 0;
    };
    // Rows that share a place in the hash are visited more than once.
    const auto visit = [&](int begin, int end) {
        if (begin >= end)
            return;
        if (used == ranges.size())
            ask();
        ranges[used++] = {begin, end};
        places += static_cast<std::size_t>(end - begin);
    };

    // The rest of its own row, where only the first stretch begins at the body's own cell; then the
    // rows behind.
    int from = static_cast<int>(place) + 1;
    const int y = windows.y[lane], z = windows.z[lane];
    const int lowX = windows.lowX[lane], highX = windows.highX[lane];
    const int lowY = windows.lowY[lane], highY = windows.highY[lane], highZ = windows.highZ[lane];
    ForRow(y, z, windows.x[lane], highX, [&](int begin, int end) {
        visit(std::max(begin, from), end);
        from = 0;
    });
    for (int behind = y + 1; behind <= highY; ++behind)
        ForRow(behind, z, lowX, highX, visit);
    for (int far = z + 1; far <= highZ; ++far)
        for (int at = lowY; at <= highY; ++at)
            ForRow(at, far, lowX, highX, visit);
    ask();
    return count;
}

bool BodyGrid::WindowOf(const Vector3& center, float half, Window& window) const {
    const Vector3 corner(half, half, half);
    const Vector3 low = center - corner, high = center + corner;
    const float edge = 2.0f * MaxCells * mCell;
    const float least = std::min({low.x, low.y, low.z});
    const float most = std::max({high.x, high.y, high.z});
    if (!(least > -edge && most < edge))
        return false;
    window = {cellOf(low), cellOf(high)};
    return static_cast<std::size_t>(window.Run()) <= mRowLength;
}

} // namespace Vorn
