// SPDX-License-Identifier: MIT
//
// The work of pair_lanes.cpp; see lanes.hpp.

inline const Lanes& LanesAt(const float* at) {
    return *reinterpret_cast<const Lanes*>(at);
}

constexpr unsigned int AllLanes = (1u << VORN_LANES) - 1;

/// For each set of lanes those that are in it, one after the other.
struct LaneList {
    alignas(VORN_LANES) std::uint8_t lanes[AllLanes + 1][VORN_LANES];
};
constexpr LaneList MakeLaneList() {
    LaneList list{};
    for (unsigned int bits = 0; bits <= AllLanes; ++bits)
        for (int lane = 0, at = 0; lane < VORN_LANES; ++lane)
            if (bits >> lane & 1)
                list.lanes[bits][at++] = static_cast<std::uint8_t>(lane);
    return list;
}
constexpr LaneList ListOfLanes = MakeLaneList();

/// The question in all lanes: what is written meanwhile might be the question itself, for all that
/// the compiler knows.
struct WideQuestion {
    const Lanes x, y, z, reach, stretched, other, less;

    explicit WideQuestion(const PairQuestion& q)
        : x(All(q.x)), y(All(q.y)), z(All(q.z)), reach(All(q.reach)), stretched(All(q.stretched)),
          other(All(q.other)), less(All(q.less)) {}
};

/// A bit for each of the lanes from the place on that may be met. The larger of two is taken for
/// the one that is asked, and so stretched.
inline unsigned int Meets(const WideQuestion& q, const BodyLanes::Block* blocks,
                          std::size_t place) {
    const BodyLanes::Block& block = blocks[place / BodyLanes::Lanes];
    const std::size_t lane = place % BodyLanes::Lanes;
    const Lanes dx = LanesAt(block.x + lane) - q.x, dy = LanesAt(block.y + lane) - q.y,
                dz = LanesAt(block.z + lane) - q.z;
    const Lanes its = LanesAt(block.reach + lane);
    const Lanes smaller = its < q.reach ? its : q.reach;
    const Lanes sum = q.stretched + q.other * its - q.less * smaller;
    // Two without an end make a NaN of the sum, and meet.
    return ~Bits(dx * dx + dy * dy + dz * dz > sum * sum) & AllLanes;
}

/// Without a branch: who meets whom cannot be predicted.
inline int* Write(unsigned int bits, std::size_t place, int* out) {
    const LaneInts places = FromBytes(ListOfLanes.lanes[bits]) + static_cast<std::int32_t>(place);
    std::memcpy(out, &places, sizeof places);
    return out + std::popcount(bits);
}

int* Ask(const PairQuestion& question, const BodyLanes& bodies, std::span<const PlaceRange> ranges,
         int* out) {
    const WideQuestion wide(question);
    const BodyLanes::Block* const blocks = bodies.Blocks();
    for (const PlaceRange& range : ranges) {
        const auto begin = static_cast<std::size_t>(range.begin);
        const auto end = static_cast<std::size_t>(range.end);
        std::size_t at = begin / VORN_LANES * VORN_LANES;
        unsigned int asked = AllLanes << (begin - at);
        for (; at + VORN_LANES < end; at += VORN_LANES) {
            out = Write(Meets(wide, blocks, at) & asked, at, out);
            asked = AllLanes;
        }
        asked &= AllLanes >> (at + VORN_LANES - end);
        out = Write(Meets(wide, blocks, at) & asked, at, out);
    }
    return out;
}

/// As many pairs of boxes as there are fours.
struct BoxPairs {
    Lanes x, y, z, half;

    BoxPairs(const SlimBox& first, const SlimBox& second)
        : x(Join(first.x, second.x)), y(Join(first.y, second.y)), z(Join(first.z, second.z)),
          half(Join(first.half, second.half)) {}
};

/// Four bits for each pair: those of the axes that keep its boxes apart are not set in `hit` and
/// set in `miss`; where a bit is set in neither, nobody can be sure.
struct Verdicts {
    unsigned int hit, miss;
};

inline Lanes SizeOf(const Lanes& f) {
    return f < 0.0f ? -f : f;
}
inline Lanes AlongAxes(const BoxPairs& a, const Lanes& x, const Lanes& y, const Lanes& z) {
    return a.x * x + a.y * y + a.z * z;
}
template <int edge>
inline Lanes ReachOfEdge(const BoxPairs& a, const BoxPairs& b) {
    return SizeOf(AlongAxes(a, Spread<edge>(b.x), Spread<edge>(b.y), Spread<edge>(b.z))) *
           Spread<edge>(b.half);
}

/// OBBToOBB of `a` and `b`.
inline Verdicts Judge(const BoxPairs& a, const BoxPairs& b) {
    const Lanes distance =
        SizeOf(AlongAxes(a, Spread<3>(b.x - a.x), Spread<3>(b.y - a.y), Spread<3>(b.z - a.z)));
    const Lanes limit = a.half + ReachOfEdge<0>(a, b) + ReachOfEdge<1>(a, b) + ReachOfEdge<2>(a, b);
    const Lanes sizes = Spread<0>(limit) + Spread<1>(limit) + Spread<2>(limit);
    const Lanes slack = (Spread<3>(a.half) + Spread<3>(b.half)) * sizes;
    const Lanes gap = distance - limit;
    return {Bits(gap < -slack), Bits(gap > slack)};
}

Judged JudgePairs(const SlimBox* boxes, std::span<PlacedPair> pairs, PlacedPair* unsure) {
    constexpr unsigned int axes = 7;
    Judged judged{0, 0};
    for (std::size_t i = 0; i < pairs.size(); i += Fours) {
        const std::size_t count = std::min(Fours, pairs.size() - i);
        const PlacedPair some[] = {pairs[i], pairs[i + count - 1]};
        const auto [hit, miss] =
            Judge(BoxPairs(boxes[some[0].first.place], boxes[some[1].first.place]),
                  BoxPairs(boxes[some[0].second.place], boxes[some[1].second.place]));
        for (std::size_t four = 0; four < count; ++four) {
            // Each pair is written first and kept if it belongs there, as above.
            const bool hits = (hit >> 4 * four & axes) == axes;
            const bool misses = (miss >> 4 * four & axes) != 0;
            pairs[judged.hits] = some[four];
            judged.hits += hits;
            unsure[judged.unsure] = some[four];
            judged.unsure += !hits && !misses;
        }
    }
    return judged;
}
