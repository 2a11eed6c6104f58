/// \file
/// The plain forms of the RGBA keyers' kernels, and the table of their levels.
#include "il/rows/keyer/keyrows.h"

#include "il/rows/keyer/keybytes.h"

#include <algorithm>
#include <cmath>

namespace vfil {

namespace {

/// The matte of a pixel for B's, wherever the output lies.
template <class MatteOf>
void KeyPixels(const std::uint8_t* a, const std::uint8_t* b, std::uint8_t* out, std::size_t pixels,
               bool keepAlpha, MatteOf matteOf)
{
    for (std::size_t i = 0; i < 4 * pixels; i += 4) {
        const std::uint8_t matte = matteOf(a + i);
        const std::uint8_t alpha = keepAlpha ? std::min(matte, b[i + 3]) : matte;
        std::copy_n(b + i, 3, out + i);
        out[i + 3] = alpha;
    }
}

/// Cb or Cr.
std::uint8_t Chroma(const KeyWeights& weights, const std::uint8_t* pixel)
{
    return static_cast<std::uint8_t>(((Sum(weights, pixel) + 0x8000) >> 16) + 128);
}

double KeyPixel(const SectorKeyParams& sector, double u, double v)
{
    const double along = u * sector.cosine - v * sector.sine;
    const double across = u * sector.sine + v * sector.cosine;
    return (along - std::abs(across) * sector.tangent - sector.lift) * sector.gain;
}

std::uint8_t SectorMatte(const SectorKeyParams& sector, std::uint8_t cb, std::uint8_t cr)
{
    const double u = (cb - 127.5) * (2.0 / 255);
    const double v = (cr - 127.5) * (2.0 / 255);
    return RoundToSample<std::uint8_t>(MatteOfKey(KeyPixel(sector, u, v)) * 255);
}

void PlainSector(const std::uint8_t* a, const std::uint8_t* b, std::uint8_t* out, std::size_t pixels,
                 const SectorKeyParams& params)
{
    KeyPixels(a, b, out, pixels, params.keepAlpha, [&](const std::uint8_t* pixel) {
        return SectorMatte(params, Chroma(params.cb, pixel), Chroma(params.cr, pixel));
    });
}

void PlainBlueGreen(const std::uint8_t* a, const std::uint8_t* b, std::uint8_t* out, std::size_t pixels,
                    const BlueGreenKeyParams& params)
{
    KeyPixels(a, b, out, pixels, params.keepAlpha,
              [&](const std::uint8_t* pixel) { return Limit(Sum(params.difference, pixel) >> 16); });
}

void PlainLinear(const std::uint8_t* a, const std::uint8_t* b, std::uint8_t* out, std::size_t pixels,
                 const LinearKeyParams& params)
{
    KeyPixels(a, b, out, pixels, false, [&](const std::uint8_t* pixel) -> std::uint8_t {
        const std::uint8_t screen = pixel[params.blueScreen ? 2 : 1];
        const std::uint8_t other = pixel[params.blueScreen ? 1 : 2];
        const std::uint8_t opaque = Limit(std::int64_t{std::max(other, pixel[0])} - params.threshold);
        const std::uint8_t clear = Limit(std::int64_t{params.softness} + opaque);
        if (screen <= opaque) return 255;
        if (screen >= clear) return 0;
        return NormDiv8(static_cast<std::uint8_t>(clear - screen), static_cast<std::uint8_t>(clear - opaque));
    });
}

void PlainLuma(const std::uint8_t* a, const std::uint8_t* b, std::uint8_t* out, std::size_t pixels,
               const LumaKeyParams& params)
{
    KeyPixels(a, b, out, pixels, params.keepAlpha, [&](const std::uint8_t* pixel) {
        const std::int64_t luma = ((Sum(params.weights, pixel) + 0x8000) >> 16) & 0xFF;
        const int key = Limit(((luma * params.gain) >> 16) + params.offset);
        return static_cast<std::uint8_t>(params.reverse ? 255 - key : key);
    });
}

const LevelTables<KeyRows>& Tables()
{
    static const LevelTables<KeyRows> tables({.sector = {PlainSector, PlainSector},
                                              .blueGreen = {PlainBlueGreen, PlainBlueGreen},
                                              .linear = {PlainLinear, PlainLinear},
                                              .luma = {PlainLuma, PlainLuma}},
                                             VFIL_FILLS);
    return tables;
}

const KeyRows& Rows(bool useVectors)
{
    return KeyRowsAt(useVectors ? BestLevel() : Level::Plain);
}

/// 16 bits hold the key before it is limited.
bool FitsVectors(const LumaKeyParams& params)
{
    return params.gain >= 0 && params.gain <= 64 * 65536 && std::abs(std::int64_t{params.offset}) <= 0x3FFF;
}

} // namespace

double MatteOfKey(double key)
{
    if (key <= 0) return 1;
    return key >= 1 ? 0 : 1 - key;
}

void MakeSectorMattes(const SectorKeyParams& params, std::uint8_t* mattes)
{
    // What the weights give of any pixel.
    constexpr int kLowest = 16;
    constexpr int kHighest = 240;
    for (int cr = kLowest; cr <= kHighest; ++cr)
        for (int cb = kLowest; cb <= kHighest; ++cb)
            mattes[256 * cr + cb] =
                SectorMatte(params, static_cast<std::uint8_t>(cb), static_cast<std::uint8_t>(cr));
}

const KeyRows& KeyRowsAt(Level level)
{
    return Tables().At(level);
}

KeyRow<SectorKeyParams> FindKeyRow(bool useVectors, bool streaming, const SectorKeyParams& params)
{
    return Rows(useVectors && params.mattes != nullptr).sector[streaming];
}

KeyRow<BlueGreenKeyParams> FindKeyRow(bool useVectors, bool streaming, const BlueGreenKeyParams& params)
{
    return Rows(useVectors && FitsVectors(params.difference)).blueGreen[streaming];
}

KeyRow<LinearKeyParams> FindKeyRow(bool useVectors, bool streaming, const LinearKeyParams& /*params*/)
{
    return Rows(useVectors).linear[streaming];
}

KeyRow<LumaKeyParams> FindKeyRow(bool useVectors, bool streaming, const LumaKeyParams& params)
{
    return Rows(useVectors && FitsVectors(params)).luma[streaming];
}

} // namespace vfil
