/// \file
/// The plain forms of the recursive blurs' kernels, and the table of their levels.
#include "il/rows/blur/recursionrows.h"

#include <algorithm>
#include <limits>
#include <type_traits>

namespace vfil {

namespace {

/// 32 bits that wrap, or a double.
template <class Number>
using Wrapping = std::conditional_t<std::is_same_v<Number, double>, double, std::uint32_t>;

/// Half of a result's last bit, of 16 fraction bits.
constexpr std::uint32_t kHalf = 0x8000;

std::int32_t WholePart(std::uint32_t fixed)
{
    return static_cast<std::int32_t>(fixed) >> 16;
}

/// y = current x - tail x' + back y', x' leaving the window and y' being the last y.
struct Exponential {
    static float Next(double x, double, double tail, double* state, double*,
                      const RecursionFactors<double>& by)
    {
        *state = by.current * x - by.tail * tail + by.back * *state;
        return static_cast<float>(*state);
    }
    static std::int16_t Next(std::uint32_t x, std::uint32_t, std::uint32_t tail, std::int32_t* state,
                             std::int32_t*, const RecursionFactors<std::uint32_t>& by)
    {
        const auto last = static_cast<std::uint32_t>(*state);
        *state = WholePart(x * by.current - tail * by.tail + kHalf + last * by.back);
        return static_cast<std::int16_t>(*state);
    }
};

/// y = box + skirt: the box holds the last samples in full, the skirt decays behind them.
struct FastGauss {
    static float Next(double x, double flat, double tail, double* box, double* skirt,
                      const RecursionFactors<double>& by)
    {
        *box += (x - flat) * by.current;
        *skirt = *skirt * by.back + flat * by.flat - tail * by.tail;
        return static_cast<float>(*box + *skirt);
    }
    static std::int16_t Next(std::uint32_t x, std::uint32_t flat, std::uint32_t tail, std::int32_t* box,
                             std::int32_t* skirt, const RecursionFactors<std::uint32_t>& by)
    {
        const std::uint32_t flatSum = static_cast<std::uint32_t>(*box) + (x - flat) * by.current;
        const auto decayed = static_cast<std::uint32_t>(*skirt >> 16) * by.back;
        const std::uint32_t skirtSum = decayed + flat * by.flat - tail * by.tail;
        *box = static_cast<std::int32_t>(flatSum);
        *skirt = static_cast<std::int32_t>(skirtSum);
        return static_cast<std::int16_t>(WholePart(flatSum + skirtSum));
    }
};

template <class Filter, class Input, class Number>
void PlainGroup(const RecursionSteps<Input, Number>& steps, const RecursionFactors<Wrapping<Number>>& by,
                std::size_t group)
{
    using Wide = Wrapping<Number>;
    constexpr std::size_t kGroup = RecursionForm<Number>::kGroup;
    const auto at = [group](auto row, std::size_t step) {
        return row.first + static_cast<std::ptrdiff_t>(step) * row.step +
               static_cast<std::ptrdiff_t>(group) * row.across;
    };
    for (std::size_t step = 0; step < steps.steps; ++step) {
        const Input* x = at(steps.current, step);
        const Input* flat = at(steps.flat, step);
        const Input* tail = at(steps.tail, step);
        for (std::size_t i = 0; i < kGroup; ++i) {
            Number* state = steps.states + group * kGroup + i;
            const auto y = Filter::Next(static_cast<Wide>(x[i]), static_cast<Wide>(flat[i]),
                                        static_cast<Wide>(tail[i]), state, state + steps.groups * kGroup, by);
            if (steps.result.first != nullptr) at(steps.result, step)[i] = y;
        }
    }
}

template <class Filter, class Input, class Number>
void PlainRecursion(const RecursionSteps<Input, Number>& steps, const RecursionFactors<Number>& factors)
{
    using Wide = Wrapping<Number>;
    const RecursionFactors<Wide> by{static_cast<Wide>(factors.current), static_cast<Wide>(factors.flat),
                                    static_cast<Wide>(factors.tail), static_cast<Wide>(factors.back)};
    for (std::size_t group = 0; group < steps.groups; ++group)
        PlainGroup<Filter>(steps, by, group);
}

std::uint8_t ToSample(std::int16_t value, std::uint8_t full)
{
    return static_cast<std::uint8_t>(std::clamp(value >> 6, 0, int{full}));
}

template <class Sample>
Sample ToSample(float value, Sample full)
{
    const float limited = std::min(std::max(0.0F, value), static_cast<float>(full));
    const int whole = static_cast<int>(limited);
    const int above = limited - static_cast<float>(whole) >= 0.5F ? 1 : 0;
    return static_cast<Sample>(whole + above);
}

template <class Value, class Sample>
void PlainToSamples(const Value* values, Sample* samples, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i)
        samples[i] = ToSample(values[i], std::numeric_limits<Sample>::max());
}

template <class Input, class Number>
constexpr RecursionPair<Input, Number> kPlainPair{PlainRecursion<Exponential, Input, Number>,
                                                  PlainRecursion<FastGauss, Input, Number>};

const LevelTables<RecursionRows>& Tables()
{
    static const LevelTables<RecursionRows> tables({kPlainPair<std::int16_t, std::int32_t>,
                                                    kPlainPair<std::uint8_t, std::int32_t>,
                                                    kPlainPair<float, double>,
                                                    kPlainPair<std::uint8_t, double>,
                                                    kPlainPair<std::uint16_t, double>,
                                                    {PlainToSamples<std::int16_t, std::uint8_t>},
                                                    {PlainToSamples<float, std::uint8_t>},
                                                    {PlainToSamples<float, std::uint16_t>}},
                                                   VFIL_FILLS);
    return tables;
}

} // namespace

const RecursionRows& RecursionRowsAt(Level level)
{
    return Tables().At(level);
}

const RecursionRows& FindRecursionRows(bool useVectors)
{
    return RecursionRowsAt(useVectors ? BestLevel() : Level::Plain);
}

} // namespace vfil
