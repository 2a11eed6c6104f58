/// \file
/// The bounds of the roundings of fixed weights.

#include "il/loops/blur/fixedweights.h"

#include <algorithm>
#include <cmath>

namespace vfil {

namespace {

/// A fixed weight of all but this is still a signed 16-bit number after rounding.
constexpr float kFixedLimit = 0.999969482421875F;
constexpr double kFull = 255;

/// What a sum can be.
struct Span {
    double low = 0;
    double high = 0;

    /// Takes in a term: a number times anything that another span holds.
    void Add(double factor, const Span& span)
    {
        low += std::min(factor * span.low, factor * span.high);
        high += std::max(factor * span.low, factor * span.high);
    }
    double Magnitude() const { return std::max(-low, high); }
};

constexpr Span kSamples{0, kFull};
constexpr Span kRounding{-0.5, 0.5};

double Fixed(float weight)
{
    return FixedWeight(weight) / 32768.0;
}

/// The sums of a pass over samples of 0 .. 255, and how far those of the fixed weights are from them.
struct Pass {
    Pass(const float* weights, long count)
    {
        for (const float* weight = weights; weight < weights + count; ++weight) {
            sums.Add(*weight, kSamples);
            fixedSums.Add(Fixed(*weight), kSamples);
            missed.Add(Fixed(*weight) - *weight, kSamples);
        }
    }

    Span sums, fixedSums, missed;
};

/// Both forms keep 16 bits or floats between the passes, of which the fixed one's must not be limited.
bool Fits16Bits(const Span& fixedSums)
{
    return fixedSums.Magnitude() + 1 < 32767;
}

/// What the float form's sums may be off by: n additions and products of 24 bits, each by half of the last
/// bit of the terms' magnitudes together.
double FloatRoundings(long n, double magnitude)
{
    return static_cast<double>(n) * magnitude / (1 << 24);
}

} // namespace

bool AreFixedWeightsExact(const float* weights, long count)
{
    double missed = 0;
    double magnitude = 0;
    for (long i = 0; i < count; ++i) {
        if (!(weights[i] > -1 && weights[i] < 1)) return false;
        missed += std::fabs(double{weights[i]} - Fixed(weights[i])) * kFull;
        magnitude += std::fabs(weights[i]) * kFull;
    }
    return missed + FloatRoundings(count + 1, magnitude) < 1;
}

/// Before they are rounded to samples, by the same rule, a result S of the float form and F of the fixed one
/// are
///
///     S = sum of b(j) T(j)     T(j) = sum of a(i) x(i, j)
///     F = sum of b'(j) T'(j)   T'(j) = sum of a'(i) x(i, j), rounded
///
/// for the row's weights a, the column's b, and the fixed ones a' and b', so that
///
///     F - S = sum of b'(j) (T'(j) - T(j)) + sum of (b'(j) - b(j)) T(j)
///
/// in which T'(j) - T(j) is a rounding and the sum of the row's misses. Numbers less than 1 apart are not
/// rounded to samples more than 1 apart.
bool AreFixedPassesExact(const float* row, long width, const float* column, long height)
{
    const auto fits = [](float w) { return w > -kFixedLimit && w < kFixedLimit; };
    if (!std::all_of(row, row + width, fits) || !std::all_of(column, column + height, fits)) return false;
    const Pass across(row, width);
    if (!Fits16Bits(across.fixedSums)) return false;
    Span missedAcross = across.missed;
    missedAcross.Add(1, kRounding);
    Span missed;
    double magnitude = 0;
    for (long j = 0; j < height; ++j) {
        missed.Add(Fixed(column[j]), missedAcross);
        missed.Add(Fixed(column[j]) - column[j], across.sums);
        magnitude += std::fabs(column[j]) * (across.sums.high - across.sums.low);
    }
    return missed.Magnitude() + FloatRoundings(width + height + 1, magnitude) < 1;
}

} // namespace vfil
