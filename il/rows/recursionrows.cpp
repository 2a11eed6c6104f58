/// \file
/// The plain forms of the recursive blurs' kernels, and the table of their levels.
#include "il/rows/recursionrows.h"

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

template <class Filter, class Value, class Number>
void PlainRecursion(const RecursionSteps<Value, Number>& steps, const RecursionFactors<Number>& factors)
{
    using Wide = Wrapping<Number>;
    const RecursionFactors<Wide> by{static_cast<Wide>(factors.current), static_cast<Wide>(factors.flat),
                                    static_cast<Wide>(factors.tail), static_cast<Wide>(factors.back)};
    const auto at = [](auto row, std::size_t step) {
        return row.first + static_cast<std::ptrdiff_t>(step) * row.step;
    };
    for (std::size_t step = 0; step < steps.steps; ++step) {
        const Value* x = at(steps.current, step);
        const Value* flat = at(steps.flat, step);
        const Value* tail = at(steps.tail, step);
        Value* y = at(steps.result, step);
        for (std::size_t i = 0; i < steps.sequences; ++i) {
            Number* state = steps.states + i;
            y[i] = Filter::Next(static_cast<Wide>(x[i]), static_cast<Wide>(flat[i]),
                                static_cast<Wide>(tail[i]), state, state + steps.sequences, by);
        }
    }
}

const LevelTables<RecursionRows>& Tables()
{
    static const LevelTables<RecursionRows> tables({
        PlainRecursion<Exponential, std::int16_t, std::int32_t>,
        PlainRecursion<FastGauss, std::int16_t, std::int32_t>,
        PlainRecursion<Exponential, float, double>,
        PlainRecursion<FastGauss, float, double>,
    });
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
