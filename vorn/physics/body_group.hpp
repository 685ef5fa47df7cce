// SPDX-License-Identifier: MIT
//
// Below the pair walk: the bounds of the bodies of one volume type, which answers who may meet
// whom. Every answer is a superset, at little more than its own cost. Few bodies are scanned for
// each question; of many, those of common size stand in a grid, and the others, and those that have
// moved since, are scanned.
#pragma once

#include "vorn/physics/body_grid.hpp"
#include "vorn/physics/body_lanes.hpp"
#include "vorn/physics/pair_lanes.hpp"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

namespace Vorn {

class BodyGroup {
public:
    using Id = int;
    enum class Whom { All, Moved };

    void Clear();
    /// Ids ascend from call to call.
    void Add(Id id, const Bounds& bounds) {
        mAll.Push(id, bounds);
        mIds.push_back(id);
    }
    /// Call after the last Add.
    void Build();

    /// Where a body stands in the order of space, after Build.
    int PlaceOf(int index) const { return mPlaces[static_cast<std::size_t>(index)]; }

    /// Tells all pairs that may meet, the lower id first, in any order, with some perhaps twice:
    /// writes some to `found.Room(count)`, which has room for `count`, and says by
    /// `found.Took(end)` where they end. False, with some of them told perhaps, where it is better
    /// to ask for each body, or as soon as `found.GoesOn()` is.
    template <typename Found>
    bool FindPairs(const Stretch& stretch, Found& found) {
        return mPairsKnown =
                   MayFindPairs() && findInGrid(stretch, found) && findOutside(stretch, found);
    }
    bool MayFindPairs() const { return mUsesGrid && mOutside.Size() < mAll.Size() / 8; }
    /// Whether that still holds, for all but those that have moved since.
    bool PairsKnown() const { return mPairsKnown; }
    /// Whether it holds for all.
    bool AllStand() const { return mPairsKnown && mOutside.Size() == mUnmoved; }

    /// The bounds of a body that has moved, or is not where Add has it. `index` counts the calls of
    /// Add.
    void Move(int index, const Bounds& bounds);

    /// Appends the ids from `from` on of those later than `index` whose spheres meet the sphere,
    /// ascending: of all, or at least of all that have moved.
    void MeetSphere(Whom whom, const Bounds& sphere, int index, Id from, std::vector<Id>& out);
    /// The same for those whose spheres reach into the box along each of its axes. `sides` is asked
    /// once, where there are any in the neighbourhood at all. An axis that has no length keeps
    /// nobody off; a box that lacks one has `bounds` without an end.
    void MeetBox(Whom whom, const Bounds& bounds, const std::function<const BoxSides&()>& sides,
                 int index, Id from, std::vector<Id>& out);

    /// All of them, ascending.
    const std::vector<Id>& Ids() const { return mIds; }

private:
    template <typename Found>
    bool findInGrid(const Stretch& stretch, Found& found) {
        const BodyLanes& sorted = mGrid.Sorted();
        for (std::size_t first = 0; first < sorted.Size(); first += 4) {
            const BodyGrid::Windows windows = mGrid.WindowsOf(first / 4, stretch);
            for (std::size_t at = first; at < std::min(first + 4, sorted.Size()); ++at) {
                if (!found.GoesOn())
                    return false;
                const std::size_t count = mGrid.AskInFront(at, windows, stretch, mAnswer);
                tell({sorted.Id(at), static_cast<int>(at)}, sorted, 0, count, found);
            }
        }
        return found.GoesOn();
    }
    template <typename Found>
    bool findOutside(const Stretch& stretch, Found& found) {
        const BodyLanes& sorted = mGrid.Sorted();
        mAnswer.resize(std::max(mAnswer.size(), mAll.Size() + BodyLanes::Lanes));
        for (std::size_t at = 0; at < mOutside.Size() && found.GoesOn(); ++at) {
            const Placed placed{mOutside.Id(at), static_cast<int>(sorted.Size() + at)};
            const PairQuestion question(mOutside.At(at), stretch);
            const auto ask = [&](const BodyLanes& lanes, std::size_t base, std::size_t begin) {
                if (begin >= lanes.Size())
                    return;
                const PlaceRange all[] = {
                    {static_cast<int>(begin), static_cast<int>(lanes.Size())}};
                const int* end = question.Ask(lanes, all, mAnswer.data());
                tell(placed, lanes, base, static_cast<std::size_t>(end - mAnswer.data()), found);
            };
            ask(sorted, 0, 0);
            ask(mOutside, sorted.Size(), at + 1);
        }
        return found.GoesOn();
    }
    // `base` is the place of the first of the lanes.
    template <typename Found>
    void tell(const Placed& placed, const BodyLanes& lanes, std::size_t base, std::size_t count,
              Found& found) const {
        PlacedPair* out = found.Room(count);
        const auto mine = std::bit_cast<std::uint64_t>(placed);
        for (std::size_t i = 0; i < count; ++i) {
            const int at = mAnswer[i];
            const Placed other{lanes.Id(static_cast<std::size_t>(at)), static_cast<int>(base) + at};
            // Exchanged, and left out, without a branch, which nobody could predict.
            const auto its = std::bit_cast<std::uint64_t>(other);
            const std::uint64_t change = other.id < placed.id ? mine ^ its : 0;
            *out = {std::bit_cast<Placed>(mine ^ change), std::bit_cast<Placed>(its ^ change)};
            out += other.id != placed.id;
        }
        found.Took(out);
    }
    template <typename Question>
    void meet(Question& question, Whom whom, int index, std::vector<Id>& out);
    template <typename Question>
    bool meetInGrid(Question& question, std::size_t scanCost, std::vector<Id>& out);
    void sort();

    std::vector<Id> mIds;
    BodyLanes mAll; // in the order of their ids
    BodyGrid mGrid;
    BodyLanes mOutside; // not in the grid, or not where they stand in it

    bool mUsesGrid = false;
    bool mPairsKnown = false;
    std::size_t mFirst = 0;   // bodies before it are not in the grid
    std::size_t mUnmoved = 0; // those outside from the start
    std::size_t mMaxOutside = 0;
    std::size_t mVisited = 0;       // since the bodies were sorted
    std::vector<int> mOutsideIndex; // of each body, -1 while it stands in the grid only
    std::vector<int> mPlaces;
    std::vector<int> mAnswer;
};

} // namespace Vorn
