// SPDX-License-Identifier: MIT
//
// Below the pair walk: the bounds of the bodies of one volume type, which answers whom a body may
// meet. Every answer is a superset, at little more than its own cost.
//
// Bounds stand in blocks of four bodies, which a scan takes at once. Few bodies are scanned
// for each question. Of many, those of common size are sorted into cells of a grid, hashed so that
// the world has no edge, where cells that follow each other along X lie side by side in memory; the
// others, and those that have moved since, are scanned.
#pragma once

#include "vorn/core/float4.hpp"
#include "vorn/math/box_shape.hpp"
#include "vorn/math/vector3.hpp"

#include <cstddef>
#include <functional>
#include <vector>

namespace Vorn {

/// A sphere about a body that holds all of it, rounding included. An infinite reach meets all.
struct Bounds {
    Vector3 center;
    float reach = 0.0f;
};

class BodyGroup {
public:
    using Id = int;

    void Clear();
    /// Ids ascend from call to call.
    void Add(Id id, const Bounds& bounds);
    /// Call after the last Add.
    void Build();

    /// The bounds of a body that has moved. `index` counts the calls of Add.
    void Move(int index, const Bounds& bounds);

    /// Appends the ids from `from` on of those later than `index` whose spheres meet the sphere,
    /// ascending.
    void MeetSphere(const Bounds& sphere, int index, Id from, std::vector<Id>& out);
    /// The same for those whose spheres reach into the box along each of its axes. `sides` is asked
    /// once, where there are any in the neighbourhood at all. An axis that has no length keeps
    /// nobody off; a box that lacks one has `bounds` without an end.
    void MeetBox(const Bounds& bounds, const std::function<const BoxSides&()>& sides, int index,
                 Id from, std::vector<Id>& out);

    /// All of them, ascending.
    const std::vector<Id>& Ids() const { return mIds; }

private:
    /// Four bodies side by side.
    struct Block {
        Float4 x{}, y{}, z{}, reach{};
        Int4 id{};
    };
    /// Bounds in blocks; what is left of the last block has an id below all others.
    class Lanes {
    public:
        std::vector<Block> blocks;

        std::size_t Size() const { return mSize; }
        void Resize(std::size_t size);
        void Push(Id body, const Bounds& bounds);
        void Set(std::size_t at, Id body, const Bounds& bounds);
        Bounds At(std::size_t at) const;

    private:
        std::size_t mSize = 0;
    };
    struct Cell {
        int x, y, z;
    };

    template <typename Question>
    void meet(Question& question, int index, std::vector<Id>& out);
    template <typename Question>
    bool meetInGrid(Question& question, std::size_t scanCost, std::vector<Id>& out);
    bool chooseCell();
    void sortIntoCells();
    bool isCommon(const Bounds& bounds) const;
    Cell cellOf(const Vector3& point) const;
    unsigned int rowOf(int y, int z) const;

    std::vector<Id> mIds;
    Lanes mAll;     // in the order of their ids
    Lanes mSorted;  // in the grid, cell by cell
    Lanes mOutside; // not in the grid, or not where they stand in it

    bool mGrid = false;
    std::size_t mFirst = 0;    // bodies before it are not in the grid
    float mCell = 1.0f;        // edge of a cell
    float mSpread = 1.0f;      // how much wider than need be cells are
    float mCommonReach = 0.0f; // no body in the grid reaches further
    std::size_t mMaxOutside = 0;
    std::size_t mVisited = 0;       // since the bodies were sorted
    std::vector<int> mBucketStart;  // of each bucket, in mSorted; one more behind the last
    std::vector<int> mBucket;       // of each body, -1 outside
    std::vector<int> mOutsideIndex; // of each body, -1 while it stands in the grid only
    std::vector<float> mSample;
};

} // namespace Vorn
