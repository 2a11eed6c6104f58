/// \file
/// Vectors of bytes and of 16-bit lanes, and the walk of a row by them. Included by the *_simd.cpp sources
/// alone, once for each level; everything is in an unnamed namespace so that no level's code is taken for
/// another's.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

// The intrinsics of g++ 12 take a variable that was never set for a register whose contents don't matter.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wuninitialized"
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif
#include <immintrin.h>
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic pop
#endif

namespace vfil {
namespace {

// The prefix of the level's intrinsics, and the ending of those that see a register as plain bits.
#if defined(__AVX512BW__)
using Register = __m512i;
#define VFIL_MM(name) _mm512_##name
#define VFIL_BITS(name) _mm512_##name##_si512
#elif defined(__AVX2__)
using Register = __m256i;
#define VFIL_MM(name) _mm256_##name
#define VFIL_BITS(name) _mm256_##name##_si256
#else
using Register = __m128i;
#define VFIL_MM(name) _mm_##name
#define VFIL_BITS(name) _mm_##name##_si128
#endif

/// Bytes in a vector.
constexpr std::size_t kBytes = sizeof(Register);

/// A vector of bytes, or of any samples that are only moved.
struct U8 {
    Register bits;
};

/// A vector of 16-bit lanes.
struct U16 {
    Register bits;
};

/// A vector of bytes as 16-bit lanes, in the order that Narrow undoes.
struct U16Pair {
    U16 lo, hi;
};

inline U8 Load(const std::uint8_t* p)
{
    return {VFIL_BITS(loadu)(reinterpret_cast<const Register*>(p))};
}

inline void Store(std::uint8_t* p, U8 v)
{
    VFIL_BITS(storeu)(reinterpret_cast<Register*>(p), v.bits);
}

/// Stores around the cache, to a multiple of kBytes. See FinishStreaming.
inline void StoreStreaming(std::uint8_t* p, U8 v)
{
    VFIL_BITS(stream)(reinterpret_cast<Register*>(p), v.bits);
}

/// Asks for the line of the cache that holds p.
inline void Prefetch(const std::uint8_t* p)
{
    _mm_prefetch(reinterpret_cast<const char*>(p), _MM_HINT_T0);
}

inline U8 SplatU32(std::uint32_t v)
{
    return {VFIL_MM(set1_epi32)(static_cast<int>(v))};
}

inline U8 SplatU64(std::uint64_t v)
{
#if defined(__AVX512BW__)
    return {_mm512_set1_epi64(static_cast<long long>(v))};
#else
    return {VFIL_MM(set1_epi64x)(static_cast<long long>(v))};
#endif
}

/// Each of kBytes / 4 bytes in the lowest byte of 32 bits, the rest of which are zero.
inline U8 LoadEachAs32(const std::uint8_t* p)
{
#if defined(__AVX512BW__)
    return {_mm512_cvtepu8_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)))};
#elif defined(__AVX2__)
    return {_mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)))};
#else
    std::int32_t bytes;
    std::memcpy(&bytes, p, sizeof bytes);
    return {_mm_unpacklo_epi16(_mm_unpacklo_epi8(_mm_cvtsi32_si128(bytes), __m128i{}), __m128i{})};
#endif
}

/// Each pair of kBytes / 2 bytes in the lower half of 32 bits, the rest of which are zero.
inline U8 LoadPairsAs32(const std::uint8_t* p)
{
#if defined(__AVX512BW__)
    return {_mm512_cvtepu16_epi32(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)))};
#elif defined(__AVX2__)
    return {_mm256_cvtepu16_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)))};
#else
    return {_mm_unpacklo_epi16(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)), __m128i{})};
#endif
}

inline U8 operator&(U8 a, U8 b)
{
    return {VFIL_BITS(and)(a.bits, b.bits)};
}

inline U8 operator|(U8 a, U8 b)
{
    return {VFIL_BITS(or)(a.bits, b.bits)};
}

inline U8 operator^(U8 a, U8 b)
{
    return {VFIL_BITS(xor)(a.bits, b.bits)};
}

inline U8 AddClip(U8 a, U8 b)
{
    return {VFIL_MM(adds_epu8)(a.bits, b.bits)};
}

/// The difference, 0 where b is larger.
inline U8 SubClip(U8 a, U8 b)
{
    return {VFIL_MM(subs_epu8)(a.bits, b.bits)};
}

inline U8 AbsDiff(U8 a, U8 b)
{
    return {VFIL_BITS(or)(VFIL_MM(subs_epu8)(a.bits, b.bits), VFIL_MM(subs_epu8)(b.bits, a.bits))};
}

inline U8 Max(U8 a, U8 b)
{
    return {VFIL_MM(max_epu8)(a.bits, b.bits)};
}

inline U8 Min(U8 a, U8 b)
{
    return {VFIL_MM(min_epu8)(a.bits, b.bits)};
}

/// (a + b + 1) / 2.
inline U8 Average(U8 a, U8 b)
{
    return {VFIL_MM(avg_epu8)(a.bits, b.bits)};
}

/// Moves each 64 bits up.
template <int count>
inline U8 ShiftLeft64(U8 v)
{
    return {VFIL_MM(slli_epi64)(v.bits, count)};
}

/// Moves each 32 bits up.
template <int count>
inline U8 ShiftLeft32(U8 v)
{
    return {VFIL_MM(slli_epi32)(v.bits, count)};
}

#if defined(__AVX2__)
/// Bytes by their index in each 16; the same indices serve every 16.
inline Register Shuffle16(Register v, std::uint64_t low, std::uint64_t high)
{
    const __m128i indices = _mm_set_epi64x(static_cast<long long>(high), static_cast<long long>(low));
#if defined(__AVX512BW__)
    return _mm512_shuffle_epi8(v, _mm512_broadcast_i32x4(indices));
#else
    return _mm256_shuffle_epi8(v, _mm256_broadcastsi128_si256(indices));
#endif
}
#endif

/// The lowest byte of each 32 bits, in all four.
inline U8 SplatLowBytes(U8 v)
{
#if defined(__AVX2__)
    return {Shuffle16(v.bits, 0x0404'0404'0000'0000, 0x0C0C'0C0C'0808'0808)};
#else
    const U8 low = v & SplatU32(0xFF);
    const U8 two = low | ShiftLeft32<8>(low); // [x x 0 0]
    return two | ShiftLeft32<16>(two);        // [x x x x]
#endif
}

inline U16 Splat(int v)
{
    return {VFIL_MM(set1_epi16)(static_cast<short>(v))};
}

/// Pixels' worth of 16-bit lanes, the first of them in the lowest bits of v.
inline U16 SplatPixel(std::uint64_t v)
{
    return {SplatU64(v).bits};
}

inline U16 operator+(U16 a, U16 b)
{
    return {VFIL_MM(add_epi16)(a.bits, b.bits)};
}

inline U16 operator-(U16 a, U16 b)
{
    return {VFIL_MM(sub_epi16)(a.bits, b.bits)};
}

inline U16 operator*(U16 a, U16 b)
{
    return {VFIL_MM(mullo_epi16)(a.bits, b.bits)};
}

inline U16 operator&(U16 a, U16 b)
{
    return {VFIL_BITS(and)(a.bits, b.bits)};
}

inline U16 operator|(U16 a, U16 b)
{
    return {VFIL_BITS(or)(a.bits, b.bits)};
}

inline U16 operator^(U16 a, U16 b)
{
    return {VFIL_BITS(xor)(a.bits, b.bits)};
}

template <int count>
inline U16 ShiftRight(U16 v)
{
    return {VFIL_MM(srli_epi16)(v.bits, count)};
}

inline U16 ShiftRight(U16 v, int count)
{
    return {VFIL_MM(srl_epi16)(v.bits, _mm_cvtsi32_si128(count))};
}

template <int count>
inline U16 ShiftLeft(U16 v)
{
    return {VFIL_MM(slli_epi16)(v.bits, count)};
}

/// The upper 16 bits of the products.
inline U16 MulHigh(U16 a, U16 b)
{
    return {VFIL_MM(mulhi_epu16)(a.bits, b.bits)};
}

/// The sum of unsigned lanes, limited to 65535.
inline U16 AddClip(U16 a, U16 b)
{
    return {VFIL_MM(adds_epu16)(a.bits, b.bits)};
}

/// The distance of unsigned lanes.
inline U16 AbsDiff(U16 a, U16 b)
{
    return {VFIL_BITS(or)(VFIL_MM(subs_epu16)(a.bits, b.bits), VFIL_MM(subs_epu16)(b.bits, a.bits))};
}

/// (a + b + 1) / 2 of unsigned lanes.
inline U16 Average(U16 a, U16 b)
{
    return {VFIL_MM(avg_epu16)(a.bits, b.bits)};
}

/// The same of whatever samples the bytes are.
template <class Sample>
inline U8 AverageOf(U8 a, U8 b)
{
    if constexpr (sizeof(Sample) == 1) {
        return Average(a, b);
    } else {
        return {Average(U16{a.bits}, U16{b.bits}).bits};
    }
}

inline U16 MaxSigned(U16 a, U16 b)
{
    return {VFIL_MM(max_epi16)(a.bits, b.bits)};
}

inline U16 MinSigned(U16 a, U16 b)
{
    return {VFIL_MM(min_epi16)(a.bits, b.bits)};
}

/// All ones in negative lanes.
inline U16 SignMask(U16 v)
{
    return {VFIL_MM(srai_epi16)(v.bits, 15)};
}

/// The fourth lane of each pixel of four, in all four.
inline U16 SplatAlpha(U16 v)
{
#if defined(__AVX2__)
    return {Shuffle16(v.bits, 0x0706'0706'0706'0706, 0x0F0E'0F0E'0F0E'0F0E)}; // one shuffle instead of two
#else
    return {VFIL_MM(shufflehi_epi16)(VFIL_MM(shufflelo_epi16)(v.bits, 0xFF), 0xFF)};
#endif
}

inline U16Pair Widen(U8 v)
{
    const Register zero{};
    return {{VFIL_MM(unpacklo_epi8)(v.bits, zero)}, {VFIL_MM(unpackhi_epi8)(v.bits, zero)}};
}

/// Limits signed lanes to 0 .. 255.
inline U8 Narrow(U16Pair v)
{
    return {VFIL_MM(packus_epi16)(v.lo.bits, v.hi.bits)};
}

/// a * b / 255 rounded to nearest, of lanes of 0 .. 255. 65025 + 128 fits 16 bits, and the quotient of such a
/// number by 255 is its product with 257, less 16 bits.
inline U16 NormMult(U16 a, U16 b)
{
    return MulHigh(a * b + Splat(128), Splat(257));
}

/// NormMult of a value of -255 .. 255, rounded on its magnitude.
inline U16 SignedNormMult(U16 alpha, U16 value)
{
    const U16 sign = SignMask(value);
    return (NormMult(alpha, (value ^ sign) - sign) ^ sign) - sign;
}

/// (high * 65536 + low) / 65535 rounded to nearest, at most 65535. With x = that number + 32768 the result is
/// the high half of x + (x >> 16): the high half of x and the carry out of the sum of its halves. The halves
/// h and l carry where (h & l) + ((h ^ l) >> 1), half their sum, reaches 32768.
inline U16 Ratio(U16 high, U16 low)
{
    const U16 h = AddClip(high, ShiftRight<15>(low));
    const U16 l = low ^ Splat(0x8000);
    return AddClip(h, ShiftRight<15>((h & l) + ShiftRight<1>(h ^ l)));
}

/// a * b / 65535 rounded to nearest. With halves h and l of x = a * b + 32767, x / 65535 is h, and one more
/// where h + l reaches 65535: where half of h + l + 1 reaches 32768.
inline U16 NormMultFull(U16 a, U16 b)
{
    const U16 low = a * b;
    const U16 h = MulHigh(a, b) + ShiftRight<15>(Average(low, Splat(0x7FFE)));
    const U16 l = low + Splat(0x7FFF);
    return h + ShiftRight<15>(Average(h, l));
}

/// A number of 32 bits a lane.
struct U32Halves {
    U16 high, low;
};

/// The sum, wrapped to 32 bits.
inline U32Halves operator+(U32Halves a, U32Halves b)
{
    const U16 carry = ShiftRight<15>((a.low & b.low) + ShiftRight<1>(a.low ^ b.low));
    return {a.high + b.high + carry, a.low + b.low};
}

inline U32Halves Product(U16 a, U16 b)
{
    return {MulHigh(a, b), a * b};
}

/// (f + a * b) / 65535 rounded to nearest, at most 65535. f + a * b fits 32 bits.
inline U16 AddNormMultFull(U16 f, U16 a, U16 b)
{
    const U32Halves sum = Product(a, b) + U32Halves{Splat(0), f};
    return Ratio(sum.high, sum.low);
}

/// (a * b + c * d) / 65535 rounded to nearest, at most 65535; the sum wraps to 32 bits.
inline U16 NormMultFull(U16 a, U16 b, U16 c, U16 d)
{
    const U32Halves sum = Product(a, b) + Product(c, d);
    return Ratio(sum.high, sum.low);
}

/// The larger of unsigned lanes.
inline U16 Max(U16 a, U16 b)
{
#if defined(__AVX2__)
    return {VFIL_MM(max_epu16)(a.bits, b.bits)};
#else
    return AddClip({_mm_subs_epu16(a.bits, b.bits)}, b);
#endif
}

/// The smaller of unsigned lanes.
inline U16 Min(U16 a, U16 b)
{
#if defined(__AVX2__)
    return {VFIL_MM(min_epu16)(a.bits, b.bits)};
#else
    return a - U16{_mm_subs_epu16(a.bits, b.bits)};
#endif
}

inline U16 Abs(U16 v)
{
#if defined(__AVX2__)
    return {VFIL_MM(abs_epi16)(v.bits)};
#else
    return MaxSigned(v, Splat(0) - v);
#endif
}

/// Of unsigned values: kept where v is above the limit, else 0.
inline U8 KeepAbove(U8 kept, U8 v, U8 limit)
{
#if defined(__AVX512BW__)
    return {_mm512_maskz_mov_epi8(_mm512_cmpgt_epu8_mask(v.bits, limit.bits), kept.bits)};
#else
    const Register excess = VFIL_MM(subs_epu8)(v.bits, limit.bits);
    return {VFIL_BITS(andnot)(VFIL_MM(cmpeq_epi8)(excess, Register{}), kept.bits)};
#endif
}

inline U16 KeepAbove(U16 kept, U16 v, U16 limit)
{
#if defined(__AVX512BW__)
    return {_mm512_maskz_mov_epi16(_mm512_cmpgt_epu16_mask(v.bits, limit.bits), kept.bits)};
#else
    const Register excess = VFIL_MM(subs_epu16)(v.bits, limit.bits);
    return {VFIL_BITS(andnot)(VFIL_MM(cmpeq_epi16)(excess, Register{}), kept.bits)};
#endif
}

/// Bytes from p to the next multiple of kBytes.
inline std::size_t BytesToAligned(const std::uint8_t* p)
{
    return (kBytes - reinterpret_cast<std::uintptr_t>(p) % kBytes) % kBytes;
}

/// A piece of a row: a vector, or less at a ragged end.
struct Part {
    std::size_t at, bytes;
};

/// A part of a row, with zeros behind it.
inline U8 LoadPart(const void* row, Part part)
{
    const std::uint8_t* const from = static_cast<const std::uint8_t*>(row) + part.at;
    if (part.bytes == kBytes) return Load(from);
    std::uint8_t bytes[kBytes] = {};
    std::memcpy(bytes, from, part.bytes);
    return Load(bytes);
}

/// Fewer bytes than a vector, through the same operation.
template <class Operation>
void MapPart(const std::uint8_t* back, const std::uint8_t* front, std::uint8_t* out, Part part,
             Operation operation)
{
    std::uint8_t backs[kBytes] = {};
    std::uint8_t fronts[kBytes] = {};
    std::uint8_t results[kBytes];
    std::memcpy(backs, back + part.at, part.bytes);
    std::memcpy(fronts, front + part.at, part.bytes);
    Store(results, operation(Load(backs), Load(fronts), part));
    std::memcpy(out + part.at, results, part.bytes);
}

/// out = operation(back, front, part), vector by vector. A streaming row first comes to an aligned output,
/// unless that lies amid a pixel. An operation of one input gets that one twice; the compiler drops the
/// second load.
template <bool streaming, std::size_t pixelBytes, class Operation>
void MapRow(const void* backRow, const void* frontRow, void* outRow, std::size_t bytes, Operation operation)
{
    const auto* back = static_cast<const std::uint8_t*>(backRow);
    const auto* front = static_cast<const std::uint8_t*>(frontRow);
    auto* out = static_cast<std::uint8_t*>(outRow);
    std::size_t at = 0;
    if constexpr (streaming) {
        const std::size_t head = BytesToAligned(out);
        if (head % pixelBytes == 0 && head < bytes) {
            if (head != 0) MapPart(back, front, out, {0, head}, operation);
            for (at = head; bytes - at >= kBytes; at += kBytes)
                StoreStreaming(out + at, operation(Load(back + at), Load(front + at), {at, kBytes}));
        }
    }
    for (; bytes - at >= kBytes; at += kBytes)
        Store(out + at, operation(Load(back + at), Load(front + at), {at, kBytes}));
    if (at != bytes) MapPart(back, front, out, {at, bytes - at}, operation);
}

} // namespace
} // namespace vfil
