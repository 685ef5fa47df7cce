// SPDX-License-Identifier: MIT
//
// The evaluation of many bones at once, for skeleton.cpp; see lanes.hpp. Sines and arc cosines are
// polynomials, good to some units in the last place.

#if VORN_LANES == 8
/// Fours from eight lanes, as Transpose below leaves them.
inline Float4 Four(const Lanes (&columns)[4], std::size_t lane) {
    const Lanes& both = columns[lane % 4];
    return lane < 4 ? __builtin_shufflevector(both, both, 0, 1, 2, 3)
                    : __builtin_shufflevector(both, both, 4, 5, 6, 7);
}
inline void Join(const Float4* fours, Lanes (&columns)[4]) {
    for (int i = 0; i < 4; ++i)
        columns[i] = Join(fours[i], fours[i + 4]);
}
inline void Transpose(Lanes (&m)[4]) {
    const Lanes low0 = __builtin_shufflevector(m[0], m[1], 0, 8, 1, 9, 4, 12, 5, 13);
    const Lanes high0 = __builtin_shufflevector(m[0], m[1], 2, 10, 3, 11, 6, 14, 7, 15);
    const Lanes low1 = __builtin_shufflevector(m[2], m[3], 0, 8, 1, 9, 4, 12, 5, 13);
    const Lanes high1 = __builtin_shufflevector(m[2], m[3], 2, 10, 3, 11, 6, 14, 7, 15);
    m[0] = __builtin_shufflevector(low0, low1, 0, 1, 8, 9, 4, 5, 12, 13);
    m[1] = __builtin_shufflevector(low0, low1, 2, 3, 10, 11, 6, 7, 14, 15);
    m[2] = __builtin_shufflevector(high0, high1, 0, 1, 8, 9, 4, 5, 12, 13);
    m[3] = __builtin_shufflevector(high0, high1, 2, 3, 10, 11, 6, 7, 14, 15);
}
#else
inline const Float4& Four(const Lanes (&columns)[4], std::size_t lane) {
    return columns[lane];
}
inline void Join(const Float4* fours, Lanes (&columns)[4]) {
    std::copy_n(fours, 4, columns);
}
#endif

/// The rows of a matrix, as many in each as there are fours.
struct Rows {
    Lanes r[4 / Fours];
};
inline Rows Join(const Float4 (&rows)[4]) {
    Rows joined;
    for (std::size_t i = 0; i < std::size(joined.r); ++i)
        joined.r[i] = Join(rows[Fours * i], rows[Fours * i + Fours - 1]);
    return joined;
}
inline Rows RowsOf(const Matrix4& matrix) {
    Rows rows;
    for (std::size_t i = 0; i < std::size(rows.r); ++i)
        rows.r[i] = *reinterpret_cast<const LooseLanes*>(matrix.m + VORN_LANES * i);
    return rows;
}
inline void Store(const Rows& rows, Matrix4& matrix) {
    for (std::size_t i = 0; i < std::size(rows.r); ++i)
        *reinterpret_cast<LooseLanes*>(matrix.m + VORN_LANES * i) = rows.r[i];
}

/// The rows of the right one are in all fours. Each element is summed up in the order of Matrix4's
/// own product.
inline Rows Product(const Rows& left, const Lanes& r0, const Lanes& r1, const Lanes& r2,
                    const Lanes& r3) {
    Rows product;
    for (std::size_t i = 0; i < std::size(left.r); ++i) {
        const Lanes& l = left.r[i];
        product.r[i] =
            Spread<0>(l) * r0 + Spread<1>(l) * r1 + Spread<2>(l) * r2 + Spread<3>(l) * r3;
    }
    return product;
}

inline Lanes Bitwise(const LaneInts& bits) {
    return __builtin_bit_cast(Lanes, bits);
}
inline LaneInts Bitwise(const Lanes& f) {
    return __builtin_bit_cast(LaneInts, f);
}
inline Lanes Pick(const LaneInts& mask, const Lanes& a, const Lanes& b) {
    return Bitwise((mask & Bitwise(a)) | (~mask & Bitwise(b)));
}

/// Sines of angles up to some hundreds, by the nearest multiple of pi and a polynomial.
inline Lanes SineOf(const Lanes& angle) {
    constexpr float round = 12582912.0f; // 1.5 * 2^23: what is added to it becomes a whole number
    const Lanes raised = angle * 0.318309886f + round;
    const Lanes turns = raised - round;
    // Pi in two parts, the first of so few digits that its multiples are exact.
    const Lanes x = (angle - turns * 3.140625f) - turns * 9.67653590e-4f;
    const Lanes y = x * x;
    const Lanes tail =
        (-0.166666596f + y * 0.00833306625f) + (y * y) * (-0.000198096029f + y * 2.60578064e-6f);
    return Bitwise(Bitwise(x + (x * y) * tail) ^ (Bitwise(raised) << 31));
}

/// Of cosines from 0 to 1: the root of what is missing to 1, times a polynomial.
inline Lanes ArcOf(const Lanes& c) {
    const Lanes c2 = c * c;
    const Lanes low = (1.57079630f - c * 0.214598711f) + c2 * (0.0889775794f - c * 0.0501659987f);
    const Lanes high =
        (0.0308685146f - c * 0.0170544214f) + c2 * (0.00664602656f - c * 0.00125575390f);
    return Root(1.0f - c) * (low + (c2 * c2) * high);
}

/// D3DXQuaternionSlerp.
inline void Slerp(const Lanes (&a)[4], const Lanes (&b)[4], const Lanes& along, Lanes (&turn)[4]) {
    const Lanes product = a[0] * b[0] + a[1] * b[1] + a[2] * b[2] + a[3] * b[3];
    const LaneInts sign = Bitwise(product) & std::numeric_limits<std::int32_t>::min();
    const Lanes cosine = Bitwise(Bitwise(product) ^ sign);
    const LaneInts wide = (1.0f - cosine) > 1e-6f;
    const Lanes c = Bitwise(wide & Bitwise(cosine));
    const Lanes arc = ArcOf(c);
    const Lanes perSine = 1.0f / Root((1.0f - c) * (1.0f + c));
    const Lanes rest = 1.0f - along;
    const Lanes fromA = Pick(wide, SineOf(rest * arc) * perSine, rest);
    const Lanes fromB = Bitwise(Bitwise(Pick(wide, SineOf(along * arc) * perSine, along)) ^ sign);
    for (int i = 0; i < 4; ++i)
        turn[i] = fromA * a[i] + fromB * b[i];
}

/// The first three rows of a bone's local matrix; the fourth is 0, 0, 0, 1.
struct LocalRows {
    Float4 r[3];
};

/// The keys at both ends of each bone's interval: time and place together, and the turn.
struct Intervals {
    Float4 from[MostBones], fromTurn[MostBones], to[MostBones], toTurn[MostBones];

    void Set(std::size_t i, const BoneKey& a, const BoneKey& b) {
        load(a, from[i], fromTurn[i]);
        load(b, to[i], toTurn[i]);
    }
    /// Gives no sound pose.
    void Clear(std::size_t i) { from[i] = fromTurn[i] = to[i] = toTurn[i] = Float4{}; }

private:
    static void load(const BoneKey& key, Float4& timeAndPlace, Float4& turn) {
        static_assert(sizeof(BoneKey) == 64); // as it is where the place follows the time
        timeAndPlace = FourAt(&key.mTime);
        turn = FourAt(&key.mRotation.x);
    }
};

/// The poses of the bones from `first` on. Returns a bit for each that is sound; the others mean
/// nothing.
inline unsigned int Interpolate(const Intervals& intervals, std::size_t first, float time,
                                LocalRows* poses) {
    Lanes from[4], fromTurn[4], to[4], toTurn[4];
    Join(intervals.from + first, from);
    Join(intervals.fromTurn + first, fromTurn);
    Join(intervals.to + first, to);
    Join(intervals.toTurn + first, toTurn);
    Transpose(from);
    Transpose(fromTurn);
    Transpose(to);
    Transpose(toTurn);

    const Lanes along = (time - from[0]) / (to[0] - from[0]);
    Lanes turn[4], at[3];
    Slerp(fromTurn, toTurn, along, turn);
    for (int i = 0; i < 3; ++i)
        at[i] = from[i + 1] + (to[i + 1] - from[i + 1]) * along;

    // By D3DXMatrixRotationQuaternion, transposed.
    const Lanes &x = turn[0], &y = turn[1], &z = turn[2], &w = turn[3];
    Lanes rows[3][4] = {{1 - 2 * (y * y + z * z), 2 * (x * y - z * w), 2 * (x * z + y * w), at[0]},
                        {2 * (x * y + z * w), 1 - 2 * (x * x + z * z), 2 * (y * z - x * w), at[1]},
                        {2 * (x * z - y * w), 2 * (y * z + x * w), 1 - 2 * (x * x + y * y), at[2]}};
    for (int r = 0; r < 3; ++r) {
        Transpose(rows[r]);
        for (std::size_t lane = 0; lane < VORN_LANES; ++lane)
            poses[lane].r[r] = Four(rows[r], lane);
    }

    // Not where anything is no number, or so large that a product may be none.
    const Lanes size = x * x + y * y + z * z + w * w;
    const Lanes nothing = (at[0] + at[1] + at[2]) * 0.0f;
    return Bits((size < 1e30f) & (nothing == 0.0f) & (along < 64.0f) & (along > -64.0f));
}

/// What an evaluation keeps for each bone. `queue` is the walk's, and belongs to no bone.
struct Work {
    Intervals intervals;
    LocalRows local[MostBones];
    std::uint8_t sound[MostBones / VORN_LANES];
    int queue[MostBones];
};

/// Goes to all the memory that is spread out, one bone after the other and nothing else between, so
/// that the processor waits for much of it at once.
inline void Gather(Bone* bones, std::size_t count, bool restart, float time, Intervals& intervals) {
    for (std::size_t i = 0; i < count; ++i) {
        Bone& bone = bones[i];
        StepCursor(bone, restart, time);
        if (HasInterval(bone))
            intervals.Set(i, bone.mKeys[bone.mCurrentKey - 1], bone.mKeys[bone.mCurrentKey]);
        else
            intervals.Clear(i);
        Touch(&bone.mOffset);
        Touch(&bone.mFinal);
        Touch(&bone.mWorld);
        if (!bone.mChildren.empty())
            Touch(bone.mChildren.data());
    }
    for (; count % VORN_LANES != 0; ++count)
        intervals.Clear(count);
}

inline void Place(Bone& bone, const Bone* parent, const LocalRows& local) {
    constexpr Float4 last = {0, 0, 0, 1};
    Rows world;
    if (parent)
        world = Product(RowsOf(parent->mWorld), TwiceAt(&local.r[0]), TwiceAt(&local.r[1]),
                        TwiceAt(&local.r[2]), Twice(last));
    else
        world = Join({local.r[0], local.r[1], local.r[2], last});
    Store(world, bone.mWorld);
    const float* const offset = bone.mOffset.m;
    Store(Product(world, TwiceAt(offset), TwiceAt(offset + 4), TwiceAt(offset + 8),
                  TwiceAt(offset + 12)),
          bone.mFinal);
}

/// Calls `place` with each bone, its parent or null, and its index: root after root, and below each
/// the parents before their children, whatever their order in the array. A hierarchy that runs in a
/// ring is no hierarchy, and ends when every bone could have had its turn. `queue` has a place for
/// each bone.
template <typename PlaceBone>
inline void Walk(Mesh& mesh, int* queue, const PlaceBone& place) {
    Bone* const bones = mesh.mBones.data();
    const std::size_t count = mesh.mBones.size();
    for (const int root : mesh.mRoots) {
        std::size_t queued = std::min<std::size_t>(count, 1);
        if (queued > 0)
            queue[0] = root;
        for (std::size_t turn = 0; turn < queued; ++turn) {
            const auto index = static_cast<std::size_t>(queue[turn]); // huge, if negative
            if (index >= count)
                continue;
            Bone& bone = bones[index];
            const auto above = static_cast<std::size_t>(bone.mParent);
            place(bone, above < count ? &bones[above] : nullptr, index);
            for (const int child : bone.mChildren) {
                if (queued == count)
                    break;
                queue[queued++] = child;
            }
        }
    }
}

void Evaluate(Mesh& mesh, bool restart) {
    Work work; // what is used of it is written first
    const std::size_t count = mesh.mBones.size();
    Gather(mesh.mBones.data(), count, restart, mesh.mTime, work.intervals);
    for (std::size_t first = 0; first < count; first += VORN_LANES)
        work.sound[first / VORN_LANES] = static_cast<std::uint8_t>(
            Interpolate(work.intervals, first, mesh.mTime, work.local + first));
    Walk(mesh, work.queue, [&](Bone& bone, const Bone* parent, std::size_t index) {
        if (work.sound[index / VORN_LANES] >> index % VORN_LANES & 1)
            Place(bone, parent, work.local[index]);
        else
            PlaceAlone(bone, parent, mesh.mTime);
    });
}
