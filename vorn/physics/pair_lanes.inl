// SPDX-License-Identifier: MIT
//
// The work of pair_lanes.cpp, which includes one version for each number of lanes. The lanes never
// meet, and no product is fused with a sum, so that both give the same bits.

// No alias declarations: clang would drop the attributes.
typedef float Lanes __attribute__((vector_size(4 * VORN_LANES), may_alias));
typedef std::int32_t LaneInts __attribute__((vector_size(4 * VORN_LANES), may_alias));

inline const Lanes& LanesAt(const float* at) {
    return *reinterpret_cast<const Lanes*>(at);
}

inline unsigned int Bits(const LaneInts& mask) {
#if VORN_LANES == 8
    return static_cast<unsigned int>(_mm256_movemask_ps(__builtin_bit_cast(__m256, mask)));
#else
    return LaneBits(__builtin_bit_cast(Int4, mask));
#endif
}

constexpr unsigned int AllLanes = (1u << VORN_LANES) - 1;

/// For each set of lanes those that are in it, one after the other.
struct LaneList {
    alignas(4 * VORN_LANES) std::int32_t lanes[AllLanes + 1][VORN_LANES];
};
constexpr LaneList MakeLaneList() {
    LaneList list{};
    for (unsigned int bits = 0; bits <= AllLanes; ++bits)
        for (int lane = 0, at = 0; lane < VORN_LANES; ++lane)
            if (bits >> lane & 1)
                list.lanes[bits][at++] = lane;
    return list;
}
constexpr LaneList ListOfLanes = MakeLaneList();

/// A bit for each of the lanes from the place on that may be met. The larger of two is taken for
/// the one that is asked, and so stretched.
inline unsigned int Meets(const PairQuestion& q, const BodyLanes& bodies, std::size_t place) {
    const BodyLanes::Block& block = bodies.Blocks()[place / BodyLanes::Lanes];
    const std::size_t lane = place % BodyLanes::Lanes;
    const Lanes dx = LanesAt(block.x + lane) - q.x, dy = LanesAt(block.y + lane) - q.y,
                dz = LanesAt(block.z + lane) - q.z;
    const Lanes own = Lanes{} + q.reach, its = LanesAt(block.reach + lane);
    const Lanes smaller = its < own ? its : own;
    const Lanes sum = q.stretched + q.other * its - q.less * smaller;
    // Two without an end make a NaN of the sum, and meet.
    return ~Bits(dx * dx + dy * dy + dz * dz > sum * sum) & AllLanes;
}

/// Without a branch: who meets whom cannot be predicted.
inline int* Write(unsigned int bits, std::size_t place, int* out) {
    const LaneInts lanes = *reinterpret_cast<const LaneInts*>(ListOfLanes.lanes[bits]);
    const LaneInts places = lanes + static_cast<std::int32_t>(place);
    std::memcpy(out, &places, sizeof places);
    return out + std::popcount(bits);
}

int* Ask(const PairQuestion& question, const BodyLanes& bodies, std::span<const PlaceRange> ranges,
         int* out) {
    for (const PlaceRange& range : ranges) {
        std::size_t at = range.begin / VORN_LANES * VORN_LANES;
        unsigned int asked = AllLanes << (range.begin - at);
        for (; at + VORN_LANES < range.end; at += VORN_LANES) {
            out = Write(Meets(question, bodies, at) & asked, at, out);
            asked = AllLanes;
        }
        asked &= AllLanes >> (at + VORN_LANES - range.end);
        out = Write(Meets(question, bodies, at) & asked, at, out);
    }
    return out;
}

Judged JudgePairs(const SlimBox* boxes, std::span<PlacedPair> pairs, PlacedPair* unsure) {
    Judged judged{0, 0};
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        // Each pair is written first and kept if it belongs there, as above.
        const PlacedPair pair = pairs[i];
        const auto [hit, sure] = Judge(boxes[pair.first.place], boxes[pair.second.place]);
        pairs[judged.hits] = pair;
        judged.hits += hit;
        unsure[judged.unsure] = pair;
        judged.unsure += !sure;
    }
    return judged;
}
