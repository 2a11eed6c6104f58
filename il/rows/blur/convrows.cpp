/// \file
/// The plain forms of the convolutions' kernels, and the table of their levels.
#include "il/rows/blur/convrows.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <type_traits>

namespace vfil {

namespace {

/// Half of a result's last bit, of 15 fraction bits.
constexpr std::int64_t kHalf = 0x4000;

template <class Out>
Out Limit(std::int64_t value)
{
    using Limits = std::numeric_limits<Out>;
    return static_cast<Out>(std::clamp<std::int64_t>(value, Limits::min(), Limits::max()));
}

template <class Out>
Out WholePart(std::int64_t sum)
{
    return Limit<Out>(Limit<std::int16_t>((sum + kHalf) >> 15));
}

void PlainFixedSum(const std::uint8_t* const* sources, const std::int16_t* weights, std::size_t count,
                   std::uint8_t* out, std::size_t samples)
{
    for (std::size_t i = 0; i < samples; ++i) {
        std::int64_t sum = 0;
        for (std::size_t k = 0; k < count; ++k)
            sum += std::int64_t{sources[k][i]} * weights[k];
        out[i] = WholePart<std::uint8_t>(sum);
    }
}

void PlainPairs(const std::uint8_t* row, std::uint32_t* pairs, std::size_t samples)
{
    for (std::size_t i = 0; i < samples; ++i)
        pairs[i] = row[i] | (i + 4 < samples ? std::uint32_t{row[i + 4]} << 16 : 0);
}

void PlainFixedAcross(const std::uint32_t* pairs, const std::int16_t* weights, std::size_t count,
                      std::int16_t* out, std::size_t samples)
{
    for (std::size_t i = 0; i < samples; ++i) {
        std::int64_t sum = 0;
        for (std::size_t k = 0; k < count; k += 2) {
            const std::uint32_t pair = pairs[i + 4 * k];
            sum += std::int64_t{pair & 0xFFFF} * weights[k] + std::int64_t{pair >> 16} * weights[k + 1];
        }
        out[i] = WholePart<std::int16_t>(sum);
    }
}

void PlainFixedDown(const std::int16_t* const* sources, const std::int16_t* weights, std::size_t count,
                    std::uint8_t* out, std::size_t step, std::size_t samples)
{
    for (std::size_t row = 0; row < kTileRows; ++row) {
        for (std::size_t i = 0; i < samples; ++i) {
            std::int64_t sum = 0;
            for (std::size_t k = 0; k < count; ++k)
                sum += std::int64_t{sources[k][i]} * weights[k / 2 * 2 * kTileRows + 2 * row + k % 2];
            out[row * step + i] = WholePart<std::uint8_t>(sum);
        }
    }
}

/// Truncated and limited; 0 for NaN.
template <class Out>
Out FromFloat(float value)
{
    if constexpr (std::is_same_v<Out, float>) return value;
    constexpr auto kFull = std::numeric_limits<Out>::max();
    if (!(value > 0)) return 0;
    return value >= static_cast<float>(kFull) ? kFull : static_cast<Out>(value);
}

template <class In, class Out>
void PlainFloatSum(const In* const* sources, const float* weights, std::size_t count, float offset, Out* out,
                   std::size_t samples)
{
    for (std::size_t i = 0; i < samples; ++i) {
        float sum = 0;
        for (std::size_t k = 0; k < count; ++k)
            sum += weights[k] * static_cast<float>(sources[k][i]);
        out[i] = FromFloat<Out>(std::is_same_v<Out, float> ? sum : sum + offset + 0.5F);
    }
}

const LevelTables<ConvRows>& Tables()
{
    static const LevelTables<ConvRows> tables(
        {
            .fixed = PlainFixedSum,
            .pairs = PlainPairs,
            .fixedAcross = PlainFixedAcross,
            .fixedDown = PlainFixedDown,
            .float8 = PlainFloatSum<std::uint8_t, std::uint8_t>,
            .float8Across = PlainFloatSum<std::uint8_t, float>,
            .float8Down = PlainFloatSum<float, std::uint8_t>,
            .float16 = PlainFloatSum<std::uint16_t, std::uint16_t>,
            .float16Across = PlainFloatSum<std::uint16_t, float>,
            .float16Down = PlainFloatSum<float, std::uint16_t>,
        },
        VFIL_FILLS);
    return tables;
}

} // namespace

const ConvRows& ConvRowsAt(Level level)
{
    return Tables().At(level);
}

const ConvRows& FindConvRows(bool useVectors)
{
    return ConvRowsAt(useVectors ? BestLevel() : Level::Plain);
}

bool FitFixedSums(const std::int16_t* weights, std::size_t count, std::int64_t magnitude)
{
    std::int64_t sum = kHalf;
    for (std::size_t k = 0; k < count; ++k)
        sum += magnitude * std::abs(int{weights[k]});
    return sum <= std::numeric_limits<std::int32_t>::max();
}

} // namespace vfil
