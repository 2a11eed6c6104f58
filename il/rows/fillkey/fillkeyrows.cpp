/// \file
/// The plain forms of the fill and key kernels, and the table of their levels.
#include "il/rows/fillkey/fillkeyrows.h"

#include <cstring>

namespace vfil {

namespace {

void PlainCopyPairs(const std::uint8_t* in, std::uint8_t* out, std::size_t pixels)
{
    if (pixels != 0) std::memcpy(out, in, 2 * pixels);
}

void PlainSwapPairs(const std::uint8_t* in, std::uint8_t* out, std::size_t pixels)
{
    for (std::size_t i = 0; i < 2 * pixels; i += 2) {
        out[i] = in[i + 1];
        out[i + 1] = in[i];
    }
}

template <bool chromaFirst>
void PlainAlphaToKey(const std::uint8_t* in, std::uint8_t* out, std::size_t pixels)
{
    for (std::size_t i = 0; i < pixels; ++i) {
        // 56283 / 65536 is 219 / 255, rounded up.
        out[2 * i + chromaFirst] = static_cast<std::uint8_t>(((in[i] * 56283 + 32768) >> 16) + 16);
        out[2 * i + !chromaFirst] = 128;
    }
}

template <bool chromaFirst>
void PlainKeyToAlpha(const std::uint8_t* in, std::uint8_t* out, std::size_t pixels)
{
    // 76309 / 65536 is 255 / 219, and 1188176 takes 16 off before and adds the half that rounds. The result
    // is not clamped but wraps, for speed.
    for (std::size_t i = 0; i < pixels; ++i)
        out[i] = static_cast<std::uint8_t>((in[2 * i + chromaFirst] * 76309 - 1188176) >> 16);
}

const LevelTables<FillKeyRows>& Tables()
{
    static const LevelTables<FillKeyRows> tables(
        {
            .colour = {{PlainSwapPairs, PlainSwapPairs}, {PlainCopyPairs, PlainCopyPairs}},
            .alphaToKey = {{PlainAlphaToKey<false>, PlainAlphaToKey<false>},
                           {PlainAlphaToKey<true>, PlainAlphaToKey<true>}},
            .keyToAlpha = {{PlainKeyToAlpha<false>, PlainKeyToAlpha<false>},
                           {PlainKeyToAlpha<true>, PlainKeyToAlpha<true>}},
        },
        VFIL_FILLS);
    return tables;
}

const FillKeyRows& Rows(const FillKeyCase& which)
{
    return FillKeyRowsAt(which.useVectors ? BestLevel() : Level::Plain);
}

} // namespace

const FillKeyRows& FillKeyRowsAt(Level level)
{
    return Tables().At(level);
}

FillKeyRow FindColourRow(const FillKeyCase& which)
{
    return Rows(which).colour[which.chromaFirst][which.streaming];
}

FillKeyRow FindAlphaToKeyRow(const FillKeyCase& which)
{
    return Rows(which).alphaToKey[which.chromaFirst][which.streaming];
}

FillKeyRow FindKeyToAlphaRow(const FillKeyCase& which)
{
    return Rows(which).keyToAlpha[which.chromaFirst][which.streaming];
}

} // namespace vfil
