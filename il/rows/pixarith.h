/// \file
/// Every rounding rule of the library, once: products and quotients of normalised samples, and the way
/// from a real number to a sample. Included by the plain row kernels, the tables and the processors.
#pragma once

#include <algorithm>
#include <concepts>
#include <cstdint>
#include <limits>

namespace vfil {

/// The arithmetic of samples in which the full value stands for 1: every product is rounded to nearest by
/// itself (the full value is odd, so there are no ties), and a sum is clipped. F is a front sample, B a back
/// sample, A the front's alpha, C the back's alpha, M an amount.
template <class SampleType>
struct FullScale {
    using Sample = SampleType;
    static constexpr Sample kFull = std::numeric_limits<Sample>::max();

    static constexpr Sample Mult(Sample a, Sample b)
    {
        // Unsigned: two samples promote to int, in which 65535 * 65535 would overflow.
        return static_cast<Sample>((std::uint32_t{a} * b + kFull / 2) / kFull);
    }
    /// Needs no clip: the two weights sum to full, and so the two rounded products to full at most.
    static constexpr Sample Blend(Sample F, Sample B, Sample M)
    {
        return static_cast<Sample>(Mult(M, F) + Mult(Rest(M), B));
    }
    static constexpr Sample FrontOverBack(Sample F, Sample B, Sample A) { return Add(F, Mult(Rest(A), B)); }
    static constexpr Sample FrontInBack(Sample F, Sample C) { return Mult(C, F); }
    static constexpr Sample FrontOutBack(Sample F, Sample C) { return Mult(Rest(C), F); }
    static constexpr Sample FrontAtopBack(Sample F, Sample B, Sample A, Sample C)
    {
        return Add(Mult(Rest(A), B), Mult(C, F));
    }
    static constexpr Sample FrontXorBack(Sample F, Sample B, Sample A, Sample C)
    {
        return Add(Mult(Rest(A), B), Mult(Rest(C), F));
    }
    static constexpr Sample Add(Sample a, Sample b)
    {
        return static_cast<Sample>(std::min<std::uint32_t>(std::uint32_t{a} + b, kFull));
    }
    static constexpr Sample AddNoClip(Sample a, Sample b) { return Add(Mult(a, Rest(b)), b); }
    static constexpr Sample Diff(Sample a, Sample b) { return static_cast<Sample>(a > b ? a - b : b - a); }

    /// Luma weights of 97ths; all of them fit the sample again.
    static constexpr std::uint32_t Brightness(Sample r, Sample g, Sample b)
    {
        return (29u * r + 57u * g + 11u * b) / 97u;
    }

protected:
    static constexpr Sample Rest(Sample a) { return static_cast<Sample>(kFull - a); }
};

/// The arithmetic of the library's channels.
template <class Sample>
struct Arith;

template <>
struct Arith<std::uint8_t> : FullScale<std::uint8_t> {};

/// At 16 bits a sum of products is made in 32 unsigned bits, where two of them may wrap, and divided once.
/// Three rules are unlike those of 8 bits and meant so: the front of FrontOverBack and the second term of
/// AddNoClip enter the numerator unscaled, and Diff keeps the low byte only. Operators that are told to use
/// the full scale take FullScale instead.
template <>
struct Arith<std::uint16_t> : FullScale<std::uint16_t> {
    static constexpr Sample Blend(Sample F, Sample B, Sample M)
    {
        return Ratio(Product(F, M) + Product(Rest(M), B));
    }
    static constexpr Sample FrontOverBack(Sample F, Sample B, Sample A)
    {
        return Ratio(F + Product(Rest(A), B));
    }
    static constexpr Sample FrontAtopBack(Sample F, Sample B, Sample A, Sample C)
    {
        return Ratio(Product(Rest(A), B) + Product(C, F));
    }
    static constexpr Sample FrontXorBack(Sample F, Sample B, Sample A, Sample C)
    {
        return Ratio(Product(Rest(A), B) + Product(Rest(C), F));
    }
    static constexpr Sample AddNoClip(Sample a, Sample b) { return Ratio(Product(Rest(b), a) + b); }
    static constexpr Sample Diff(Sample a, Sample b)
    {
        return static_cast<Sample>(FullScale::Diff(a, b) & 0xFF);
    }

    /// numerator / 65535 rounded to nearest, at most 65535. 65535 is odd, so there are no ties, and the
    /// integer form gives what numerator * (1.0 / 65535) + 0.5, truncated, gives. Up to the limit of
    /// 65535 * 65535 the sums stay below 2 to the power of 32.
    static constexpr Sample Ratio(std::uint32_t numerator)
    {
        const std::uint32_t x = std::min(numerator, 65535u * 65535u) + 32768u;
        return static_cast<Sample>((x + (x >> 16)) >> 16);
    }

private:
    static constexpr std::uint32_t Product(Sample a, Sample b) { return std::uint32_t{a} * b; }
};

/// F by M, B by the rest, as one fixed-point step from B: the rule of the filters' 15-bit arithmetic, at most
/// one from Arith's Blend.
constexpr std::uint8_t BlendFixed8(std::uint8_t F, std::uint8_t B, std::uint8_t M)
{
    const int t = (F - B) * M + 0x80;
    return static_cast<std::uint8_t>(B + ((t + (t >> 8)) >> 8));
}

/// a + b - a * b / 255: the complement of the product of the complements.
constexpr std::uint8_t InvNormMult8(std::uint8_t a, std::uint8_t b)
{
    const auto rest = [](std::uint8_t x) { return static_cast<std::uint8_t>(255 - x); };
    return rest(Arith<std::uint8_t>::Mult(rest(a), rest(b)));
}

/// a / b of normalised samples, half rounded up, at most 255; 0 where b is 0.
constexpr std::uint8_t NormDiv8(std::uint8_t a, std::uint8_t b)
{
    return b == 0 ? std::uint8_t{0} : static_cast<std::uint8_t>(std::min(255, (2 * 255 * a + b) / (2 * b)));
}

/// A sixth of a / b, the share of one of the six sectors of the hue circle; rounded as NormDiv8.
constexpr std::uint8_t HueDiv8(std::uint8_t a, std::uint8_t b)
{
    return b == 0 ? std::uint8_t{0} : static_cast<std::uint8_t>(std::min(255, (255 * a + 3 * b) / (6 * b)));
}

/// alpha / 255 of a signed value of 16 bits, rounded on its magnitude.
constexpr int SignedNormMult(std::uint8_t alpha, int value)
{
    const int magnitude = (alpha * (value < 0 ? -value : value) + 127) / 255;
    return value < 0 ? -magnitude : magnitude;
}

/// v rounded half away from zero and clamped to the range of Integer; NaN gives 0.
template <std::integral Integer>
requires(sizeof(Integer) <= 4) constexpr Integer RoundSaturated(double v)
{
    using Limits = std::numeric_limits<Integer>;
    if (v != v) return 0;
    if (v <= static_cast<double>(Limits::min())) return Limits::min();
    if (v >= static_cast<double>(Limits::max())) return Limits::max();
    return static_cast<Integer>(v < 0 ? v - 0.5 : v + 0.5);
}

template <class Sample>
constexpr Sample RoundToSample(double v)
{
    return RoundSaturated<Sample>(v);
}

constexpr std::int32_t RoundHalfAway(double v)
{
    return RoundSaturated<std::int32_t>(v);
}

} // namespace vfil
