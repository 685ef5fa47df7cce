// SPDX-License-Identifier: MIT
#include "vorn/physics/body_group.hpp"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace Vorn {

namespace {

/// Up to so many bodies a scan is faster than any grid.
constexpr std::size_t ScanOnly = 256;
/// What a row of cells costs to look up, in bodies that a scan passes over meanwhile.
constexpr std::size_t RowCost = 16;

} // namespace

void BodyGroup::Clear() {
    mAll.Resize(0);
    mIds.clear();
    mUsesGrid = false;
}

void BodyGroup::Build() {
    mFirst = 0;
    mPairsKnown = false;
    mUsesGrid = mAll.Size() > ScanOnly && mGrid.ChooseCells(mAll);
    if (mUsesGrid) {
        sort();
        return;
    }
    mPlaces.resize(mIds.size());
    std::iota(mPlaces.begin(), mPlaces.end(), 0);
}

void BodyGroup::sort() {
    mPairsKnown = false;
    mVisited = 0;
    mGrid.Sort(mAll, mFirst, mPlaces);
    mOutsideIndex.assign(mAll.Size(), -1);
    mOutside.Resize(0);
    for (std::size_t index = mFirst; index < mAll.Size(); ++index)
        if (mPlaces[index] < 0) {
            mPlaces[index] = static_cast<int>(mGrid.Sorted().Size() + mOutside.Size());
            mOutsideIndex[index] = static_cast<int>(mOutside.Size());
            mOutside.Push(mIds[index], mAll.At(index));
        }
    mUnmoved = mOutside.Size();
    mMaxOutside = mUnmoved + 8 * static_cast<std::size_t>(std::sqrt(mAll.Size()));
}

void BodyGroup::Move(int index, const Bounds& bounds) {
    const auto at = static_cast<std::size_t>(index);
    const Id id = mIds[at];
    mAll.Set(at, id, bounds);
    if (!mUsesGrid)
        return;
    const int outside = mOutsideIndex[at];
    if (outside >= static_cast<int>(mUnmoved)) {
        mOutside.Set(static_cast<std::size_t>(outside), id, bounds);
        return;
    }
    // What it leaves outside is for no question any more.
    if (outside >= 0)
        mOutside.Set(static_cast<std::size_t>(outside), -1, bounds);
    mOutsideIndex[at] = static_cast<int>(mOutside.Size());
    mOutside.Push(id, bounds);
    if (mOutside.Size() <= mMaxOutside)
        return;
    mUsesGrid = mGrid.ChooseCells(mAll);
    mPairsKnown = false;
    if (mUsesGrid)
        sort();
}

void BodyGroup::MeetSphere(Whom whom, const Bounds& sphere, int index, Id from,
                           std::vector<Id>& out) {
    BodyQuestion question(sphere, SphereStretch, from, NoFilter());
    meet(question, whom, index, out);
}

void BodyGroup::MeetBox(Whom whom, const Bounds& bounds,
                        const std::function<const BoxSides&()>& sides, int index, Id from,
                        std::vector<Id>& out) {
    BodyQuestion question(bounds, BoxStretch, from, BoxFilter(sides));
    meet(question, whom, index, out);
}

template <typename Question>
void BodyGroup::meet(Question& question, Whom whom, int index, std::vector<Id>& out) {
    const std::size_t before = out.size();
    if (whom == Whom::Moved) {
        question.Ask(mOutside, mUnmoved, mOutside.Size(), out);
    } else {
        const auto behind = static_cast<std::size_t>(index) + 1;
        // Bodies that have asked are not asked for any more. Where many are passed over, they leave
        // the grid when they are half of it.
        const std::size_t left = mAll.Size() - behind;
        if (mUsesGrid && !mPairsKnown && left < (mAll.Size() - mFirst) / 2 &&
            mVisited > 32 * left) {
            mFirst = behind;
            sort();
        }
        if (!mUsesGrid || !meetInGrid(question, left, out)) {
            question.Ask(mAll, behind, mAll.Size(), out);
            return;
        }
    }
    // Moved ones come in no order; cells that share a bucket, and steps of four, bring some twice.
    if (out.size() < before + 2)
        return;
    const auto begin = out.begin() + static_cast<std::ptrdiff_t>(before);
    std::sort(begin, out.end());
    out.erase(std::unique(begin, out.end()), out.end());
}

// False, with nothing appended, where a scan costs less.
template <typename Question>
bool BodyGroup::meetInGrid(Question& question, std::size_t scanCost, std::vector<Id>& out) {
    BodyGrid::Window window;
    if (!mGrid.WindowOf(question.Center(), question.HalfWindow(mGrid.CommonReach()), window))
        return false;
    std::size_t cost = window.Rows() * RowCost + mOutside.Size();
    if (cost >= scanCost)
        return false;

    const std::size_t before = out.size();
    for (int z = window.low.z; z <= window.high.z; ++z) {
        for (int y = window.low.y; y <= window.high.y; ++y)
            mGrid.ForRow(y, z, window.low.x, window.high.x, [&](int begin, int end) {
                const auto passed = static_cast<std::size_t>(end - begin);
                mVisited += passed;
                cost += passed;
                if (cost < scanCost)
                    question.Ask(mGrid.Sorted(), static_cast<std::size_t>(begin),
                                 static_cast<std::size_t>(end), out);
            });
        if (cost >= scanCost) {
            out.resize(before);
            return false;
        }
    }
    question.Ask(mOutside, 0, mOutside.Size(), out);
    return true;
}

} // namespace Vorn
