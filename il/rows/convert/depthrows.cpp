/// \file
/// The plain forms of the kernels of depths, byte orders and alpha, and the table of their levels.
#include "il/rows/convert/depthrows.h"

#include "il/rows/pixarith.h"

namespace vfil {

namespace {

void PlainNarrow(const std::uint16_t* in, std::uint8_t* out, std::size_t samples)
{
    for (std::size_t i = 0; i < samples; ++i)
        out[i] = static_cast<std::uint8_t>(in[i] >> 8);
}

void PlainWiden(const std::uint8_t* in, std::uint16_t* out, std::size_t samples)
{
    for (std::size_t i = 0; i < samples; ++i)
        out[i] = static_cast<std::uint16_t>(in[i] * 257);
}

/// Between pixels of 3 and 4 bytes; a fourth byte comes along, or is full.
template <int inBytes, int outBytes, bool swap>
void PlainPixels(const std::uint8_t* in, std::uint8_t* out, std::size_t pixels)
{
    for (; pixels != 0; --pixels, in += inBytes, out += outBytes) {
        const std::uint8_t first = in[0];
        const std::uint8_t third = in[2];
        out[0] = swap ? third : first;
        out[1] = in[1];
        out[2] = swap ? first : third;
        if constexpr (outBytes == 4) out[3] = inBytes == 4 ? in[3] : std::uint8_t{255};
    }
}

void PlainTakeAlpha(const std::uint8_t* in, std::uint8_t* out, std::size_t pixels)
{
    for (std::size_t i = 0; i < pixels; ++i)
        out[i] = in[4 * i + 3];
}

void PlainLumaToAlpha(const std::uint8_t* in, std::uint8_t* out, std::size_t pixels)
{
    for (; pixels != 0; --pixels, in += 4, out += 4) {
        const auto luma = static_cast<std::uint8_t>(Arith<std::uint8_t>::Brightness(in[0], in[1], in[2]));
        std::copy_n(in, 3, out);
        out[3] = luma;
    }
}

const LevelTables<DepthRows>& Tables()
{
    static const LevelTables<DepthRows> tables(
        {
            .narrow = {PlainNarrow, PlainNarrow},
            .widen = {PlainWiden, PlainWiden},
            .swap = {PlainPixels<4, 4, true>, PlainPixels<4, 4, true>},
            .expand = {{PlainPixels<3, 4, false>, PlainPixels<3, 4, false>},
                       {PlainPixels<3, 4, true>, PlainPixels<3, 4, true>}},
            .drop = {{PlainPixels<4, 3, false>, PlainPixels<4, 3, false>},
                     {PlainPixels<4, 3, true>, PlainPixels<4, 3, true>}},
            .takeAlpha = {PlainTakeAlpha, PlainTakeAlpha},
            .lumaToAlpha = {PlainLumaToAlpha, PlainLumaToAlpha},
        },
        VFIL_FILLS);
    return tables;
}

} // namespace

const DepthRows& DepthRowsAt(Level level)
{
    return Tables().At(level);
}

const DepthRows& FindDepthRows(bool useVectors)
{
    return DepthRowsAt(useVectors ? BestLevel() : Level::Plain);
}

} // namespace vfil
