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
    /// Whether one of 2 x 2 pixels, of which (x, y) is the first, is outside.
    bool Is2x2NeighborOutsideRegion(std::int64_t x, std::int64_t y) const
    {
        return !Has(x, y) || !Has(x + 1, y + 1);
    }
    bool Is4x4NeighborOutsideRegion(std::int64_t x, std::int64_t y) const
    {
        return !Has(x, y) || !Has(x + 3, y + 3);
    }
    const unsigned char* PlaceOf(std::int64_t x, std::int64_t y) const
    {
        return source.pixels + y * source.rowBytes + x * std::ptrdiff_t{kPixelBytes};
    }
    /// The default pixel outside.
    Pixel At(std::int64_t x, std::int64_t y) const
    {
        Pixel pixel;
        std::memcpy(&pixel, Has(x, y) ? PlaceOf(x, y) : source.defaultPixel, kPixelBytes);
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
        const double low = std::floor(u);
        const auto fixed = static_cast<std::int32_t>((u - low) * kFractions + 0.5);
        whole = static_cast<std::int64_t>(low) + (fixed >> kFractionBits);
        fraction = fixed & ((1 << kFractionBits) - 1);
    }

    std::int64_t whole;
    std::int32_t fraction;
};

/// size x size pixels, of which (x, y) is the first: row by row, or one by one at an edge.
template <class Kind, int size>
struct Block {
    Block(const Kind& picture, std::int64_t x, std::int64_t y)
    {
        const bool isAtEdge =
            size == 2 ? picture.Is2x2NeighborOutsideRegion(x, y) : picture.Is4x4NeighborOutsideRegion(x, y);
        for (int j = 0; j < size; ++j) {
            if (!isAtEdge) {
                std::memcpy(pixel[j], picture.PlaceOf(x, y + j), sizeof pixel[j]);
            } else {
                for (int i = 0; i < size; ++i)
                    pixel[j][i] = picture.At(x + i, y + j);
            }
        }
    }

    typename Kind::Pixel pixel[size][size];
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
    const Block<Kind, 2> block(picture, x.whole, y.whole);
    typename Kind::Pixel result;
    for (int c = 0; c < Kind::kSamples; ++c) {
        const std::int32_t top =
            Between(block.pixel[0][0].sample[c], block.pixel[0][1].sample[c], x.fraction);
        const std::int32_t bottom =
            Between(block.pixel[1][0].sample[c], block.pixel[1][1].sample[c], x.fraction);
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
    const Block<Kind, 2> block(picture, static_cast<std::int64_t>(left), static_cast<std::int64_t>(low));
    const auto between = [](double a, double b, double fraction) { return a + (b - a) * fraction; };
    typename Kind::Pixel result;
    for (int c = 0; c < Kind::kSamples; ++c) {
        const double top = between(block.pixel[0][0].sample[c], block.pixel[0][1].sample[c], fu);
        const double bottom = between(block.pixel[1][0].sample[c], block.pixel[1][1].sample[c], fu);
        result.sample[c] = RoundToSample<std::uint16_t>(between(top, bottom, fv));
    }
    return result;
}

/// 255 times the largest weights' sum, 1.25 times 65549, has 25 bits, and a column 15: both sums fit 32.
template <class Kind>
requires(sizeof(typename Kind::Sample) == 1) typename Kind::Pixel
    Bicubic(const Kind& picture, double u, double v)
{
    const Fixed x(u);
    const Fixed y(v);
    const CubicWeights cx = CubicWeightsOf(x.fraction);
    const CubicWeights cy = CubicWeightsOf(y.fraction);
    const Block<Kind, 4> block(picture, x.whole - 1, y.whole - 1);
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
    const Block<Kind, 4> block(picture, static_cast<std::int64_t>(left) - 1,
                               static_cast<std::int64_t>(low) - 1);
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

/// The line's places are doubles without a rounding, and whole numbers of the unit: any order of sums has
/// them.
template <SampleForm form, class Kind>
void PlainStepRow(const SampleSource& source, const SampleSteps& steps, std::size_t count, unsigned char* out)
{
    for (std::size_t i = 0; i < count; ++i, out += Kind::kPixelBytes) {
        const double u = StepAt(steps.u, steps.du, static_cast<std::int64_t>(i));
        const double v = StepAt(steps.v, steps.dv, static_cast<std::int64_t>(i));
        PlainSampleRow<form, Kind>(source, &u, &v, 1, out);
    }
}

std::size_t PlainCountInside(const SampleBounds& bounds, const double* u, const double* v, std::size_t count)
{
    std::size_t at = 0;
    while (at < count && u[at] >= bounds.lowU && u[at] < bounds.highU && v[at] >= bounds.lowV &&
           v[at] < bounds.highV)
        ++at;
    return at;
}

template <SampleForm form>
struct Plain {
    static constexpr SampleKernel kRows[] = {PlainSampleRow<form, FourBytes>, PlainSampleRow<form, FourWords>,
                                             PlainSampleRow<form, Byte>, PlainSampleRow<form, Word>};
    static constexpr StepKernel kSteps[] = {PlainStepRow<form, FourBytes>, PlainStepRow<form, FourWords>,
                                            PlainStepRow<form, Byte>, PlainStepRow<form, Word>};
};

SampleRows PlainRows()
{
    SampleRows rows{};
    for (std::size_t pixel = 0; pixel < kSamplePixels; ++pixel) {
        rows.sample[0][pixel] = rows.inside[0][pixel] = Plain<SampleForm::Nearest>::kRows[pixel];
        rows.sample[1][pixel] = rows.inside[1][pixel] = Plain<SampleForm::Bilinear>::kRows[pixel];
        rows.sample[2][pixel] = rows.inside[2][pixel] = Plain<SampleForm::Bicubic>::kRows[pixel];
        rows.steps[0][pixel] = Plain<SampleForm::Nearest>::kSteps[pixel];
        rows.steps[1][pixel] = Plain<SampleForm::Bilinear>::kSteps[pixel];
        rows.steps[2][pixel] = Plain<SampleForm::Bicubic>::kSteps[pixel];
    }
    rows.countInside = PlainCountInside;
    return rows;
}

template <class Sample>
void PlainMix(Sample* from, const Sample* to, double amount, std::size_t samples)
{
    for (std::size_t i = 0; i < samples; ++i) {
        const double a = from[i];
        from[i] =
            static_cast<Sample>(a + (to[i] - a) * amount + 0.5); // between two samples, so within the range
    }
}

} // namespace

const SampleRows& SampleRowsAt(Level level)
{
    static const LevelTables<SampleRows> tables(PlainRows(), VFIL_FILLS);
    return tables.At(level);
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
