/// \file
/// The recursive filters of the blurs along one axis: what they multiply, and the passes both ways.
#pragma once

#include "il/rows/pixarith.h"
#include "il/rows/recursionrows.h"
#include "runarray.h"

#include <algorithm>
#include <cstdint>

namespace vfil {

/// What makes a filter of a recursion: an impulse becomes `flat` + 1 equal samples, of none for an
/// exponential, and falls from there until it ends after `reach` + 1 samples.
struct RecursionDesign {
    RecursionFactors<double> factors{};
    long flat = 0;
    long reach = 0;
    bool isFastGauss = false;
    bool isIdentity = true; ///< nothing is filtered; the factors are not set, the reach is
};

// Both for a deviation in samples and a whole radius: an identity where one of them is not above 0.
RecursionDesign DesignExponential(double sigma, long radius);
RecursionDesign DesignFastGauss(double sigma, long radius);

/// 16-bit samples of 6 fraction bits, with factors of 16.
struct FixedRecursion {
    using Value = std::int16_t;
    using Number = std::int32_t;
    static Value FromSample(std::uint8_t sample) { return static_cast<Value>(sample * 64); }
    template <class Sample>
    static Sample ToSample(Value value)
    {
        return static_cast<Sample>(std::clamp(value >> 6, 0, 255));
    }
    static RecursionRow<Value, Number> Find(bool isFastGauss, bool useVectors);
    static RecursionFactors<Number> Factors(const RecursionFactors<double>& factors);
    /// What the box of a fast Gaussian starts from: half of a result's last bit.
    static constexpr Number kBoxStart = 0x8000;
};

struct FloatRecursion {
    using Value = float;
    using Number = double;
    static Value FromSample(std::uint16_t sample) { return sample; }
    /// Rounded half away from zero, by steps that the compiler makes vectors of.
    template <class Sample>
    static Sample ToSample(Value value)
    {
        const float limited = std::min(std::max(0.0F, value), static_cast<float>(Arith<Sample>::kFull));
        const int whole = static_cast<int>(limited);
        const int above = limited - static_cast<float>(whole) >= 0.5F ? 1 : 0;
        return static_cast<Sample>(whole + above);
    }
    static RecursionRow<Value, Number> Find(bool isFastGauss, bool useVectors);
    static RecursionFactors<Number> Factors(const RecursionFactors<double>& factors) { return factors; }
    static constexpr Number kBoxStart = 0;
};

/// A recursion over sequences that lie side by side, in one direction.
template <class Form>
class vfILBlurRecursiveFilter {
public:
    using Value = typename Form::Value;
    using Number = typename Form::Number;

    /// Where the samples of some steps are.
    struct Steps {
        SequenceRow<const Value> current;
        SequenceRow<const Value> flat; ///< `flat` + 1 samples before; not looked at by an exponential
        SequenceRow<const Value> tail; ///< `reach` + 1 samples before
        SequenceRow<Value> result;
    };

    /// \param sequences  A multiple of kSequenceGroup. False when memory is short.
    bool SetUp(const RecursionDesign& design, std::size_t sequences, bool useVectors);
    const RecursionDesign& Design() const { return m_design; }
    std::size_t Sequences() const { return m_sequences; }
    /// Numbers that a filter keeps from a sample to the next.
    std::size_t StateNumbers() const { return m_sequences * (m_design.isFastGauss ? 2 : 1); }
    /// The numbers before the first sample.
    void Start(Number* states) const;
    /// The next samples of every sequence.
    void Advance(const Steps& at, Number* states, long steps) const;
    /// What is before the first sample of every sequence.
    SequenceRow<const Value> Zeros() const { return {m_zeros.Data(), 0}; }
    /// Where results go that nobody wants.
    SequenceRow<Value> Unwanted() const { return {m_unwanted.Data(), 0}; }
    /// Both directions over sequences of \p length samples, each sample `Sequences()` values: the results are
    /// left in their place, all but the first and the last `reach` ones.
    ///
    /// \param temporary  Of the sequences' size.
    void FilterTwoPass(Value* values, Value* temporary, long length) const;

private:
    void FilterPass(const Value* values, Value* reversed, long length) const;

    RecursionDesign m_design;
    RecursionFactors<Number> m_factors{};
    RecursionRow<Value, Number> m_row = nullptr;
    std::size_t m_sequences = 0;
    RunArray<Value> m_zeros;
    RunArray<Value> m_unwanted;
    RunArray<Number> m_states; ///< of FilterPass
};

extern template class vfILBlurRecursiveFilter<FixedRecursion>;
extern template class vfILBlurRecursiveFilter<FloatRecursion>;

} // namespace vfil
