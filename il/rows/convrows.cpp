/// \file
/// The plain forms of the convolutions' kernels, and the table of their levels.
#include "il/rows/convrows.h"

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

template <class In, class Out>
void PlainFixedSum(const In* const* sources, const std::int16_t* weights, std::size_t count, Out* out,
                   std::size_t samples)
{
    for (std::size_t i = 0; i < samples; ++i) {
        std::int64_t sum = kHalf;
        for (std::size_t k = 0; k < count; ++k)
            sum += std::int64_t{sources[k][i]} * weights[k];
        out[i] = Limit<Out>(Limit<std::int16_t>(sum >> 15));
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
    static const LevelTables<ConvRows> tables({
        PlainFixedSum<std::uint8_t, std::uint8_t>,
        PlainFixedSum<std::uint8_t, std::int16_t>,
        PlainFixedSum<std::int16_t, std::uint8_t>,
        PlainFloatSum<std::uint8_t, std::uint8_t>,
        PlainFloatSum<std::uint8_t, float>,
        PlainFloatSum<float, std::uint8_t>,
        PlainFloatSum<std::uint16_t, std::uint16_t>,
        PlainFloatSum<std::uint16_t, float>,
        PlainFloatSum<float, std::uint16_t>,
    });
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
