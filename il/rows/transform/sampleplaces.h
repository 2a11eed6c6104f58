/// \file
/// Where the places of a block lie in the picture's memory, and their fractions: what the vector forms of the
/// sampling kernels begin with. Included by samplerows_simd.cpp alone.
#pragma once

#include "il/rows/transform/sampleparams.h"
#include "il/rows/vecsample.h"

namespace vfil {
namespace {

#if defined(__AVX2__) && !defined(__AVX512BW__)

/// Places are treated by so many.
constexpr std::size_t kGroup = 16;
/// Their numbers stay in the nearest cache.
constexpr std::size_t kBlock = 256;

/// Pixels of \p samples samples of \p SampleType.
template <class SampleType, int samples>
struct PixelOf {
    static constexpr bool kWords = sizeof(SampleType) == 2;
    static constexpr std::size_t kBytes = samples * sizeof(SampleType);
};

/// Of each place the offset of its first pixel, that of the lowest row and column, from the picture's first
/// byte, modulo 4 GiB, ...
struct Places {
    alignas(64) std::uint32_t offset[kBlock];
};

/// ... and its fractions, of 65536 or as they are.
struct FixedPlaces : Places {
    alignas(64) std::uint16_t fu[kBlock];
    alignas(64) std::uint16_t fv[kBlock];
};

struct ExactPlaces : Places {
    alignas(64) double fu[kBlock];
    alignas(64) double fv[kBlock];
};

/// Coordinates in memory.
class ByDoubles {
public:
    ByDoubles(const double* u, const double* v) : m_u(u), m_v(v) {}
    /// Has only so many left, and lets the others be like the first.
    void Pad(std::size_t count)
    {
        for (std::size_t i = 0; i < kGroup; ++i) {
            m_lastU[i] = m_u[i < count ? i : 0];
            m_lastV[i] = m_v[i < count ? i : 0];
        }
        m_u = m_lastU;
        m_v = m_lastV;
    }
    void Advance(std::size_t count)
    {
        m_u += count;
        m_v += count;
    }

    /// visit(at, x, y) for the nearest pixels of each eight of \p count places.
    template <class Visit>
    void EachNearest(std::size_t count, Visit visit) const
    {
        for (std::size_t at = 0; at < count; at += kLanes32)
            visit(at, NearestOf(m_u + at), NearestOf(m_v + at));
    }
    /// visit(at, x, y, fx, fy) for the pixels below and to the left, and the fractions of 65536.
    template <class Visit>
    void EachFixed(std::size_t count, Visit visit) const
    {
        for (std::size_t at = 0; at < count; at += kLanes32) {
            S32 x, y, fx, fy;
            FixedOf(m_u + at, x, fx);
            FixedOf(m_v + at, y, fy);
            visit(at, x, y, fx, fy);
        }
    }
    void Exact(std::size_t at, S32& x, S32& y, double* fu, double* fv) const
    {
        x = ExactOf(m_u + at, fu);
        y = ExactOf(m_v + at, fv);
    }

private:
    static S32 NearestOf(const double* u)
    {
        const F64 half = SplatDouble(0.5);
        return {HalvesToInt32(LoadDoubles(u) + half, LoadDoubles(u + 4) + half)};
    }
    static void FixedOf(const double* u, S32& x, S32& fx)
    {
        const F64 lows[2] = {Floor(LoadDoubles(u)), Floor(LoadDoubles(u + 4))};
        const auto fraction = [&](int i) {
            return (LoadDoubles(u + 4 * i) - lows[i]) * SplatDouble(kFractions) + SplatDouble(0.5);
        };
        const S32 parts{HalvesToInt32(fraction(0), fraction(1))};
        x = S32{HalvesToInt32(lows[0], lows[1])} + ShiftDown<kFractionBits>(parts);
        fx = parts & Splat32((1 << kFractionBits) - 1);
    }
    static S32 ExactOf(const double* u, double* fu)
    {
        const F64 lows[2] = {Floor(LoadDoubles(u)), Floor(LoadDoubles(u + 4))};
        StoreDoubles(fu, LoadDoubles(u) - lows[0]);
        StoreDoubles(fu + 4, LoadDoubles(u + 4) - lows[1]);
        return {HalvesToInt32(lows[0], lows[1])};
    }

    const double* m_u;
    const double* m_v;
    double m_lastU[kGroup];
    double m_lastV[kGroup];
};

/// Coordinates on a line.
class BySteps {
public:
    explicit BySteps(const SampleSteps& steps) : m_steps(steps) {}
    void Pad(std::size_t) {} // what lies beyond the line is not fetched
    void Advance(std::size_t count)
    {
        m_steps.u += static_cast<std::int64_t>(count) * m_steps.du;
        m_steps.v += static_cast<std::int64_t>(count) * m_steps.dv;
    }

    /// The next eight places of a line, along one axis, and half a unit of their last bit more.
    template <int bits>
    class Eight {
    public:
        Eight(std::int64_t u, std::int64_t du)
            : m_first(Splat64(u + (std::int64_t{1} << (bits - 1))) + Multiples64(du)),
              m_second(m_first + Splat64(4 * du)), m_way(Splat64(8 * du))
        {}
        template <int from>
        S32 Bits() const
        {
            return Bits32From<from>(m_first, m_second);
        }
        void Advance()
        {
            m_first = m_first + m_way;
            m_second = m_second + m_way;
        }

    private:
        S64 m_first, m_second, m_way;
    };

    /// visit(at, x, y) for each eight of \p count places, in turn.
    template <class Visit>
    void EachNearest(std::size_t count, Visit visit) const
    {
        Eight<kStepBits> u(m_steps.u, m_steps.du);
        Eight<kStepBits> v(m_steps.v, m_steps.dv);
        for (std::size_t at = 0; at < count; at += kLanes32, u.Advance(), v.Advance())
            visit(at, u.template Bits<kStepBits>(), v.template Bits<kStepBits>());
    }
    /// visit(at, x, y, fx, fy) for each eight.
    template <class Visit>
    void EachFixed(std::size_t count, Visit visit) const
    {
        constexpr int kBelow = kStepBits - kFractionBits;
        const S32 fraction = Splat32((1 << kFractionBits) - 1);
        Eight<kBelow> u(m_steps.u, m_steps.du);
        Eight<kBelow> v(m_steps.v, m_steps.dv);
        for (std::size_t at = 0; at < count; at += kLanes32, u.Advance(), v.Advance())
            visit(at, u.template Bits<kStepBits>(), v.template Bits<kStepBits>(),
                  u.template Bits<kBelow>() & fraction, v.template Bits<kBelow>() & fraction);
    }

private:
    SampleSteps m_steps;
};

/// The first pixels of a form, for its places' own.
template <SampleForm form, class Pixel>
S32 OffsetsOf(const SampleSource& source, S32 x, S32 y)
{
    const auto row = static_cast<std::int32_t>(static_cast<std::uint32_t>(source.rowBytes));
    const auto pixel = static_cast<std::int32_t>(Pixel::kBytes);
    const S32 offset = y * Splat32(row) + x * Splat32(pixel);
    if constexpr (form != SampleForm::Bicubic) return offset;
    return offset - (Splat32(row) + Splat32(pixel));
}

/// Finds the next places: \p count is a multiple of kGroup.
template <SampleForm form, class Pixel, class Coordinates>
void Find(const SampleSource& source, const Coordinates& coordinates, std::size_t count, Places& places)
{
    static_assert(form == SampleForm::Nearest);
    coordinates.EachNearest(count, [&](std::size_t at, S32 x, S32 y) {
        Store32(places.offset + at, OffsetsOf<form, Pixel>(source, x, y));
    });
}

template <SampleForm form, class Pixel, class Coordinates>
void Find(const SampleSource& source, const Coordinates& coordinates, std::size_t count, FixedPlaces& places)
{
    coordinates.EachFixed(count, [&](std::size_t at, S32 x, S32 y, S32 fx, S32 fy) {
        Store32(places.offset + at, OffsetsOf<form, Pixel>(source, x, y));
        StoreHalf(places.fu + at, Narrow16(fx));
        StoreHalf(places.fv + at, Narrow16(fy));
    });
}

template <SampleForm form, class Pixel, class Coordinates>
void Find(const SampleSource& source, const Coordinates& coordinates, std::size_t count, ExactPlaces& places)
{
    for (std::size_t at = 0; at < count; at += kLanes32) {
        S32 x;
        S32 y;
        coordinates.Exact(at, x, y, places.fu + at, places.fv + at);
        Store32(places.offset + at, OffsetsOf<form, Pixel>(source, x, y));
    }
}

#endif

} // namespace
} // namespace vfil
