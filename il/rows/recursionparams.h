/// \file
/// What the kernels of the recursive blurs take. Types only, as in rowparams.h.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vfil {

/// Sequences that are filtered side by side come in multiples of so many.
inline constexpr std::size_t kSequenceGroup = 32;

/// What a recursion multiplies: the current sample, the ones that leave the flat and the whole part of its
/// window, and what it made before. In fixed point with 16 fraction bits.
template <class Number>
struct RecursionFactors {
    Number current;
    Number flat;
    Number tail;
    Number back;
};

/// One sample of every sequence, and so many steps on from it.
template <class Value>
struct SequenceRow {
    Value* first;
    std::ptrdiff_t step; ///< values from a sample of a sequence to its next; 0 repeats the first
};

/// Steps of a recursion over sequences side by side: fixed point is 16-bit values with numbers of 32 bits,
/// whose sums and products wrap; floating point is floats with doubles.
template <class Value, class Number>
struct RecursionSteps {
    SequenceRow<const Value> current, flat, tail;
    SequenceRow<Value> result;
    Number*
        states; ///< a row of `sequences`, or two: the result, or the sums of the flat and of the other part
    std::size_t sequences;
    std::size_t steps;
};

template <class Value, class Number>
using RecursionRow = void (*)(const RecursionSteps<Value, Number>& steps,
                              const RecursionFactors<Number>& factors);

/// The kernels of the recursive blurs, for one level.
struct RecursionRows {
    RecursionRow<std::int16_t, std::int32_t> exponentialFixed;
    RecursionRow<std::int16_t, std::int32_t> fastGaussFixed;
    RecursionRow<float, double> exponentialFloat;
    RecursionRow<float, double> fastGaussFloat;
};

} // namespace vfil
