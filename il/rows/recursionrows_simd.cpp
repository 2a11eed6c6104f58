/// \file
/// The vector forms of the recursive blurs' kernels, for the level VFIL_LEVEL.
#include "il/rows/recursionparams.h"
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
    static Vector LoadValues(const float* p) { return LoadAsDoubles(p); }
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
    static Vector LoadValues(const std::int16_t* p) { return LoadWidened(p); }
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

/// The steps of so many vectors of sequences, whose states stay in registers.
template <class Form, bool gauss, std::size_t vectors>
void RunVectors(const RecursionSteps<typename Form::Value, typename Form::Number>& steps, std::size_t at,
                const RecursionFactors<typename Form::Vector>& by)
{
    using Vector = typename Form::Vector;
    typename Form::Number* states = steps.states + at;
    Vector first[vectors];
    Vector second[vectors];
    for (std::size_t i = 0; i < vectors; ++i) {
        first[i] = Form::LoadNumbers(states + i * Form::kLanes);
        if (gauss) second[i] = Form::LoadNumbers(states + steps.sequences + i * Form::kLanes);
    }
    const auto* x = steps.current.first + at;
    const auto* flat = steps.flat.first + at;
    const auto* tail = steps.tail.first + at;
    auto* y = steps.result.first + at;
    for (std::size_t step = 0; step < steps.steps; ++step) {
        Vector results[vectors];
        for (std::size_t i = 0; i < vectors; ++i) {
            const Vector now = Form::LoadValues(x + i * Form::kLanes);
            const Vector last = Form::LoadValues(tail + i * Form::kLanes);
            if constexpr (gauss) {
                const Vector inner = Form::LoadValues(flat + i * Form::kLanes);
                results[i] = Form::FastGauss(now, inner, last, first[i], second[i], by);
            } else {
                results[i] = Form::Exponential(now, last, first[i], by);
            }
        }
        Form::StoreValues(y, results);
        x += steps.current.step;
        flat += steps.flat.step;
        tail += steps.tail.step;
        y += steps.result.step;
    }
    for (std::size_t i = 0; i < vectors; ++i) {
        Form::StoreNumbers(states + i * Form::kLanes, first[i]);
        if (gauss) Form::StoreNumbers(states + steps.sequences + i * Form::kLanes, second[i]);
    }
}

template <class Form, bool gauss>
void Recursion(const RecursionSteps<typename Form::Value, typename Form::Number>& steps,
               const RecursionFactors<typename Form::Number>& factors)
{
    const RecursionFactors<typename Form::Vector> by{Form::Splat(factors.current), Form::Splat(factors.flat),
                                                     Form::Splat(factors.tail), Form::Splat(factors.back)};
    const auto own = steps; // which no store can change
    // Each step waits for the one before it: so many vectors keep the machine busy meanwhile.
    constexpr std::size_t kVectors = 4;
    constexpr std::size_t kAtOnce = kVectors * Form::kLanes;
    std::size_t at = 0;
    for (; own.sequences - at >= kAtOnce; at += kAtOnce)
        RunVectors<Form, gauss, kVectors>(own, at, by);
    if constexpr (kAtOnce > kSequenceGroup) {
        if (at != own.sequences) RunVectors<Form, gauss, kVectors / 2>(own, at, by);
    }
}

} // namespace

namespace VFIL_LEVEL {

void Fill(RecursionRows& rows)
{
#if defined(__AVX2__)
    rows.exponentialFixed = Recursion<Fixed, false>;
    rows.fastGaussFixed = Recursion<Fixed, true>;
#endif
    rows.exponentialFloat = Recursion<Floating, false>;
    rows.fastGaussFloat = Recursion<Floating, true>;
}

} // namespace VFIL_LEVEL
} // namespace vfil
