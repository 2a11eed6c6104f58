/// \file
/// The vector forms of the RGBA keyers' kernels, for the level VFIL_LEVEL: a pixel in each 32 bits, whose
/// matte comes to lie in the top byte.
#include "il/rows/keyer/keylanes.h"

namespace vfil {
namespace {

constexpr std::uint32_t kColour = 0x00FFFFFF;

/// The kernels' walk. matteOf(pixels of A) has the mattes in the top bytes; the others do not matter.
template <bool streaming, class MatteOf>
void KeyPixels(const std::uint8_t* a, const std::uint8_t* b, std::uint8_t* out, std::size_t pixels,
               bool keepAlpha, MatteOf matteOf)
{
    const U8 colour = SplatU32(kColour);
    const U8 replaced = SplatU32(keepAlpha ? 0 : ~kColour);
    MapRow<streaming, 4>(a, b, out, 4 * pixels, [&](U8 keyed, U8 shown, Part) {
        return Min(shown | replaced, U8{matteOf(keyed).bits} | colour);
    });
}

/// 16-bit lanes, of which the upper ones of each 32 bits matter, limited to a byte and moved to the top.
S32 UpperToTop(U16 v)
{
    return ShiftUp<8>(S32{MinSigned(MaxSigned(v, Splat(0)), Splat(255)).bits});
}

template <bool streaming>
void Sector(const std::uint8_t* a, const std::uint8_t* b, std::uint8_t* out, std::size_t pixels,
            const SectorKeyParams& params)
{
    const NarrowWeights cbWeights(params.cb);
    const NarrowWeights crWeights(params.cr);
    const S32 middle = Splat32((128 << 16) + 0x8000);
    KeyPixels<streaming>(a, b, out, pixels, params.keepAlpha, [&](U8 keyed) {
        const ChannelPairs channels = PairsOf(keyed);
        const S32 cb = ShiftDownBits<16>(cbWeights.Sum(channels) + middle);
        const S32 cr = ShiftDownBits<16>(crWeights.Sum(channels) + middle);
        return ShiftUp<24>(GatherBytes(params.mattes, ShiftUp<8>(cr) | cb));
    });
}

template <bool streaming>
void BlueGreen(const std::uint8_t* a, const std::uint8_t* b, std::uint8_t* out, std::size_t pixels,
               const BlueGreenKeyParams& params)
{
    const DifferenceLanes difference(params.difference);
    KeyPixels<streaming>(a, b, out, pixels, params.keepAlpha,
                         [&](U8 keyed) { return UpperToTop({difference(keyed).bits}); });
}

/// Bytes in the lowest of each 32 bits, the others of which are zero.
U8 Channel(U8 pixels, int channel)
{
    const S32 p{pixels.bits};
    const U8 low = SplatU32(0xFF);
    const S32 moved = channel == 0 ? p : channel == 1 ? ShiftDownBits<8>(p) : ShiftDownBits<16>(p);
    return U8{moved.bits} & low;
}

template <bool streaming, bool blueScreen>
void LinearOf(const std::uint8_t* a, const std::uint8_t* b, std::uint8_t* out, std::size_t pixels,
              const LinearKeyParams& params)
{
    const Shift threshold(params.threshold);
    const Shift softness(params.softness);
    const U8 one = SplatU32(1);
    KeyPixels<streaming>(a, b, out, pixels, false, [&](U8 keyed) {
        const U8 screen = Channel(keyed, blueScreen ? 2 : 1);
        const U8 most = Max(Channel(keyed, 0), Channel(keyed, blueScreen ? 1 : 2));
        const U8 opaque = threshold.Take(most);
        const U8 clear = softness.Add(opaque);
        const U8 rest = SubClip(clear, screen);
        const U8 beyond = SubClip(screen, opaque);
        const auto isOpaque = Equal(beyond, SplatU32(0));
        // Few pixels lie on the ramp, and the quotient takes its time.
        if (IsZero({Min(rest, beyond).bits}))
            return ShiftUp<24>(S32{Select(isOpaque, SplatU32(0xFF), SplatU32(0)).bits});
        const U8 width = Max(SubClip(clear, opaque), one);
        // (510 rest + width) / (2 width): no quotient of such numbers lies so close below a whole one that a
        // float would be that one.
        const S32 divisor = ShiftUp<1>(S32{width.bits});
        const S32 pair{(rest | ShiftLeft32<16>(width)).bits};
        const S32 matte = ToWhole(ToFloat(DotPairs(pair, SplatPair16(510, 1))) / ToFloat(divisor), 255);
        return ShiftUp<24>(S32{Select(isOpaque, SplatU32(0xFF), U8{matte.bits}).bits});
    });
}

template <bool streaming>
void Linear(const std::uint8_t* a, const std::uint8_t* b, std::uint8_t* out, std::size_t pixels,
            const LinearKeyParams& params)
{
    if (params.blueScreen)
        LinearOf<streaming, true>(a, b, out, pixels, params);
    else
        LinearOf<streaming, false>(a, b, out, pixels, params);
}

template <bool streaming>
void Luma(const std::uint8_t* a, const std::uint8_t* b, std::uint8_t* out, std::size_t pixels,
          const LumaKeyParams& params)
{
    const WideWeights weights(params.weights);
    const S32 half = Splat32(0x8000);
    const U16 gain = Splat(params.gain & 0xFFFF);
    const U16 wholeGain = Splat(params.gain >> 16);
    const U16 offset = Splat(params.offset);
    const S32 reverse = Splat32(params.reverse ? static_cast<std::int32_t>(~kColour) : 0);
    KeyPixels<streaming>(a, b, out, pixels, params.keepAlpha, [&](U8 keyed) {
        const U16 luma{(weights.Sum(PairsOf(keyed)) + half).bits};
        const S32 matte = UpperToTop(MulHigh(luma, gain) + luma * wholeGain + offset);
        return S32{(U8{matte.bits} ^ U8{reverse.bits}).bits};
    });
}

template <bool streaming>
void FillStreaming(KeyRows& rows)
{
    rows.sector[streaming] = Sector<streaming>;
    rows.blueGreen[streaming] = BlueGreen<streaming>;
    rows.linear[streaming] = Linear<streaming>;
    rows.luma[streaming] = Luma<streaming>;
}

} // namespace

namespace VFIL_LEVEL {

void Fill(KeyRows& rows)
{
    FillStreaming<false>(rows);
    FillStreaming<true>(rows);
}

} // namespace VFIL_LEVEL
} // namespace vfil
