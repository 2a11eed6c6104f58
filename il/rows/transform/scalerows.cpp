/// \file
/// The plain forms of the kernels of sampling along the axes, and the table of their levels.
#include "il/rows/transform/scalerows.h"

#include "il/rows/pixarith.h"

#include <cstring>
#include <limits>

namespace vfil {

namespace {

std::int32_t Between(std::int32_t a, std::int32_t b, std::int32_t fraction)
{
    return a + (((b - a) * fraction + 0x8000) >> 16);
}

double Between(double a, double b, double fraction)
{
    return a + (b - a) * fraction;
}

std::int32_t FractionOf(std::uint8_t, const LerpTaps& taps, std::size_t k)
{
    return static_cast<std::int32_t>(taps.fractions[k] & 0xFFFF);
}

double FractionOf(std::uint16_t, const LerpTaps& taps, std::size_t k)
{
    return taps.exact[k];
}

template <class Sample, std::size_t channels>
void PlainLerpPixels(const Sample* line, const LerpTaps& taps, typename BetweenPasses<Sample>::Lerped* out,
                     std::size_t pixels)
{
    for (std::size_t k = 0; k < pixels; ++k) {
        const Sample* const in = line + taps.starts[k] * static_cast<std::ptrdiff_t>(channels);
        const auto fraction = FractionOf(Sample{}, taps, k);
        for (std::size_t c = 0; c < channels; ++c) {
            using Value = decltype(FractionOf(Sample{}, taps, k));
            *out++ = static_cast<typename BetweenPasses<Sample>::Lerped>(
                Between(Value(in[c]), Value(in[channels + c]), fraction));
        }
    }
}

void PlainLerpRows8(const std::uint8_t* low, const std::uint8_t* high, const RowFraction& fraction,
                    std::uint8_t* out, std::size_t samples)
{
    for (std::size_t i = 0; i < samples; ++i)
        out[i] =
            static_cast<std::uint8_t>(Between(std::int32_t{low[i]}, std::int32_t{high[i]}, fraction.fixed));
}

void PlainLerpRows16(const double* low, const double* high, const RowFraction& fraction, std::uint16_t* out,
                     std::size_t samples)
{
    for (std::size_t i = 0; i < samples; ++i)
        out[i] = RoundToSample<std::uint16_t>(Between(low[i], high[i], fraction.exact));
}

void PlainColumns8(const std::uint8_t* const* rows, const RowWeights& weights, std::int16_t* out,
                   std::size_t samples)
{
    for (std::size_t i = 0; i < samples; ++i) {
        std::int32_t sum = 0;
        for (int row = 0; row < 4; ++row)
            sum += rows[row][i] * weights.fixed[row];
        out[i] = static_cast<std::int16_t>((sum + 0x200) >> 10);
    }
}

double SumOfFour(double a, double b, double c, double d, const double* weights)
{
    return ((a * weights[0] + b * weights[1]) + c * weights[2]) + d * weights[3];
}

void PlainColumns16(const std::uint16_t* const* rows, const RowWeights& weights, double* out,
                    std::size_t samples)
{
    for (std::size_t i = 0; i < samples; ++i)
        out[i] = SumOfFour(rows[0][i], rows[1][i], rows[2][i], rows[3][i], weights.exact);
}

/// The weight that the halves of a pair give.
std::int32_t WeightOf(const CubicTaps& taps, std::size_t k, int tap)
{
    const auto half = [&](std::uint32_t pair) {
        return std::int32_t{static_cast<std::int16_t>(tap % 2 == 0 ? pair & 0xFFFF : pair >> 16)};
    };
    return 4 * half(taps.high[tap / 2][k]) + half(taps.low[tap / 2][k]);
}

template <std::size_t channels>
void PlainCubicPixels8(const std::int16_t* columns, const CubicTaps& taps, std::uint8_t* out,
                       std::size_t pixels)
{
    for (std::size_t k = 0; k < pixels; ++k) {
        const std::int16_t* const in = columns + taps.starts[k] * static_cast<std::ptrdiff_t>(channels);
        for (std::size_t c = 0; c < channels; ++c) {
            std::int32_t sum = 0;
            for (int tap = 0; tap < 4; ++tap)
                sum += in[static_cast<std::size_t>(tap) * channels + c] * WeightOf(taps, k, tap);
            *out++ = static_cast<std::uint8_t>(std::clamp((sum + 0x200000) >> 22, 0, 255));
        }
    }
}

template <std::size_t channels>
void PlainCubicPixels16(const double* columns, const CubicTaps& taps, std::uint16_t* out, std::size_t pixels)
{
    for (std::size_t k = 0; k < pixels; ++k) {
        const double* in = columns + taps.starts[k] * static_cast<std::ptrdiff_t>(channels);
        for (std::size_t c = 0; c < channels; ++c, ++in)
            *out++ = RoundToSample<std::uint16_t>(
                SumOfFour(in[0], in[channels], in[2 * channels], in[3 * channels], taps.exact + 4 * k));
    }
}

template <class Sample, std::size_t channels>
void PlainSumBoxes(const Sample* const* rows, const double* heights, std::size_t rowCount,
                   const BoxTaps& taps, Sample* out, std::size_t pixels)
{
    constexpr double kFull = std::numeric_limits<Sample>::max();
    for (std::size_t k = 0; k < pixels; ++k, out += channels) {
        double sums[channels] = {};
        double weight = 0;
        for (std::size_t row = 0; row < rowCount; ++row) {
            const Sample* pixel = rows[row] + taps.starts[k] * static_cast<std::ptrdiff_t>(channels);
            for (std::size_t tap = 0; tap < taps.taps; ++tap, pixel += channels) {
                const double area = taps.widths[tap * taps.pitch + k] * heights[row];
                weight += area;
                for (std::size_t c = 0; c < channels; ++c)
                    sums[c] += pixel[c] * area;
            }
        }
        const double share = 1 / weight;
        for (std::size_t c = 0; c < channels; ++c)
            out[c] = static_cast<Sample>(std::min(sums[c] * share, kFull));
    }
}

void PlainPickFours(const std::uint8_t* line, const std::int32_t* places, std::uint8_t* out,
                    std::size_t pixels)
{
    for (std::size_t k = 0; k < pixels; ++k)
        std::memcpy(out + 4 * k, line + 4 * std::ptrdiff_t{places[k]}, 4);
}

constexpr ScaleRows kPlainRows{
    .pickFours = PlainPickFours,
    .bytes = {.lerpPixels = {PlainLerpPixels<std::uint8_t, 4>, PlainLerpPixels<std::uint8_t, 1>},
              .lerpRows = {PlainLerpRows8, PlainLerpRows8},
              .columns = PlainColumns8,
              .cubicPixels = {PlainCubicPixels8<4>, PlainCubicPixels8<1>},
              .sumBoxes = {PlainSumBoxes<std::uint8_t, 4>, PlainSumBoxes<std::uint8_t, 1>}},
    .words = {.lerpPixels = {PlainLerpPixels<std::uint16_t, 4>, PlainLerpPixels<std::uint16_t, 1>},
              .lerpRows = {PlainLerpRows16, PlainLerpRows16},
              .columns = PlainColumns16,
              .cubicPixels = {PlainCubicPixels16<4>, PlainCubicPixels16<1>},
              .sumBoxes = {PlainSumBoxes<std::uint16_t, 4>, PlainSumBoxes<std::uint16_t, 1>}},
};

} // namespace

const ScaleRows& ScaleRowsAt(Level level)
{
    static const LevelTables<ScaleRows> tables(kPlainRows, VFIL_FILLS);
    return tables.At(level);
}

} // namespace vfil
