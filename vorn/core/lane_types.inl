// SPDX-License-Identifier: MIT
//
// VORN_LANES floats, one or two fours of them.

// No alias declarations: clang would drop the attributes.
typedef float Lanes __attribute__((vector_size(4 * VORN_LANES), may_alias));
typedef std::int32_t LaneInts __attribute__((vector_size(4 * VORN_LANES), may_alias));
/// Aligned to floats only, as they lie in a Matrix4. Copied by std::memcpy they would take a way
/// through memory.
typedef float LooseLanes __attribute__((vector_size(4 * VORN_LANES), aligned(4), may_alias));
typedef float LooseFour __attribute__((vector_size(16), aligned(4), may_alias));

constexpr std::size_t Fours = VORN_LANES / 4;

inline Float4 FourAt(const float* from) {
    return *reinterpret_cast<const LooseFour*>(from);
}

#if VORN_LANES == 8

/// A bit for each lane that is set.
inline unsigned int Bits(const LaneInts& mask) {
    return static_cast<unsigned int>(_mm256_movemask_ps(__builtin_bit_cast(__m256, mask)));
}
inline Lanes Root(const Lanes& f) {
    return __builtin_bit_cast(Lanes, _mm256_sqrt_ps(__builtin_bit_cast(__m256, f)));
}
inline Lanes All(float f) {
    return __builtin_bit_cast(Lanes, _mm256_set1_ps(f));
}
inline LaneInts FromBytes(const std::uint8_t* bytes) {
    return __builtin_bit_cast(LaneInts, _mm256_cvtepu8_epi32(_mm_loadu_si64(bytes)));
}
/// One lane of each four, in all of that four.
template <int lane>
inline Lanes Spread(const Lanes& f) {
    constexpr int second = 4 + lane;
    return __builtin_shufflevector(f, f, lane, lane, lane, lane, second, second, second, second);
}
/// The same four in all fours.
inline Lanes Twice(const Float4& f) {
    return __builtin_shufflevector(f, f, 0, 1, 2, 3, 0, 1, 2, 3);
}
/// The same from memory, of any alignment.
inline Lanes TwiceAt(const void* from) {
    return __builtin_bit_cast(Lanes, _mm256_broadcast_ps(static_cast<const __m128*>(from)));
}
/// As many fours as there are; `second` is none of them where there is one.
inline Lanes Join(const Float4& first, const Float4& second) {
    return __builtin_shufflevector(first, second, 0, 1, 2, 3, 4, 5, 6, 7);
}

#else

inline unsigned int Bits(const LaneInts& mask) {
    return LaneBits(__builtin_bit_cast(Int4, mask));
}
inline Lanes Root(const Lanes& f) {
    return RootOf(f);
}
inline Lanes All(float f) {
    return AllFour(f);
}
inline LaneInts FromBytes(const std::uint8_t* bytes) {
    return LaneInts{bytes[0], bytes[1], bytes[2], bytes[3]};
}
inline const Float4& Twice(const Float4& f) {
    return f;
}
inline Float4 TwiceAt(const void* from) {
    return *static_cast<const LooseFour*>(from);
}
inline const Float4& Join(const Float4& first, const Float4& /*second*/) {
    return first;
}

#endif
