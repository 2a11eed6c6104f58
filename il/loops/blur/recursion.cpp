/// \file
/// The recursive filters of the blurs along one axis.

#include "il/rows/pixarith.h"

#include "il/loops/blur/recursion.h"

#include <algorithm>
#include <cmath>

namespace vfil {

/// A two-sided exponential of that deviation, each half ended after the radius and scaled to a sum of 1. The
/// usual (sqrt(8 s s + 4) - 2) / (2 s s) loses all its digits for a small deviation; this is the same.
RecursionDesign DesignExponential(double sigma, long radius)
{
    if (!(sigma > 0) || radius <= 0) return {{}, 0, radius, false, true};
    const double alpha = 4 / (std::sqrt(8 * sigma * sigma + 4) + 2);
    const double back = 1 - alpha;
    const double rest = std::pow(back, static_cast<double>(radius) + 1);
    const double current = alpha / (1 - rest);
    return {{current, 0, rest * current, back}, 0, radius, false, false};
}

/// The length of the flat part that, with the skirts, comes close to a Gaussian of that deviation.
RecursionDesign DesignFastGauss(double sigma, long radius)
{
    if (!(sigma > 0) || radius <= 0) return {{}, 0, radius, false, true};
    const double wanted = sigma >= 5 ? (sigma - 5) * 1.6 + 7.3 : std::max(1.5 * sigma - 0.2, 0.0);
    const double length = std::min(wanted, static_cast<double>(radius));
    const long flat = static_cast<long>(length);
    const double back = std::exp(-2 / sigma);
    const double first = back > 0 ? std::pow(back, 1 - (length - static_cast<double>(flat))) : 0;
    const double rest = std::pow(back, static_cast<double>(radius - flat));
    double skirt = 0;
    for (long i = flat + 1; i <= radius; ++i)
        skirt = skirt * back + first;
    const double scale = 1 / (static_cast<double>(flat) + 1 + skirt);
    return {{scale, first * scale, rest * (first * scale), back}, flat, radius, true, false};
}

RecursionFactors<std::int32_t> FixedRecursion::Factors(const RecursionFactors<double>& factors)
{
    const auto fixed = [](double factor) { return RoundHalfAway(factor * 65536); };
    return {fixed(factors.current), fixed(factors.flat), fixed(factors.tail), fixed(factors.back)};
}

template <class Form>
bool vfILBlurRecursiveFilter<Form>::SetUp(const RecursionDesign& design, std::size_t sequences,
                                          bool useVectors)
{
    m_design = design;
    m_pass.SetUp(design, sequences, useVectors);
    return m_states.Allocate(m_pass.StateNumbers());
}

/// The history before the first sample is 0, and the results, of which the first are a warm-up, come out in
/// reverse. The stretches between have the same rows at hand in all their steps.
template <class Form>
void vfILBlurRecursiveFilter<Form>::FilterPass(const Value* values, Value* reversed, long length) const
{
    constexpr auto kAcross = static_cast<std::ptrdiff_t>(Form::kGroup);
    const auto step = static_cast<std::ptrdiff_t>(m_pass.Sequences());
    const auto from = [&](long begin, long delay) {
        return begin < delay ? m_pass.Zeros()
                             : SequenceRow<const Value>{values + (begin - delay) * step, step, kAcross};
    };
    m_pass.Start(m_states.Data());
    const long reach = m_design.reach;
    const long bounds[] = {0, std::min(m_design.flat + 1, reach), reach, reach + 1, length};
    for (int i = 0; i < 4; ++i) {
        const long begin = std::min(bounds[i], length);
        const long end = std::min(bounds[i + 1], length);
        if (begin == end) continue;
        const SequenceRow<Value> result =
            begin < reach ? SequenceRow<Value>{}
                          : SequenceRow<Value>{reversed + (length - 1 - begin) * step, -step, kAcross};
        m_pass.Advance({from(begin, 0), from(begin, m_design.flat + 1), from(begin, reach + 1), result},
                       m_states.Data(), end - begin);
    }
}

template <class Form>
void vfILBlurRecursiveFilter<Form>::FilterTwoPass(Value* values, Value* temporary, long length) const
{
    if (m_design.isIdentity) return;
    FilterPass(values, temporary, length);
    const long reach = m_design.reach;
    FilterPass(temporary, values + reach * static_cast<std::ptrdiff_t>(m_pass.Sequences()), length - reach);
}

template class vfILBlurRecursiveFilter<FixedRecursion>;
template class vfILBlurRecursiveFilter<FloatRecursion>;

} // namespace vfil
