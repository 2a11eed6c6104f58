/// \file
/// Pixels as planes of their bytes, tables of bytes, and quotients of bytes. Included by *_simd.cpp sources
/// alone, as vec.h is.
#pragma once

#include "il/rows/vecfloat.h"
#include "il/rows/vecselect.h"

namespace vfil {
namespace {

#if defined(__AVX2__)

/// kBytes pixels of four bytes: as four vectors of pixels, or as four of one byte of each.
struct Block {
    U8 v[4];
};

inline Block LoadBlock(const std::uint8_t* p)
{
    return {{Load(p), Load(p + kBytes), Load(p + 2 * kBytes), Load(p + 3 * kBytes)}};
}

/// Each 4 by 4 bytes of 16 turned over.
inline U8 TurnBytes(U8 v)
{
    return {Shuffle16(v.bits, 0x0D09'0501'0C08'0400, 0x0F0B'0703'0E0A'0602)};
}

/// Each 4 by 4 lanes of 32 bits of the same 128 bits turned over.
inline Block TurnLanes(const Block& b)
{
    const Register ab = VFIL_MM(unpacklo_epi32)(b.v[0].bits, b.v[1].bits);
    const Register cd = VFIL_MM(unpacklo_epi32)(b.v[2].bits, b.v[3].bits);
    const Register abHigh = VFIL_MM(unpackhi_epi32)(b.v[0].bits, b.v[1].bits);
    const Register cdHigh = VFIL_MM(unpackhi_epi32)(b.v[2].bits, b.v[3].bits);
    return {{{VFIL_MM(unpacklo_epi64)(ab, cd)},
             {VFIL_MM(unpackhi_epi64)(ab, cd)},
             {VFIL_MM(unpacklo_epi64)(abHigh, cdHigh)},
             {VFIL_MM(unpackhi_epi64)(abHigh, cdHigh)}}};
}

/// Pixels to planes. The order of pixels in a plane is that which FromPlanes undoes.
inline Block ToPlanes(const Block& pixels)
{
    return TurnLanes(
        {{TurnBytes(pixels.v[0]), TurnBytes(pixels.v[1]), TurnBytes(pixels.v[2]), TurnBytes(pixels.v[3])}});
}

inline Block FromPlanes(const Block& planes)
{
    const Block turned = TurnLanes(planes);
    return {{TurnBytes(turned.v[0]), TurnBytes(turned.v[1]), TurnBytes(turned.v[2]), TurnBytes(turned.v[3])}};
}

inline U8 SplatByte(std::uint8_t v)
{
    return SplatU32(v * 0x01010101U);
}

/// The sum, wrapped to a byte.
inline U8 Add(U8 a, U8 b)
{
    return {VFIL_MM(add_epi8)(a.bits, b.bits)};
}

/// The difference, wrapped to a byte.
inline U8 Subtract(U8 a, U8 b)
{
    return {VFIL_MM(sub_epi8)(a.bits, b.bits)};
}

/// All ones in bytes of 128 and above.
inline U8 UpperHalf(U8 v)
{
#if defined(__AVX512BW__)
    return {_mm512_movm_epi8(_mm512_movepi8_mask(v.bits))};
#else
    return {_mm256_cmpgt_epi8(Register{}, v.bits)};
#endif
}

/// 16 bytes in each 128 bits.
inline U8 SplatRow(std::uint64_t low, std::uint64_t high)
{
    const __m128i row = _mm_set_epi64x(static_cast<long long>(high), static_cast<long long>(low));
#if defined(__AVX512BW__)
    return {_mm512_broadcast_i32x4(row)};
#else
    return {_mm256_broadcastsi128_si256(row)};
#endif
}

/// A table of 16 * rows bytes, of which Lookup takes the sum of the rows up to an index's own: each row here
/// is the difference from the one before.
template <std::size_t rows>
struct ByteTable {
    explicit ByteTable(const std::uint8_t* bytes)
    {
        U8 before{Register{}};
        for (std::size_t i = 0; i < rows; ++i, bytes += 16) {
            std::uint64_t halves[2];
            std::memcpy(halves, bytes, 16);
            const U8 row = SplatRow(halves[0], halves[1]);
            // The upper half of 256 bytes is looked up by itself.
            differences[i] = i == 8 ? row : row ^ before;
            before = row;
        }
    }

    U8 differences[rows];
};

/// The sum over rows first .. last - 1. An index below a row's first is negative there, for which the shuffle
/// gives 0; one of 128 and above is negative everywhere.
template <std::size_t first, std::size_t last, std::size_t rows>
U8 LookupHalf(const ByteTable<rows>& table, U8 at)
{
    const Register sixteen = SplatByte(16).bits;
    U8 found{VFIL_MM(shuffle_epi8)(table.differences[first].bits, at.bits)};
    for (std::size_t row = first + 1; row < last; ++row) {
        at.bits = VFIL_MM(subs_epi8)(at.bits, sixteen);
        found = found ^ U8 { VFIL_MM(shuffle_epi8)(table.differences[row].bits, at.bits) };
    }
    return found;
}

/// The table's bytes at indices within it.
template <std::size_t rows>
U8 Lookup(const ByteTable<rows>& table, U8 at)
{
    if constexpr (rows == 16) {
        return LookupHalf<0, 8>(table, at) ^ LookupHalf<8, 16>(table, at ^ SplatByte(0x80));
    } else {
        static_assert(rows <= 8);
        return LookupHalf<0, rows>(table, at);
    }
}

/// Not 0 where the set, whose bytes hold eight numbers each, has the number.
inline U8 IsIn(const ByteTable<2>& set, U8 number)
{
    const U16 eighths = ShiftRight<3>(U16{number.bits}) & U16{SplatByte(0x1F).bits};
    const U8 bit{VFIL_MM(shuffle_epi8)(SplatU64(0x8040'2010'0804'0201).bits, (number & SplatByte(7)).bits)};
    return Lookup(set, {eighths.bits}) & bit;
}

/// Byte `byte` of each 32 bits.
template <int byte>
inline S32 ByteLanes(U8 v)
{
    const S32 lanes{v.bits};
    if constexpr (byte == 0) return lanes & Splat32(0xFF);
    if constexpr (byte == 3) return ShiftDownBits<24>(lanes);
    return ShiftDownBits<8 * byte>(lanes) & Splat32(0xFF);
}

/// Lanes of 0 .. 255 as the bytes of each 32 bits.
inline U8 JoinBytes(S32 a, S32 b, S32 c, S32 d)
{
    return {((a | ShiftUp<8>(b)) | (ShiftUp<16>(c) | ShiftUp<24>(d))).bits};
}

/// Lanes limited to 0 .. 255 as the bytes of each 32 bits.
inline U8 JoinLimited(S32 a, S32 b, S32 c, S32 d)
{
    return TurnBytes(Narrow({PackSigned(a, b), PackSigned(c, d)}));
}

/// full * a / b of one byte of each 32 bits, half rounded up.
template <int byte>
inline S32 QuotientLanes(U8 a, U8 b, F32 full)
{
    const F32 top{VFIL_MM(cvtepi32_ps)(ByteLanes<byte>(a).bits)};
    const F32 bottom{VFIL_MM(cvtepi32_ps)(ByteLanes<byte>(b).bits)};
    const F32 quotient{VFIL_MM(div_ps)((top * full).v, bottom.v)};
    return {VFIL_MM(cvttps_epi32)((quotient + SplatFloat(0.5F)).v)};
}

/// full * a / b, half rounded up, of a <= b != 0. With a full that is half a whole number, up to 255, the
/// rounding of floats is far below the distance of a quotient from the next half, which they hold exactly.
inline U8 Quotient(U8 a, U8 b, float full)
{
    const F32 fulls = SplatFloat(full);
    return JoinBytes(QuotientLanes<0>(a, b, fulls), QuotientLanes<1>(a, b, fulls),
                     QuotientLanes<2>(a, b, fulls), QuotientLanes<3>(a, b, fulls));
}

#endif

} // namespace
} // namespace vfil
