/// \file
/// The vector forms of the fill and key kernels, for the level VFIL_LEVEL.
#include "il/rows/fillkey/fillkeyparams.h"
#include "il/rows/vecmove.h"

namespace vfil {

namespace {

U16 Lanes(const std::uint8_t* p)
{
    return {Load(p).bits};
}

template <bool streaming>
void SwapPairs(const std::uint8_t* in, std::uint8_t* out, std::size_t pixels)
{
    MapRow<streaming, 2>(in, in, out, 2 * pixels, [](U8 pairs, U8, Part) -> U8 {
        const U16 lanes{pairs.bits};
        return {(ShiftLeft<8>(lanes) | ShiftRight<8>(lanes)).bits};
    });
}

void CopyPairsAroundCache(const std::uint8_t* in, std::uint8_t* out, std::size_t pixels)
{
    MapRow<true, 2>(in, in, out, 2 * pixels, [](U8 pairs, U8, Part) { return pairs; });
}

/// The luma of studio range: 32768 carries out of the low half of the product where its top bit is set.
U16 KeyOf(U16 alpha)
{
    const U16 scale = Splat(56283 - 65536);
    return MulHigh(alpha, scale) + ShiftRight<15>(alpha * scale) + Splat(16);
}

template <bool chromaFirst>
U8 KeyPixels(U16 alpha)
{
    const U16 luma = KeyOf(alpha);
    return {chromaFirst ? (ShiftLeft<8>(luma) | Splat(128)).bits : (luma | Splat(128 * 256)).bits};
}

template <bool chromaFirst, bool streaming>
void AlphaToKey(const std::uint8_t* in, std::uint8_t* out, std::size_t pixels)
{
    ConvertRow<streaming, 1, 2>(in, out, pixels, [](const std::uint8_t* alpha, U8* key) {
        const U8Pair twice = Twice(Load(alpha));
        key[0] = KeyPixels<chromaFirst>(ShiftRight<8>(U16{twice.lo.bits}));
        key[1] = KeyPixels<chromaFirst>(ShiftRight<8>(U16{twice.hi.bits}));
    });
}

/// 76309 is 65536 + 10773, so that the rest of the product fits 16 bits. For all of 0 .. 255 the high half of
/// (luma + 54) * 10773 is 27 more than that of luma * 10773 - 1188176. The lanes' upper bytes are zero.
template <bool chromaFirst>
U16 AlphaOf(U16 key)
{
    const U16 luma = chromaFirst ? ShiftRight<8>(key) : key & Splat(255);
    return (luma + MulHigh(luma + Splat(54), Splat(10773)) - Splat(27)) & Splat(255);
}

template <bool chromaFirst, bool streaming>
void KeyToAlpha(const std::uint8_t* in, std::uint8_t* out, std::size_t pixels)
{
    ConvertRow<streaming, 2, 1>(in, out, pixels, [](const std::uint8_t* key, U8* alpha) {
        alpha[0] = OrderNarrowed(
            Narrow({AlphaOf<chromaFirst>(Lanes(key)), AlphaOf<chromaFirst>(Lanes(key + kBytes))}));
    });
}

template <bool streaming>
void FillStreaming(FillKeyRows& rows)
{
    rows.colour[false][streaming] = SwapPairs<streaming>;
    rows.alphaToKey[false][streaming] = AlphaToKey<false, streaming>;
    rows.alphaToKey[true][streaming] = AlphaToKey<true, streaming>;
    rows.keyToAlpha[false][streaming] = KeyToAlpha<false, streaming>;
    rows.keyToAlpha[true][streaming] = KeyToAlpha<true, streaming>;
}

} // namespace

namespace VFIL_LEVEL {

void Fill(FillKeyRows& rows)
{
    FillStreaming<false>(rows);
    FillStreaming<true>(rows);
    // A copy that stays in the cache is left to memcpy.
    rows.colour[true][true] = CopyPairsAroundCache;
}

} // namespace VFIL_LEVEL
} // namespace vfil
