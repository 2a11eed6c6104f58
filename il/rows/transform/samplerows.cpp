/// \file
/// The plain forms of the sampling kernels, and the table of their levels.
#include "il/rows/transform/samplerows.h"

#include "il/rows/pixarith.h"

#include <cmath>
#include <cstring>

namespace vfil {

namespace {

/// A picture of pixels of some samples.
template <class SampleType, int samples>
struct Picture {
    using Sample = SampleType;
    static constexpr int kSamples = samples;
    static constexpr std::size_t kPixelBytes = samples * sizeof(Sample);

    struct Pixel {
        Sample sample[samples];
    };

    bool Has(std::int64_t x, std::int64_t y) const
    {
        return x >= source.left && x < source.right && y >= source.bottom && y < source.top;
    }
    /// The default pixel outside.
    Pixel At(std::int64_t x, std::int64_t y) const
    {
        const unsigned char* from = source.defaultPixel;
        if (Has(x, y)) from = source.pixels + y * source.rowBytes + x * std::ptrdiff_t{kPixelBytes};
        Pixel pixel;
        std::memcpy(&pixel, from, kPixelBytes);
        return pixel;
    }

    const SampleSource& source;
};

using FourBytes = Picture<std::uint8_t, 4>;
using FourWords = Picture<std::uint16_t, 4>;
using Byte = Picture<std::uint8_t, 1>;
using Word = Picture<std::uint16_t, 1>;

/// Whether a place is so near to the bounds that its neighbours, so many pixels away, may be within; false
/// for NaN. What is far away need not, and could not, be converted to a whole number.
bool IsNear(const SampleSource& source, double u, double v, int reach)
{
    const auto isNear = [reach](double at, double first, double behind) {
        return at >= first - reach && at < behind + reach - 1;
    };
    return isNear(u, source.left, source.right) && isNear(v, source.bottom, source.top);
}

template <class Kind>
typename Kind::Pixel Nearest(const Kind& picture, double u, double v)
{
    return picture.At(RoundHalfAway(u), RoundHalfAway(v));
}

/// A coordinate in fixed point.
struct Fixed {
    explicit Fixed(double u)
    {
        const auto fixed = static_cast<std::int64_t>(std::floor(u * kFractions + 0.5));
        whole = fixed >> kFractionBits;
        fraction = static_cast<std::int32_t>(fixed & ((1 << kFractionBits) - 1));
    }

    std::int64_t whole;
    std::int32_t fraction;
};

std::int32_t Between(std::int32_t a, std::int32_t b, std::int32_t fraction)
{
    return a + (((b - a) * fraction + 0x8000) >> kFractionBits);
}

template <class Kind>
requires(sizeof(typename Kind::Sample) == 1) typename Kind::Pixel
    Bilinear(const Kind& picture, double u, double v)
{
    const Fixed x(u);
    const Fixed y(v);
    const auto p00 = picture.At(x.whole, y.whole);
    const auto p10 = picture.At(x.whole + 1, y.whole);
    const auto p01 = picture.At(x.whole, y.whole + 1);
    const auto p11 = picture.At(x.whole + 1, y.whole + 1);
    typename Kind::Pixel result;
    for (int c = 0; c < Kind::kSamples; ++c) {
        const std::int32_t top = Between(p00.sample[c], p10.sample[c], x.fraction);
        const std::int32_t bottom = Between(p01.sample[c], p11.sample[c], x.fraction);
        // Between two samples there is no other, so nothing is to be limited.
        result.sample[c] = static_cast<std::uint8_t>(Between(top, bottom, y.fraction));
    }
    return result;
}

template <class Kind>
requires(sizeof(typename Kind::Sample) == 2) typename Kind::Pixel
    Bilinear(const Kind& picture, double u, double v)
{
    const double left = std::floor(u);
    const double low = std::floor(v);
    const double fu = u - left;
    const double fv = v - low;
    const auto x = static_cast<std::int64_t>(left);
    const auto y = static_cast<std::int64_t>(low);
    const auto p00 = picture.At(x, y);
    const auto p10 = picture.At(x + 1, y);
    const auto p01 = picture.At(x, y + 1);
    const auto p11 = picture.At(x + 1, y + 1);
    const auto between = [](double a, double b, double fraction) { return a + (b - a) * fraction; };
    typename Kind::Pixel result;
    for (int c = 0; c < Kind::kSamples; ++c) {
        const double top = between(p00.sample[c], p10.sample[c], fu);
        const double bottom = between(p01.sample[c], p11.sample[c], fu);
        result.sample[c] = RoundToSample<std::uint16_t>(between(top, bottom, fv));
    }
    return result;
}

/// 4 x 4 pixels, the rows from the lowest.
template <class Kind>
struct Block {
    Block(const Kind& picture, std::int64_t x, std::int64_t y)
    {
        for (int j = 0; j < 4; ++j)
            for (int i = 0; i < 4; ++i)
                pixel[j][i] = picture.At(x - 1 + i, y - 1 + j);
    }

    typename Kind::Pixel pixel[4][4];
};

/// 255 times the largest weights' sum, 1.25 times 65549, has 25 bits, and a column 15: both sums fit 32.
template <class Kind>
requires(sizeof(typename Kind::Sample) == 1) typename Kind::Pixel
    Bicubic(const Kind& picture, double u, double v)
{
    const Fixed x(u);
    const Fixed y(v);
    const CubicWeights cx = CubicWeightsOf(x.fraction);
    const CubicWeights cy = CubicWeightsOf(y.fraction);
    const Block<Kind> block(picture, x.whole, y.whole);
    typename Kind::Pixel result;
    for (int c = 0; c < Kind::kSamples; ++c) {
        std::int32_t sum = 0;
        for (int i = 0; i < 4; ++i) {
            std::int32_t column = 0;
            for (int j = 0; j < 4; ++j)
                column += block.pixel[j][i].sample[c] * cy.weight[j];
            sum += ((column + 0x200) >> 10) * cx.weight[i];
        }
        result.sample[c] = static_cast<std::uint8_t>(std::clamp((sum + 0x200000) >> 22, 0, 255));
    }
    return result;
}

/// The weights of the four pixels around a fraction.
struct ExactWeights {
    explicit ExactWeights(double t)
    {
        const double t2 = t * t;
        const double t3 = t2 * t;
        weight[0] = t2 - 0.5 * t - 0.5 * t3;
        weight[1] = 1 - 2.5 * t2 + 1.5 * t3;
        weight[2] = 0.5 * t + 2 * t2 - 1.5 * t3;
        weight[3] = 0.5 * t3 - 0.5 * t2;
    }
    double Sum(double a, double b, double c, double d) const
    {
        return ((a * weight[0] + b * weight[1]) + c * weight[2]) + d * weight[3];
    }

    double weight[4];
};

template <class Kind>
requires(sizeof(typename Kind::Sample) == 2) typename Kind::Pixel
    Bicubic(const Kind& picture, double u, double v)
{
    const double left = std::floor(u);
    const double low = std::floor(v);
    const ExactWeights cx(u - left);
    const ExactWeights cy(v - low);
    const Block<Kind> block(picture, static_cast<std::int64_t>(left), static_cast<std::int64_t>(low));
    typename Kind::Pixel result;
    for (int c = 0; c < Kind::kSamples; ++c) {
        double column[4];
        for (int i = 0; i < 4; ++i)
            column[i] = cy.Sum(block.pixel[0][i].sample[c], block.pixel[1][i].sample[c],
                               block.pixel[2][i].sample[c], block.pixel[3][i].sample[c]);
        result.sample[c] = RoundToSample<std::uint16_t>(cx.Sum(column[0], column[1], column[2], column[3]));
    }
    return result;
}

template <SampleForm form, class Kind>
void PlainSampleRow(const SampleSource& source, const double* u, const double* v, std::size_t count,
                    unsigned char* out)
{
    const Kind picture{source};
    for (std::size_t i = 0; i < count; ++i, out += Kind::kPixelBytes) {
        typename Kind::Pixel pixel;
        if (!IsNear(source, u[i], v[i], form == SampleForm::Bicubic ? 2 : 1)) {
            std::memcpy(&pixel, source.defaultPixel, Kind::kPixelBytes);
        } else if constexpr (form == SampleForm::Nearest) {
            pixel = Nearest(picture, u[i], v[i]);
        } else if constexpr (form == SampleForm::Bilinear) {
            pixel = Bilinear(picture, u[i], v[i]);
        } else {
            pixel = Bicubic(picture, u[i], v[i]);
        }
        std::memcpy(out, &pixel, Kind::kPixelBytes);
    }
}

constexpr SampleRows kPlainRows{
    .sample =
        {{PlainSampleRow<SampleForm::Nearest, FourBytes>, PlainSampleRow<SampleForm::Nearest, FourWords>,
          PlainSampleRow<SampleForm::Nearest, Byte>, PlainSampleRow<SampleForm::Nearest, Word>},
         {PlainSampleRow<SampleForm::Bilinear, FourBytes>, PlainSampleRow<SampleForm::Bilinear, FourWords>,
          PlainSampleRow<SampleForm::Bilinear, Byte>, PlainSampleRow<SampleForm::Bilinear, Word>},
         {PlainSampleRow<SampleForm::Bicubic, FourBytes>, PlainSampleRow<SampleForm::Bicubic, FourWords>,
          PlainSampleRow<SampleForm::Bicubic, Byte>, PlainSampleRow<SampleForm::Bicubic, Word>}},
};

template <class Sample>
void PlainMix(Sample* from, const Sample* to, double amount, std::size_t samples)
{
    for (std::size_t i = 0; i < samples; ++i) {
        const double a = from[i];
        from[i] = RoundToSample<Sample>(a + (to[i] - a) * amount);
    }
}

} // namespace

const SampleRows& SampleRowsAt(Level level)
{
    static const LevelTables<SampleRows> tables(kPlainRows, VFIL_FILLS);
    return tables.At(level);
}

SampleRow FindSampleRow(bool useVectors, SampleForm form, SamplePixel pixel)
{
    const SampleRows& rows = SampleRowsAt(useVectors ? BestLevel() : Level::Plain);
    return rows.sample[static_cast<std::size_t>(form)][static_cast<std::size_t>(pixel)];
}

void MixSamples(std::uint8_t* from, const std::uint8_t* to, double amount, std::size_t samples)
{
    PlainMix(from, to, amount, samples);
}

void MixSamples(std::uint16_t* from, const std::uint16_t* to, double amount, std::size_t samples)
{
    PlainMix(from, to, amount, samples);
}

} // namespace vfil
