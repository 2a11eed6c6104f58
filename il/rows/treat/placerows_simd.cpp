/// \file
/// The vector forms of the kernels of places along a vector and around a point, for the level VFIL_LEVEL.
#include "il/rows/treat/placeparams.h"
#include "il/rows/treat/ramplanes.h"
#include "il/rows/vecdouble.h"
#include "il/rows/vecwindow.h"

namespace vfil {
namespace {

F64 IndicesOf(const LinearPlaces& places, F64 pixels)
{
    const F64 distance = SplatDouble(places.start) + pixels * SplatDouble(places.step);
    const F64 nearest = NearestWhole(distance * SplatDouble(places.inverse));
    const Mask64 isAbove = distance < nearest * SplatDouble(places.length);
    const F64 index = nearest - Select(isAbove, SplatDouble(1), SplatDouble(0));
    return Min(Max(index, SplatDouble(0)), SplatDouble(places.last));
}

F64 IndicesOf(const RadialPlaces& places, F64 pixels)
{
    const F64 x = SplatDouble(places.x) + pixels;
    return Min(SquareRoot(x * x + SplatDouble(places.square)), SplatDouble(places.last));
}

/// By the formulas themselves.
template <class Places>
S32 WholeIndices(const Places& places, std::size_t pixel)
{
    const F64 first = CountFrom(0) + SplatDouble(static_cast<double>(pixel));
    return {HalvesToInt32(IndicesOf(places, first), IndicesOf(places, first + SplatDouble(kLanes64)))};
}

/// Indices of kLanes32 pixels: one of the table's, and how far the pixels' are above it.
struct IndexGroup {
    std::int32_t from;
    S32 above;
};

template <class Places>
IndexGroup ExactGroup(const Places& places, std::size_t pixel)
{
    return {0, WholeIndices(places, pixel)};
}

/// Groups along a vector, with one quotient each: of distances from a whole number of lengths on, each pixel
/// has the same whole part or one more, which the rest of the group's first tells.
class LinearGroups {
public:
    static constexpr std::size_t kAhead = 4 * kLanes64; ///< so many at once: the machine waits for none

    LinearGroups(const LinearPlaces& places, std::size_t pixel)
        : m_length(SplatDouble(places.length)), m_inverse(SplatDouble(places.inverse)),
          m_most(SplatDouble(places.last))
    {
        const F64 step = SplatDouble(places.step);
        const F64 groups = CountFrom(0) * SplatDouble(kLanes32) + SplatDouble(static_cast<double>(pixel));
        m_distances = SplatDouble(places.start) + groups * step;
        m_stride = SplatDouble(kLanes64 * kLanes32) * step;
        const F64 low = CountFrom(0) * step, high = CountFrom(kLanes64) * step;
        const F64 lowParts = WholeParts(low), highParts = WholeParts(high);
        m_rests[0] = (lowParts + SplatDouble(1)) * m_length - low;
        m_rests[1] = (highParts + SplatDouble(1)) * m_length - high;
        const S32 parts{HalvesToInt32(lowParts, highParts)};
        const std::int32_t last = FirstLane(SplatEnd<true>(parts));
        m_parts = parts - Splat32(last < 0 ? last : 0);
        m_down = SplatDouble(last < 0 ? last : 0);
    }
    /// True where the formula's index and this one are both the true one: whole numbers and whole multiples
    /// of a root, if not equal, differ by more than the reciprocal of their sum, and so by more than all that
    /// is rounded here.
    static bool AreExact(const LinearPlaces& places, std::size_t pixels)
    {
        constexpr double kMost = 1 << 25;
        const double end = places.start + static_cast<double>(pixels + kAhead * kLanes32) * places.step;
        return places.start < kMost && places.start > -kMost && end < kMost && end > -kMost &&
               places.length < 1 << 16;
    }
    /// Goes on to the next kAhead groups.
    void Next()
    {
        for (std::size_t i = 0; i < kAhead; i += kLanes32) {
            const F64 low = NextFrom(m_firstRests + i), high = NextFrom(m_firstRests + i + kLanes64);
            Store(reinterpret_cast<std::uint8_t*>(m_from + i), {HalvesToInt32(low, high)});
        }
    }
    IndexGroup operator[](std::size_t group) const
    {
        const F64 rest = SplatDouble(m_firstRests[group]);
        return {m_from[group], CountTrue(m_parts, m_rests[0] <= rest, m_rests[1] <= rest)};
    }

private:
    /// Where the next kLanes64 groups begin, and their rests.
    F64 NextFrom(double* rests)
    {
        const F64 wholes = WholeParts(m_distances);
        StoreDoubles(rests, m_distances - wholes * m_length);
        m_distances = m_distances + m_stride;
        return Max(Min(wholes + m_down, m_most), SplatDouble(-static_cast<double>(kLanes32)));
    }
    F64 WholeParts(F64 distances) const
    {
        const F64 nearest = NearestWhole(distances * m_inverse);
        return nearest - Select(distances < nearest * m_length, SplatDouble(1), SplatDouble(0));
    }

    F64 m_length, m_inverse;
    F64 m_distances, m_stride; ///< of the next groups' first pixels
    F64 m_rests[2];            ///< of a group's first pixel, from which on the others' parts are one more
    S32 m_parts;               ///< of the pixels of a group, from the first one's on
    F64 m_down, m_most;
    // A vector that is stored across two pages takes very long.
    alignas(kBytes) std::int32_t m_from[kAhead] = {};
    alignas(kBytes) double m_firstRests[kAhead] = {};
};

/// Groups around a point, by roots of floats. \p falling is for pixels that come nearer. Squares that are
/// \p exact, whole numbers below 2^24, have roots that are rounded to no larger whole number. Others are in
/// units of 1 / 4096; such a root of less than 2^24 is off by three 2^-24ths of itself at most, and those
/// near a whole number are made of doubles.
template <bool falling, bool exact>
class RadialGroups {
public:
    static constexpr std::size_t kAhead = 8;

    RadialGroups(const RadialPlaces& places, std::size_t pixel) : m_places(places), m_pixel(pixel)
    {
        constexpr double kFar = 1e30; // more than the square of any last index
        m_square =
            SplatFloat(static_cast<float>(places.square < kFar ? places.square : kFar) * (kOne * kOne));
        m_most = static_cast<float>(places.last) * kOne + (exact ? 0 : kOne / 2);
        std::int32_t doubt = 2;
        while (doubt < places.last * (kOne * 3 * 0x1p-24) + 1)
            doubt *= 2;
        m_doubt = Splat32(doubt);
        m_sure = static_cast<std::int32_t>(kOne) - 2 * doubt;
        float lanes[kLanes32];
        for (std::size_t i = 0; i < kLanes32; ++i)
            lanes[i] = static_cast<float>(places.x + static_cast<double>(pixel + i)) * kOne;
        m_x = LoadFloats(lanes);
    }
    void Next()
    {
        for (std::size_t i = 0; i < kAhead; ++i) {
            const S32 root = ToWhole(SquareRoot(m_x * m_x + m_square), m_most);
            m_indices[i] = ShiftDownBits<kFraction>(root);
            if (!exact && AnyWithout(root + m_doubt, m_sure))
                m_indices[i] = WholeIndices(m_places, m_pixel + i * kLanes32);
            m_x = m_x + SplatFloat(kLanes32 * kOne);
        }
        m_pixel += kAhead * kLanes32;
    }
    IndexGroup operator[](std::size_t group) const
    {
        const S32 lowest = SplatEnd<falling>(m_indices[group]);
        return {FirstLane(lowest), m_indices[group] - lowest};
    }

private:
    static constexpr int kFraction = exact ? 0 : 12;
    static constexpr float kOne = 1 << kFraction;

    RadialPlaces m_places;
    std::size_t m_pixel;
    F32 m_square, m_x;
    float m_most;
    S32 m_doubt;
    std::int32_t m_sure;
    S32 m_indices[kAhead] = {};
};

/// Entries of a table to a row.
template <bool streaming, class Entry>
class Painter {
public:
    static constexpr std::size_t kPixels = kLanes32;

    Painter(const void* table, void* out)
        : m_table(static_cast<const Entry*>(table)), m_out(static_cast<std::uint8_t*>(out))
    {}
    /// Pixels before those that may be painted by groups.
    std::size_t Before(std::size_t pixels) const
    {
        if constexpr (sizeof(Entry) < 4) return 0;
        return BytesBefore<streaming>(m_out, pixels * sizeof(Entry), sizeof(Entry)) / sizeof(Entry);
    }
    void Paint(std::size_t pixel, const IndexGroup& group, std::size_t pixels) const
    {
        const Entries entries(m_table + group.from, group.above);
        std::memcpy(m_out + pixel * sizeof(Entry), entries.found, pixels * sizeof(Entry));
    }
    /// A whole group, whose indices lie within a vector.
    void Paint(std::size_t pixel, const IndexGroup& group) const
    {
        std::uint8_t* const out = m_out + pixel * sizeof(Entry);
        if constexpr (sizeof(Entry) == 4) {
            StoreBlock<streaming>(out, LookUp(m_table + group.from, group.above));
        } else if constexpr (sizeof(Entry) == 8) {
            const Entries entries(m_table + group.from, group.above);
            StoreBlock<streaming>(out, Load(reinterpret_cast<const std::uint8_t*>(entries.found)));
            StoreBlock<streaming>(out + kBytes,
                                  Load(reinterpret_cast<const std::uint8_t*>(entries.found + kLanes64)));
        } else {
            Paint(pixel, group, kPixels);
        }
    }

private:
    struct Entries {
        Entries(const Entry* table, S32 above)
        {
            alignas(kBytes) std::int32_t at[kLanes32];
            Store(reinterpret_cast<std::uint8_t*>(at), {above.bits});
            for (std::size_t i = 0; i < kLanes32; ++i)
                found[i] = table[at[i]];
        }
        alignas(kBytes) Entry found[kLanes32];
    };

    const Entry* m_table;
    std::uint8_t* m_out;
};

/// Pixels at .. end, in parts of a group at most, by the formulas.
template <class Places, class AnyPainter>
void PaintExactly(const Places& places, const AnyPainter& painter, std::size_t at, std::size_t end)
{
    for (; at < end; at += AnyPainter::kPixels)
        painter.Paint(at, ExactGroup(places, at),
                      end - at < AnyPainter::kPixels ? end - at : AnyPainter::kPixels);
}

/// Whole groups, of which the first one is \p at. \return where they end
template <class Groups, class AnyPainter>
std::size_t PaintGroups(Groups groups, const AnyPainter& painter, std::size_t at, std::size_t end)
{
    constexpr std::size_t kPixels = AnyPainter::kPixels;
    for (; end >= at + Groups::kAhead * kPixels; at += Groups::kAhead * kPixels) {
        groups.Next();
        for (std::size_t i = 0; i < Groups::kAhead; ++i)
            painter.Paint(at + i * kPixels, groups[i]);
    }
    if (end < at + kPixels) return at;
    groups.Next();
    for (std::size_t i = 0; end >= at + kPixels; ++i, at += kPixels)
        painter.Paint(at, groups[i]);
    return at;
}

template <bool streaming, class Entry>
void Linear(const LinearPlaces& places, const void* table, void* out, std::size_t pixels)
{
    const Painter<streaming, Entry> painter(table, out);
    std::size_t at = painter.Before(pixels);
    PaintExactly(places, painter, 0, at);
    if (LinearGroups::AreExact(places, pixels))
        at = PaintGroups(LinearGroups(places, at), painter, at, pixels);
    PaintExactly(places, painter, at, pixels);
}

/// Pixels that come nearer, then those that go away. \return where whole groups end
template <bool exact, class AnyPainter>
std::size_t PaintAround(const RadialPlaces& places, const AnyPainter& painter, std::size_t at,
                        std::size_t end)
{
    const double nearest = -places.x;
    const auto middle = static_cast<std::size_t>(nearest > 0 ? (nearest < 1e9 ? nearest : 1e9) : 0);
    at = PaintGroups(RadialGroups<true, exact>(places, at), painter, at, middle < end ? middle : end);
    if (at < middle && at + AnyPainter::kPixels <= end) {
        PaintExactly(places, painter, at, at + AnyPainter::kPixels); // some come nearer, some go away
        at += AnyPainter::kPixels;
    }
    return PaintGroups(RadialGroups<false, exact>(places, at), painter, at, end);
}

template <bool streaming, class Entry>
void Radial(const RadialPlaces& places, const void* table, void* out, std::size_t pixels)
{
    const Painter<streaming, Entry> painter(table, out);
    std::size_t at = painter.Before(pixels);
    PaintExactly(places, painter, 0, at);
    const bool isExact = places.last < 4096 && places.square < 0x1p30 &&
                         places.square == static_cast<double>(static_cast<std::int32_t>(places.square));
    if (isExact) {
        at = PaintAround<true>(places, painter, at, pixels);
    } else if (places.last < 0x1p16) {
        at = PaintAround<false>(places, painter, at, pixels);
    }
    PaintExactly(places, painter, at, pixels);
}

template <bool streaming, std::size_t size, class Entry>
void FillEntry(PlaceRows& rows)
{
    rows.linear[size][streaming] = Linear<streaming, Entry>;
    rows.radial[size][streaming] = Radial<streaming, Entry>;
}

template <bool streaming>
void FillStreaming(PlaceRows& rows)
{
    FillEntry<streaming, 0, std::uint8_t>(rows);
    FillEntry<streaming, 1, std::uint16_t>(rows);
    FillEntry<streaming, 2, std::uint32_t>(rows);
    FillEntry<streaming, 3, std::uint64_t>(rows);
}

} // namespace

namespace VFIL_LEVEL {

void Fill(PlaceRows& rows)
{
    FillStreaming<false>(rows);
    FillStreaming<true>(rows);
}

} // namespace VFIL_LEVEL
} // namespace vfil
