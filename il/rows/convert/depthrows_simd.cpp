/// \file
/// The vector forms of the kernels of depths, byte orders and alpha, for the level VFIL_LEVEL.
#include "il/rows/convert/depthparams.h"
#include "il/rows/vecmove.h"

namespace vfil {
namespace {

template <bool streaming>
void NarrowSamples(const std::uint16_t* in, std::uint8_t* out, std::size_t samples)
{
    ConvertRow<streaming, 2, 1>(in, out, samples, [](const std::uint8_t* from, U8* to) {
        const U16 lo{Load(from).bits};
        const U16 hi{Load(from + kBytes).bits};
        to[0] = OrderNarrowed(Narrow({ShiftRight<8>(lo), ShiftRight<8>(hi)}));
    });
}

template <bool streaming>
void WidenSamples(const std::uint8_t* in, std::uint16_t* out, std::size_t samples)
{
    ConvertRow<streaming, 1, 2>(in, out, samples, [](const std::uint8_t* from, U8* to) {
        const U8Pair twice = Twice(Load(from));
        to[0] = twice.lo;
        to[1] = twice.hi;
    });
}

U8 SwapBytes(U8 v)
{
#if defined(__AVX2__)
    return {Shuffle16(v.bits, 0x0704'0506'0300'0102, 0x0F0C'0D0E'0B08'090A)};
#else
    const S32 ends{(v & SplatU32(0x00FF00FF)).bits};
    const U8 swapped{(ShiftUp<16>(ends) | ShiftDownBits<16>(ends)).bits};
    return swapped | (v & SplatU32(0xFF00FF00));
#endif
}

template <bool streaming>
void SwapPixels(const std::uint8_t* in, std::uint8_t* out, std::size_t pixels)
{
    MapRow<streaming, 4>(in, in, out, 4 * pixels, [](U8 v, U8, Part) { return SwapBytes(v); });
}

template <bool streaming>
void TakeAlpha(const std::uint8_t* in, std::uint8_t* out, std::size_t pixels)
{
    ConvertRow<streaming, 4, 1>(in, out, pixels, [](const std::uint8_t* from, U8* to) {
        S32 alpha[4];
        for (std::size_t i = 0; i < 4; ++i)
            alpha[i] = ShiftDownBits<24>(S32{Load(from + i * kBytes).bits});
        to[0] = NarrowLanes(alpha[0], alpha[1], alpha[2], alpha[3]);
    });
}

/// The sum is at most 97 * 255, below which x * 43241 >> 22 is x / 97, truncated: 97 * 43241 exceeds 2 to the
/// power of 22 by 73, and 73 x stays below that power. The upper 16 bits of a lane's sum are zero.
U8 LumaToAlpha(U8 v)
{
    const S32 redBlue{(v & SplatU32(0x00FF00FF)).bits};
    const S32 green = ShiftDownBits<8>(S32{(v & SplatU32(0x0000FF00)).bits});
    const S32 sum = DotPairs(redBlue, SplatPair16(29, 11)) + DotPairs(green, SplatPair16(57, 0));
    const S32 luma = ShiftDownBits<6>(S32{MulHigh({sum.bits}, {SplatU32(43241).bits}).bits});
    return (v & SplatU32(0x00FFFFFF)) | U8{ShiftUp<24>(luma).bits};
}

template <bool streaming>
void LumaToAlphaPixels(const std::uint8_t* in, std::uint8_t* out, std::size_t pixels)
{
    MapRow<streaming, 4>(in, in, out, 4 * pixels, [](U8 v, U8, Part) { return LumaToAlpha(v); });
}

#if defined(__AVX2__)

/// The lanes of four pixels of 3 bytes, three of them, in the lower part of each 128 bits.
constexpr LaneOrder SpreadThrees(std::uint32_t first)
{
    LaneOrder order{};
    for (std::uint32_t i = 0; i < kLanes32; ++i)
        order.from[i] = i % 4 == 3 ? 0 : first + i / 4 * 3 + i % 4;
    return order;
}

template <bool streaming, bool swap>
void ExpandPixels(const std::uint8_t* in, std::uint8_t* out, std::size_t pixels)
{
    static constexpr LaneOrder kSpread = SpreadThrees(0);
    // The last quarter is loaded from further ahead, so that nothing behind the block is read.
    static constexpr LaneOrder kSpreadLast = SpreadThrees(kLanes32 / 4);
    ConvertRow<streaming, 3, 4>(in, out, pixels, [](const std::uint8_t* from, U8* to) {
        const U8 full = SplatU32(0xFF000000);
        for (std::size_t i = 0; i < 4; ++i) {
            const U8 threes = i == 3 ? Permute(Load(from + 2 * kBytes), kSpreadLast)
                                     : Permute(Load(from + i * (kBytes * 3 / 4)), kSpread);
            to[i] = full | (swap ? U8{Shuffle16(threes.bits, 0x8003'0405'8000'0102, 0x8009'0A0B'8006'0708)}
                                 : U8{Shuffle16(threes.bits, 0x8005'0403'8002'0100, 0x800B'0A09'8008'0706)});
        }
    });
}

/// Gathers the three lanes in the lower part of each 128 bits, so that those of the vector of that index in a
/// block come to where they lie in the block's result.
constexpr LaneOrder GatherThrees(std::uint32_t index)
{
    constexpr std::uint32_t kThrees = kLanes32 / 4 * 3;
    LaneOrder order{};
    for (std::uint32_t i = 0; i < kThrees; ++i)
        order.from[(index * kThrees + i) % kLanes32] = i / 3 * 4 + i % 3;
    return order;
}

template <bool streaming, bool swap>
void DropPixels(const std::uint8_t* in, std::uint8_t* out, std::size_t pixels)
{
    static constexpr LaneOrder kGather[] = {GatherThrees(0), GatherThrees(1), GatherThrees(2),
                                            GatherThrees(3)};
    ConvertRow<streaming, 4, 3>(in, out, pixels, [](const std::uint8_t* from, U8* to) {
        U8 threes[4];
        for (std::size_t i = 0; i < 4; ++i) {
            const U8 fours = Load(from + i * kBytes);
            const U8 packed{swap ? Shuffle16(fours.bits, 0x090A'0405'0600'0102, 0x8080'8080'0C0D'0E08)
                                 : Shuffle16(fours.bits, 0x0908'0605'0402'0100, 0x8080'8080'0E0D'0C0A)};
            threes[i] = Permute(packed, kGather[i]);
        }
        constexpr std::size_t kQuarter = kLanes32 / 4;
        to[0] = Join<3 * kQuarter>(threes[0], threes[1]);
        to[1] = Join<2 * kQuarter>(threes[1], threes[2]);
        to[2] = Join<kQuarter>(threes[2], threes[3]);
    });
}

#endif

template <bool streaming>
void FillStreaming(DepthRows& rows)
{
    rows.narrow[streaming] = NarrowSamples<streaming>;
    rows.widen[streaming] = WidenSamples<streaming>;
    rows.swap[streaming] = SwapPixels<streaming>;
    rows.takeAlpha[streaming] = TakeAlpha<streaming>;
    rows.lumaToAlpha[streaming] = LumaToAlphaPixels<streaming>;
#if defined(__AVX2__)
    rows.expand[false][streaming] = ExpandPixels<streaming, false>;
    rows.expand[true][streaming] = ExpandPixels<streaming, true>;
    rows.drop[false][streaming] = DropPixels<streaming, false>;
    rows.drop[true][streaming] = DropPixels<streaming, true>;
#endif
}

} // namespace

namespace VFIL_LEVEL {

void Fill(DepthRows& rows)
{
    FillStreaming<false>(rows);
    FillStreaming<true>(rows);
}

} // namespace VFIL_LEVEL
} // namespace vfil
