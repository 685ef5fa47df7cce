// SPDX-License-Identifier: MIT
//
// Below BodyGroup: bodies of common size sorted into cells. A row of cells runs along X; those that
// follow each other in it lie side by side in memory. Rows are hashed, and cells wrap within a row,
// so the world has no edge.
#pragma once

#include "vorn/physics/body_lanes.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

namespace Vorn {

class BodyGrid {
public:
    /// Sets sizes by what most bodies need. False where no grid serves them.
    bool ChooseCells(const BodyLanes& all);

    /// No body in the grid reaches further.
    float CommonReach() const { return mCommonReach; }

    /// Sorts those in that it holds, from index `first` on; the places of the others are -1.
    void Sort(const BodyLanes& all, std::size_t first, std::vector<int>& places);
    const BodyLanes& Sorted() const { return mSorted; }

    struct Cell {
        int x, y, z;
    };
    struct Window {
        Cell low, high;

        int Run() const { return high.x - low.x + 1; }
        std::size_t Rows() const {
            return static_cast<std::size_t>(high.y - low.y + 1) *
                   static_cast<std::size_t>(high.z - low.z + 1);
        }
    };
    /// The cells that a cube reaches into. False where it leaves the countable world, or is longer
    /// than a row.
    bool WindowOf(const Vector3& center, float half, Window& window) const;

    /// Calls `visit(begin, end)` for the sorted bodies of each stretch of a row.
    template <typename Visit>
    void ForRow(int y, int z, int lowX, int highX, Visit&& visit) const {
        const std::size_t row = rowOf(static_cast<unsigned int>(y), static_cast<unsigned int>(z));
        const auto first = static_cast<std::size_t>(lowX) & (mRowLength - 1);
        const auto last = first + static_cast<std::size_t>(highX - lowX) + 1;
        visit(mStart[row + first], mStart[row + std::min(last, mRowLength)]);
        if (last > mRowLength)
            visit(mStart[row], mStart[row + last - mRowLength]);
    }

    /// Where four bodies stand, and which cells the windows of their questions reach into.
    struct Windows {
        Int4 x, y, z;
        Int4 lowX, lowY, highX, highY, highZ;
    };
    /// Of the sorted bodies from place 4 * four on.
    Windows WindowsOf(std::size_t four, const Stretch& stretch) const;

    /// Asks for those in the half of the neighbourhood of a sorted body that lies in front of it,
    /// so that a pair comes up once, wherever its two stand, or perhaps twice. The window of either
    /// holds the other: a body that is asked is stretched more than one that asks, and none is
    /// larger than the common reach. `windows` are those of the body and its neighbours. Writes
    /// places in Sorted() to the front of `out`, and returns how many.
    std::size_t AskInFront(std::size_t place, const Windows& windows, const Stretch& stretch,
                           std::vector<int>& out) const;

private:
    Cell cellOf(const Vector3& point) const {
        const Int4 cell =
            FloorOf(Float4{point.x, point.y, point.z} * Float4{mScaleX, mScale, mScale});
        return {cell[0], cell[1], cell[2]};
    }
    /// Of one row, or of four.
    template <typename Unsigned>
    Unsigned rowOf(const Unsigned& y, const Unsigned& z) const {
        return ((y + z * mStrideZ) & mRowMask) * static_cast<unsigned int>(mRowLength);
    }
    Int4 bucketsOf(const BodyLanes::Four& four) const;
    float cellFor(std::size_t count, const Vector3& extent) const;
    void chooseRows(std::size_t count, const Vector3& extent);

    BodyLanes mSorted;       // row by row, cell by cell
    std::vector<int> mStart; // of each bucket, in mSorted; one more behind the last
    std::vector<float> mSample;

    float mCommonReach = 0.0f;
    float mCell = 1.0f;                  // edge of a cell in Y and Z
    float mScale = 1.0f, mScaleX = 1.0f; // cells to a unit of length
    std::size_t mRowLength = 1;
    unsigned int mRowMask = 0, mStrideZ = 1;
};

} // namespace Vorn
