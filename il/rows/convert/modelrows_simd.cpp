/// \file
/// The vector forms of the kernels between colour models, for the level VFIL_LEVEL: a lane of doubles a
/// component, and the operations of the plain forms in the same order.
#include "il/rows/convert/modelparams.h"
#include "il/rows/vec64.h"

namespace vfil {
namespace {

struct Triple64 {
    F64 a, b, c;
};

template <class Sample>
constexpr int kBits = 8 * sizeof(Sample);
template <class Sample>
constexpr int kFull = (1 << kBits<Sample>)-1;

/// Component c of each pixel as a fraction of the full sample.
template <class Sample, int c>
F64 Fraction(Pixels64 pixels)
{
    const Pixels64 full{SplatU64(kFull<Sample>).bits};
    return ToDouble(ShiftDown<c * kBits<Sample>>(pixels) & full) * SplatDouble(1.0 / kFull<Sample>);
}

/// Rounds to the nearest sample. What is below 0 and NaN become 0.
template <class Sample, int c>
Pixels64 Component(F64 fraction)
{
    const F64 full = SplatDouble(kFull<Sample>);
    const F64 limited = Min(Max(fraction * full, SplatDouble(0)), full);
    return ShiftUp<c * kBits<Sample>>(ToWhole(limited + SplatDouble(0.5)));
}

template <class Sample, class Convert>
void ConvertVector(const Sample* in, Sample* out, Convert convert)
{
    const Pixels64 pixels = LoadPixels(in);
    const Triple64 to =
        convert({Fraction<Sample, 0>(pixels), Fraction<Sample, 1>(pixels), Fraction<Sample, 2>(pixels)});
    const Pixels64 alpha{SplatU64(std::uint64_t{kFull<Sample>} << (3 * kBits<Sample>)).bits};
    StorePixels(out, Component<Sample, 0>(to.a) | Component<Sample, 1>(to.b) | Component<Sample, 2>(to.c) |
                         (pixels & alpha));
}

template <class Sample, class Convert>
void ConvertPixels(const Sample* in, Sample* out, std::size_t pixels, Convert convert)
{
    constexpr std::size_t kSamples = 4 * kLanes64;
    for (; pixels >= kLanes64; pixels -= kLanes64, in += kSamples, out += kSamples)
        ConvertVector(in, out, convert);
    if (pixels == 0) return;
    Sample part[kSamples] = {};
    std::memcpy(part, in, pixels * 4 * sizeof(Sample));
    ConvertVector(part, part, convert);
    std::memcpy(out, part, pixels * 4 * sizeof(Sample));
}

template <class Sample>
void Transform(const Sample* in, Sample* out, std::size_t pixels, const double* matrix)
{
    F64 m[16];
    for (std::size_t i = 0; i < 16; ++i)
        m[i] = SplatDouble(matrix[i]);
    ConvertPixels(in, out, pixels, [&m](const Triple64& v) {
        return Triple64{v.a * m[0] + v.b * m[4] + v.c * m[8] + m[12],
                        v.a * m[1] + v.b * m[5] + v.c * m[9] + m[13],
                        v.a * m[2] + v.b * m[6] + v.c * m[10] + m[14]};
    });
}

/// A grey divides 0 by 0, and rounding makes of NaN the 0 that is a grey's hue, and white's and black's
/// saturation.
template <class Sample>
void RgbToHls(const Sample* in, Sample* out, std::size_t pixels)
{
    ConvertPixels(in, out, pixels, [](const Triple64& rgb) {
        const auto [r, g, b] = rgb;
        const F64 largest = Max(Max(r, g), b);
        const F64 smallest = Min(Min(r, g), b);
        const F64 difference = largest - smallest;
        const F64 sum = largest + smallest;
        const F64 lightness = SplatDouble(0.5) * sum;
        const F64 saturation = difference / Select(SplatDouble(0.5) < lightness, SplatDouble(2) - sum, sum);
        const Mask64 red = r == largest;
        const Mask64 green = g == largest;
        const F64 sector = Select(red, g - b, Select(green, b - r, r - g)) / difference +
                           Select(red, SplatDouble(0), Select(green, SplatDouble(2), SplatDouble(4)));
        const F64 degrees = sector * SplatDouble(60);
        const F64 turned = Select(degrees < SplatDouble(0), degrees + SplatDouble(360), degrees);
        return Triple64{turned * SplatDouble(1.0 / 360), lightness, saturation};
    });
}

/// Needs no case for black, of which all that is largest and smallest is 0, nor for a hue beyond 0 .. 1.
template <class Sample>
void HlsToRgb(const Sample* in, Sample* out, std::size_t pixels)
{
    static_assert(kFull<Sample> * (1.0 / kFull<Sample>) <= 1);
    ConvertPixels(in, out, pixels, [](const Triple64& hls) {
        const auto [hue, lightness, saturation] = hls;
        const F64 one = SplatDouble(1);
        const F64 product = saturation * lightness;
        const F64 largest = Select(SplatDouble(0.5) < lightness, (saturation + lightness) - product,
                                   (saturation + one) * lightness);
        const F64 smallest = SplatDouble(2) * lightness - largest;
        const F64 around = hue * SplatDouble(6);
        const F64 position = Select(around < SplatDouble(6), around, SplatDouble(0));
        const F64 rise = (largest - smallest) * (position - ToDouble(ToWhole(position)));
        // Bounds of the sextants: an odd number of them lies above positions of an even sextant.
        const Mask64 below[] = {position < one, position < SplatDouble(2), position < SplatDouble(3),
                                position < SplatDouble(4), position < SplatDouble(5)};
        const F64 middle =
            Select(below[0] ^ below[1] ^ below[2] ^ below[3] ^ below[4], smallest + rise, largest - rise);
        const F64 redRest = Select(below[1] ^ below[3], smallest, middle);
        const F64 greenRest = Select(below[3], middle, smallest);
        const F64 blueRest = Select(below[1], smallest, middle);
        return Triple64{Select(below[0] ^ below[4], redRest, largest),
                        Select(below[0] ^ below[2], largest, greenRest),
                        Select(below[2] ^ below[4], largest, blueRest)};
    });
}

template <class Sample>
void FillCases(ModelCases<Sample>& cases)
{
    cases = {Transform<Sample>, RgbToHls<Sample>, HlsToRgb<Sample>};
}

} // namespace

namespace VFIL_LEVEL {

void Fill(ModelRows& rows)
{
    FillCases(rows.of8);
    FillCases(rows.of16);
}

} // namespace VFIL_LEVEL
} // namespace vfil
