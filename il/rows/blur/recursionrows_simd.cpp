/// \file
/// The vector forms of the recursive blurs' kernels, for the level VFIL_LEVEL.
#include "il/rows/blur/recursionparams.h"
#include "il/rows/vec64.h"
#include "il/rows/vecfloat.h"
#include "il/rows/vecsum.h"

namespace vfil {
namespace {

/// How the values and numbers of floating point fill vectors.
struct Floating {
    using Value = float;
    using Number = double;
    using Vector = F64;
    static constexpr std::size_t kLanes = kLanes64;

    static Vector Splat(double v) { return SplatDouble(v); }
    static Vector LoadNumbers(const double* p) { return LoadDoubles(p); }
    static void StoreNumbers(double* p, Vector v) { StoreDoubles(p, v); }
    template <class Input>
    static Vector LoadInputs(const Input* p)
    {
        return LoadAsDoubles(p);
    }
    template <std::size_t vectors>
    static void StoreValues(float* p, const Vector (&v)[vectors])
    {
        for (std::size_t i = 0; i < vectors; ++i)
            StoreAsFloats(p + i * kLanes, v[i]);
    }
    static Vector Exponential(Vector x, Vector tail, Vector& state, const RecursionFactors<Vector>& by)
    {
        state = by.current * x - by.tail * tail + by.back * state;
        return state;
    }
    static Vector FastGauss(Vector x, Vector flat, Vector tail, Vector& box, Vector& skirt,
                            const RecursionFactors<Vector>& by)
    {
        box = box + (x - flat) * by.current;
        skirt = skirt * by.back + flat * by.flat - tail * by.tail;
        return box + skirt;
    }
};

#if defined(__AVX2__) // below, products of 32 bits cost more than they save
struct Fixed {
    using Value = std::int16_t;
    using Number = std::int32_t;
    using Vector = S32;
    static constexpr std::size_t kLanes = kLanes32;

    static Vector Splat(std::int32_t v) { return Splat32(v); }
    static Vector LoadNumbers(const std::int32_t* p) { return LoadLanes(p); }
    static void StoreNumbers(std::int32_t* p, Vector v) { StoreLanes(p, v); }
    static Vector LoadInputs(const std::int16_t* p) { return LoadWidened(p); }
    static Vector LoadInputs(const std::uint8_t* p) { return {LoadEachAs32(p).bits}; }
    template <std::size_t vectors>
    static void StoreValues(std::int16_t* p, const Vector (&v)[vectors])
    {
        for (std::size_t i = 0; i < vectors; i += 2)
            Store(reinterpret_cast<std::uint8_t*>(p + i * kLanes),
                  OrderNarrowed({PackSigned(v[i], v[i + 1]).bits}));
    }
    static Vector Exponential(Vector x, Vector tail, Vector& state, const RecursionFactors<Vector>& by)
    {
        state = ShiftDown<16>(x * by.current - tail * by.tail + Splat(0x8000) + state * by.back);
        return state;
    }
    static Vector FastGauss(Vector x, Vector flat, Vector tail, Vector& box, Vector& skirt,
                            const RecursionFactors<Vector>& by)
    {
        box = box + (x - flat) * by.current;
        skirt = ShiftDown<16>(skirt) * by.back + flat * by.flat - tail * by.tail;
        return ShiftDown<16>(box + skirt);
    }
};
#endif

/// A vector of samples of their results: bytes of fixed point, bytes and pairs of floats. Below, the largest
/// float under a half is added and the fraction dropped, which rounds half away from zero: the sum of less
/// than a half's fraction rounds to no more than the float below the next whole number.
U8 LoadResults(const std::int16_t* p, const std::uint8_t*)
{
    const auto whole = [](const std::int16_t* at) {
        return ShiftRight<6>(MaxSigned(LoadSamples(at), Splat(0)));
    };
    return OrderNarrowed(Narrow({whole(p), whole(p + kBytes / 2)}));
}

constexpr float kBelowHalf = 0.49999997F;

S32 RoundFloats(const float* p, float full)
{
    return ToWhole(LoadFloats(p) + SplatFloat(kBelowHalf), full);
}

U8 LoadResults(const float* p, const std::uint8_t*)
{
    return NarrowLanes(RoundFloats(p, 255), RoundFloats(p + kLanes32, 255),
                       RoundFloats(p + 2 * kLanes32, 255), RoundFloats(p + 3 * kLanes32, 255));
}

U8 LoadResults(const float* p, const std::uint16_t*)
{
    return NarrowPairs(RoundFloats(p, 65535), RoundFloats(p + kLanes32, 65535));
}

/// The steps of so many vectors of sequences, \p at of a group, whose states stay in registers.
template <class Form, bool gauss, bool wanted, std::size_t vectors, class Input>
void RunVectors(const RecursionSteps<Input, typename Form::Number>& steps,
                const RecursionFactors<typename Form::Vector>& by, std::size_t group, std::size_t at)
{
    using Vector = typename Form::Vector;
    constexpr std::size_t kGroup = RecursionForm<typename Form::Number>::kGroup;
    const auto begin = [group, at](auto row) {
        return row.first + static_cast<std::ptrdiff_t>(group) * row.across + at;
    };
    const std::ptrdiff_t isAnother = group + 1 < steps.groups ? 1 : 0;
    constexpr std::size_t kBytesAhead = vectors * Form::kLanes * sizeof(Input);
    typename Form::Number* states = steps.states + group * kGroup + at;
    typename Form::Number* others = states + steps.groups * kGroup;
    Vector first[vectors];
    Vector second[vectors];
    for (std::size_t i = 0; i < vectors; ++i) {
        first[i] = Form::LoadNumbers(states + i * Form::kLanes);
        if (gauss) second[i] = Form::LoadNumbers(others + i * Form::kLanes);
    }
    const Input* x = begin(steps.current);
    const Input* flat = begin(steps.flat);
    const Input* tail = begin(steps.tail);
    typename Form::Value* y = wanted ? begin(steps.result) : nullptr;
    for (std::size_t step = 0; step < steps.steps; ++step) {
        // The next group's steps begin elsewhere, where the machine does not see them come.
        FetchAhead<kBytesAhead>(x + isAnother * steps.current.across);
        FetchAhead<kBytesAhead>(tail + isAnother * steps.tail.across);
        if constexpr (gauss) FetchAhead<kBytesAhead>(flat + isAnother * steps.flat.across);
        Vector results[vectors];
        for (std::size_t i = 0; i < vectors; ++i) {
            const Vector now = Form::LoadInputs(x + i * Form::kLanes);
            const Vector last = Form::LoadInputs(tail + i * Form::kLanes);
            if constexpr (gauss) {
                const Vector inner = Form::LoadInputs(flat + i * Form::kLanes);
                results[i] = Form::FastGauss(now, inner, last, first[i], second[i], by);
            } else {
                results[i] = Form::Exponential(now, last, first[i], by);
            }
        }
        if constexpr (wanted) {
            Form::StoreValues(y, results);
            y += steps.result.step;
        }
        x += steps.current.step;
        flat += steps.flat.step;
        tail += steps.tail.step;
    }
    for (std::size_t i = 0; i < vectors; ++i) {
        Form::StoreNumbers(states + i * Form::kLanes, first[i]);
        if (gauss) Form::StoreNumbers(others + i * Form::kLanes, second[i]);
    }
}

template <class Form, bool gauss, class Input>
void Recursion(const RecursionSteps<Input, typename Form::Number>& steps,
               const RecursionFactors<typename Form::Number>& factors)
{
    const RecursionFactors<typename Form::Vector> by{Form::Splat(factors.current), Form::Splat(factors.flat),
                                                     Form::Splat(factors.tail), Form::Splat(factors.back)};
    const auto own = steps; // which no store can change
    // Each step waits for the one before it: so many vectors keep the machine busy meanwhile.
    constexpr std::size_t kVectors = 4;
    constexpr std::size_t kGroup = RecursionForm<typename Form::Number>::kGroup;
    for (std::size_t group = 0; group < own.groups; ++group) {
        for (std::size_t at = 0; at < kGroup; at += kVectors * Form::kLanes) {
            if (own.result.first != nullptr) {
                RunVectors<Form, gauss, true, kVectors>(own, by, group, at);
            } else {
                RunVectors<Form, gauss, false, kVectors>(own, by, group, at);
            }
        }
    }
}

/// Results as samples, by whole vectors of samples; the rest through the same in a buffer.
template <class Value, class Sample>
void ToSamples(const Value* values, Sample* samples, std::size_t count)
{
    constexpr std::size_t kSamples = kBytes / sizeof(Sample);
    for (; count >= kSamples; count -= kSamples, values += kSamples, samples += kSamples)
        Store(reinterpret_cast<std::uint8_t*>(samples), LoadResults(values, samples));
    if (count == 0) return;
    Value rest[kSamples] = {};
    Sample results[kSamples];
    std::memcpy(rest, values, count * sizeof(Value));
    Store(reinterpret_cast<std::uint8_t*>(results), LoadResults(rest, results));
    std::memcpy(samples, results, count * sizeof(Sample));
}

template <class Form, class Input>
void FillPair(RecursionPair<Input, typename Form::Number>& pair)
{
    pair.exponential = Recursion<Form, false, Input>;
    pair.fastGauss = Recursion<Form, true, Input>;
}

template <class Value, class Sample>
void FillSamples(ResultSamples<Value, Sample>& row)
{
    row.toSamples = ToSamples<Value, Sample>;
}

} // namespace

namespace VFIL_LEVEL {

void Fill(RecursionRows& rows)
{
#if defined(__AVX2__)
    FillPair<Fixed, std::int16_t>(rows);
    FillPair<Fixed, std::uint8_t>(rows);
#endif
    FillPair<Floating, float>(rows);
    FillPair<Floating, std::uint8_t>(rows);
    FillPair<Floating, std::uint16_t>(rows);
    FillSamples<std::int16_t, std::uint8_t>(rows);
    FillSamples<float, std::uint8_t>(rows);
    FillSamples<float, std::uint16_t>(rows);
}

} // namespace VFIL_LEVEL
} // namespace vfil
