// SPDX-License-Identifier: MIT
//
// Below the pair walk: pairs of bodies that hit each other, found in any order and asked for in
// that of the list.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <span>
#include <utility>
#include <vector>

namespace Vorn {

class PairHits {
public:
    using Id = int;

    void Clear() { mFound.clear(); }
    /// The first has the lower id.
    void Add(Id first, Id second) { mFound.emplace_back(first, second); }
    std::size_t Found() const { return mFound.size(); }
    /// Forgets all but the first so many.
    void Shorten(std::size_t found) { mFound.resize(found); }

    /// Call after the last Add, with the number of ids.
    void Sort(std::size_t ids) {
        mStart.assign(ids + 1, 0);
        for (const auto& [first, second] : mFound)
            ++mStart[static_cast<std::size_t>(first)];
        std::partial_sum(mStart.begin(), mStart.end(), mStart.begin());
        mSecond.resize(mFound.size());
        for (const auto& [first, second] : mFound)
            mSecond[--mStart[static_cast<std::size_t>(first)]] = second;
        for (std::size_t id = 0; id < ids; ++id)
            if (mStart[id + 1] - mStart[id] > 1)
                std::sort(mSecond.data() + mStart[id], mSecond.data() + mStart[id + 1]);
    }
    /// Whom a body hits of those later than itself stands from Start of it to that of the next,
    /// ascending; one may stand there twice.
    std::size_t Start(Id first) const { return mStart[static_cast<std::size_t>(first)]; }
    std::size_t Size() const { return mSecond.size(); }
    Id operator[](std::size_t at) const { return mSecond[at]; }
    std::span<const Id> Of(Id first) const {
        return {mSecond.data() + Start(first), Start(first + 1) - Start(first)};
    }

private:
    std::vector<std::pair<Id, Id>> mFound;
    std::vector<std::uint32_t> mStart; // of each body, in mSecond; one more behind the last
    std::vector<Id> mSecond;
};

} // namespace Vorn
