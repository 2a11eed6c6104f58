/// \file
/// The plain forms of the two-pass resampler's kernels, and the table of their levels.
#include "il/rows/transform/resamplerows.h"

#include "il/rows/pixarith.h"

namespace vfil {

namespace {

/// Weights sum to a whole at most, so that the sum of a sample's products fits 31 bits.
template <class Sample>
Sample Rounded(std::int64_t sum)
{
    return static_cast<Sample>((sum + kWholeWeight / 2) >> kWeightBits);
}

template <class Sample, std::size_t channels>
void PlainPixels(const Sample* line, const LineTaps& taps, Sample* out, std::size_t pixels)
{
    for (std::size_t k = 0; k < pixels; ++k)
        for (std::size_t c = 0; c < channels; ++c) {
            const Sample* in = line + taps.starts[k] * static_cast<std::ptrdiff_t>(channels) + c;
            std::int64_t sum = 0;
            for (std::size_t pair = 0; pair < taps.pairs; ++pair, in += 2 * channels) {
                const std::int16_t* weights = taps.weights + 2 * (pair * taps.pitch + k);
                sum += in[0] * weights[0] + in[channels] * weights[1];
            }
            out[k * channels + c] = Rounded<Sample>(sum);
        }
}

template <class Sample>
void PlainRows(const Sample* const* rows, const std::int16_t* weights, std::size_t pairs, Sample* out,
               std::size_t samples)
{
    for (std::size_t i = 0; i < samples; ++i) {
        std::int64_t sum = 0;
        for (std::size_t row = 0; row < 2 * pairs; ++row)
            sum += rows[row][i] * weights[row];
        out[i] = Rounded<Sample>(sum);
    }
}

template <class Sample>
void PlainUnder(const Sample* front, Sample* back, std::size_t pixels)
{
    using Rule = FullScale<Sample>;
    for (std::size_t i = 0; i < pixels; ++i, front += 4, back += 4) {
        const auto open = static_cast<Sample>(Rule::kFull - back[3]);
        for (int c = 0; c < 4; ++c)
            back[c] = Rule::Add(back[c], Rule::Mult(open, front[c]));
    }
}

template <class Sample>
void PlainMultiply(Sample* pixel, std::size_t pixels)
{
    for (std::size_t i = 0; i < pixels; ++i, pixel += 4)
        for (int c = 0; c < 3; ++c)
            pixel[c] = FullScale<Sample>::Mult(pixel[c], pixel[3]);
}

const LevelTables<ResampleRows>& Tables()
{
    static const LevelTables<ResampleRows> tables(
        {.pixels8 = PlainPixels<std::uint8_t, 4>,
         .mono8 = PlainPixels<std::uint8_t, 1>,
         .pixels16 = PlainPixels<std::uint16_t, 4>,
         .mono16 = PlainPixels<std::uint16_t, 1>,
         .rows8 = {PlainRows<std::uint8_t>, PlainRows<std::uint8_t>},
         .rows16 = {PlainRows<std::uint16_t>, PlainRows<std::uint16_t>},
         .under8 = PlainUnder<std::uint8_t>,
         .under16 = PlainUnder<std::uint16_t>,
         .multiply8 = PlainMultiply<std::uint8_t>,
         .multiply16 = PlainMultiply<std::uint16_t>},
        VFIL_FILLS);
    return tables;
}

const ResampleRows& Best(bool useVectors)
{
    return ResampleRowsAt(useVectors ? BestLevel() : Level::Plain);
}

} // namespace

const ResampleRows& ResampleRowsAt(Level level)
{
    return Tables().At(level);
}

template <>
WeighPixels<std::uint8_t> FindWeighPixels(bool useVectors, int channels)
{
    return channels == 4 ? Best(useVectors).pixels8 : Best(useVectors).mono8;
}

template <>
WeighPixels<std::uint16_t> FindWeighPixels(bool useVectors, int channels)
{
    return channels == 4 ? Best(useVectors).pixels16 : Best(useVectors).mono16;
}

template <>
WeighRows<std::uint8_t> FindWeighRows(bool useVectors, bool streaming)
{
    return Best(useVectors).rows8[streaming];
}

template <>
WeighRows<std::uint16_t> FindWeighRows(bool useVectors, bool streaming)
{
    return Best(useVectors).rows16[streaming];
}

template <>
PaintUnder<std::uint8_t> FindPaintUnder(bool useVectors)
{
    return Best(useVectors).under8;
}

template <>
PaintUnder<std::uint16_t> FindPaintUnder(bool useVectors)
{
    return Best(useVectors).under16;
}

template <>
MultiplyAlpha<std::uint8_t> FindMultiplyAlpha(bool useVectors)
{
    return Best(useVectors).multiply8;
}

template <>
MultiplyAlpha<std::uint16_t> FindMultiplyAlpha(bool useVectors)
{
    return Best(useVectors).multiply16;
}

} // namespace vfil
