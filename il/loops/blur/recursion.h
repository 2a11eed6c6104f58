/// \file
/// The recursive filters of the blurs along one axis: what they multiply, and the passes both ways.
#pragma once

#include "il/loops/frame/runarray.h"
#include "il/rows/blur/recursionrows.h"

#include <algorithm>
#include <cstdint>
#include <type_traits>

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

/// 16-bit values of 6 fraction bits, with factors of 16.
struct FixedRecursion : RecursionForm<std::int32_t> {
    using Number = std::int32_t;
    /// What a sample of a picture is as a value: a recursion over samples has its factors for them.
    static constexpr Number kSampleUnit = 64;
    static RecursionFactors<Number> Factors(const RecursionFactors<double>& factors);
    /// What the box of a fast Gaussian starts from: half of a result's last bit.
    static constexpr Number kBoxStart = 0x8000;
};

struct FloatRecursion : RecursionForm<double> {
    using Number = double;
    static constexpr Number kSampleUnit = 1;
    static RecursionFactors<Number> Factors(const RecursionFactors<double>& factors) { return factors; }
    static constexpr Number kBoxStart = 0;
};

/// A recursion in one direction, over sequences of values or of a picture's samples that lie side by side.
template <class Form, class Input>
class RecursionPass {
public:
    using Value = typename Form::Value;
    using Number = typename Form::Number;

    /// Where the samples of some steps are.
    struct Steps {
        SequenceRow<const Input> current;
        SequenceRow<const Input> flat; ///< `flat` + 1 samples before; not looked at by an exponential
        SequenceRow<const Input> tail; ///< `reach` + 1 samples before
        SequenceRow<Value> result;     ///< null when nobody wants it
    };

    /// \param sequences  A multiple of Form::kGroup.
    void SetUp(const RecursionDesign& design, std::size_t sequences, bool useVectors)
    {
        const RecursionPair<Input, Number>& rows = FindRecursionRows(useVectors);
        m_row = design.isFastGauss ? rows.fastGauss : rows.exponential;
        m_factors = Form::Factors(design.factors);
        if constexpr (!std::is_same_v<Input, Value>) {
            for (Number* factor : {&m_factors.current, &m_factors.flat, &m_factors.tail})
                *factor *= Form::kSampleUnit;
        }
        m_isFastGauss = design.isFastGauss;
        m_sequences = sequences;
    }
    std::size_t Sequences() const { return m_sequences; }
    /// Numbers that are kept from a sample to the next.
    std::size_t StateNumbers() const { return m_sequences * (m_isFastGauss ? 2 : 1); }
    /// The numbers before the first sample.
    void Start(Number* states) const
    {
        std::fill_n(states, StateNumbers(), Number{0});
        if (m_isFastGauss) std::fill_n(states, m_sequences, Form::kBoxStart);
    }
    /// The next samples of every sequence.
    void Advance(const Steps& at, Number* states, long steps) const
    {
        m_row({at.current, at.flat, at.tail, at.result, states, m_sequences / Form::kGroup,
               static_cast<std::size_t>(steps)},
              m_factors);
    }
    /// What is before the first sample of every sequence.
    static SequenceRow<const Input> Zeros()
    {
        alignas(64) static constexpr Input kZeros[Form::kGroup] = {};
        return {kZeros, 0, 0};
    }

private:
    RecursionFactors<Number> m_factors{};
    RecursionRow<Input, Number> m_row = nullptr;
    std::size_t m_sequences = 0;
    bool m_isFastGauss = false;
};

/// A recursive filter, which goes over its sequences in both directions.
template <class Form>
class vfILBlurRecursiveFilter {
public:
    using Value = typename Form::Value;

    /// \param sequences  A multiple of Form::kGroup. False when memory is short.
    bool SetUp(const RecursionDesign& design, std::size_t sequences, bool useVectors);
    const RecursionDesign& Design() const { return m_design; }
    /// Sequences of \p length samples, each sample one value of every sequence: the results are left in their
    /// place, all but the first and the last `reach` ones.
    ///
    /// \param temporary  Of the sequences' size.
    void FilterTwoPass(Value* values, Value* temporary, long length) const;

private:
    void FilterPass(const Value* values, Value* reversed, long length) const;

    RecursionDesign m_design;
    RecursionPass<Form, Value> m_pass;
    RunArray<typename Form::Number> m_states;
};

extern template class vfILBlurRecursiveFilter<FixedRecursion>;
extern template class vfILBlurRecursiveFilter<FloatRecursion>;

} // namespace vfil
