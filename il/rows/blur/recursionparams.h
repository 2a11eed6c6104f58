/// \file
/// What the kernels of the recursive blurs take. Types only, as in compparams.h.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vfil {

/// Sequences of floats are filtered side by side, in groups of so many.
inline constexpr std::size_t kSequenceGroup = 32;

/// What a recursion with numbers of a kind leaves, and how many sequences are in a group: fixed point is
/// 16-bit values with numbers of 32 bits, whose sums and products wrap; floating point is floats with
/// doubles.
template <class Number>
struct RecursionForm;
template <>
struct RecursionForm<std::int32_t> {
    using Value = std::int16_t;
    static constexpr std::size_t kGroup = 2 * kSequenceGroup;
};
template <>
struct RecursionForm<double> {
    using Value = float;
    static constexpr std::size_t kGroup = kSequenceGroup;
};

/// What a recursion multiplies: the current sample, the ones that leave the flat and the whole part of its
/// window, and what it made before. In fixed point with 16 fraction bits.
template <class Number>
struct RecursionFactors {
    Number current;
    Number flat;
    Number tail;
    Number back;
};

/// One value of every sequence, and the way on from it. A group's values lie together.
template <class Value>
struct SequenceRow {
    Value* first;
    std::ptrdiff_t step;   ///< values from a sequence's value to its next; 0 repeats the first
    std::ptrdiff_t across; ///< values from a group to the next
};

/// Steps of a recursion over sequences side by side.
template <class Input, class Number>
struct RecursionSteps {
    SequenceRow<const Input> current, flat, tail;
    SequenceRow<typename RecursionForm<Number>::Value> result; ///< null when nobody wants it
    Number* states; ///< a number a sequence, or two: the result, or, all of the one before all of the other,
                    ///< the sums of the flat and of the other part
    std::size_t groups;
    std::size_t steps;
};

template <class Input, class Number>
using RecursionRow = void (*)(const RecursionSteps<Input, Number>& steps,
                              const RecursionFactors<Number>& factors);

/// The recursions over one kind of input.
template <class Input, class Number>
struct RecursionPair {
    RecursionRow<Input, Number> exponential;
    RecursionRow<Input, Number> fastGauss;
};

/// Turns results to samples: fixed point without its 6 fraction bits, floats rounded half away from zero;
/// both limited to what a sample holds.
template <class Value, class Sample>
struct ResultSamples {
    void (*toSamples)(const Value* values, Sample* samples, std::size_t count);
};

/// The kernels of the recursive blurs, for one level: of values, and of a picture's samples.
struct RecursionRows : RecursionPair<std::int16_t, std::int32_t>,
                       RecursionPair<std::uint8_t, std::int32_t>,
                       RecursionPair<float, double>,
                       RecursionPair<std::uint8_t, double>,
                       RecursionPair<std::uint16_t, double>,
                       ResultSamples<std::int16_t, std::uint8_t>,
                       ResultSamples<float, std::uint8_t>,
                       ResultSamples<float, std::uint16_t> {};

} // namespace vfil
