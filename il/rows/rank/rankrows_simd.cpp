/// \file
/// The vector forms of the kernels of rank filters and morphology, for the level VFIL_LEVEL.
#include "il/rows/rank/rankparams.h"
#include "il/rows/vecmove.h"
#include "il/rows/vecselect.h"

namespace vfil {
namespace {

/// A depth's vector and its operations under common names.
template <class Sample>
struct Depth;

template <>
struct Depth<std::uint8_t> {
    using Vector = U8;
    static U8 SplatRow(std::size_t row) { return SplatU32(0x01010101U * static_cast<std::uint32_t>(row)); }
    static U8 Larger(U8 a, U8 b) { return Max(a, b); }
    static U8 Smaller(U8 a, U8 b) { return Min(a, b); }
};

template <>
struct Depth<std::uint16_t> {
    using Vector = U16;
    static U16 SplatRow(std::size_t row) { return Splat(static_cast<int>(row)); }
    static U16 Larger(U16 a, U16 b) { return Max(a, b); }
    static U16 Smaller(U16 a, U16 b) { return Min(a, b); }
};

/// A vector, or what is left of a row before zeros.
template <class Vector>
Vector LoadSome(const void* from, std::size_t bytes)
{
    if (bytes >= kBytes) return {Load(static_cast<const std::uint8_t*>(from)).bits};
    std::uint8_t part[kBytes] = {};
    std::memcpy(part, from, bytes);
    return {Load(part).bits};
}

template <class Vector>
void StoreSome(void* to, std::size_t bytes, Vector v)
{
    if (bytes >= kBytes) return Store(static_cast<std::uint8_t*>(to), {v.bits});
    std::uint8_t part[kBytes];
    Store(part, {v.bits});
    std::memcpy(to, part, bytes);
}

/// Vectors that go through the rows together, so that a row's address is read once for all of them.
constexpr std::size_t kTogether = 4;

/// The extremes of `vectors` vectors at a place of the rows, or of `bytes` bytes if that is less. Streams to
/// an aligned place only.
template <std::size_t vectors, bool streaming, class Sample, class Combine>
void ExtremeBlock(const Sample* const* rows, std::size_t count, Sample* out, std::size_t at,
                  std::size_t bytes, Combine combine)
{
    using Vector = typename Depth<Sample>::Vector;
    constexpr std::size_t kLanes = kBytes / sizeof(Sample);
    Vector extremes[vectors];
    for (std::size_t v = 0; v < vectors; ++v)
        extremes[v] = LoadSome<Vector>(rows[0] + at + v * kLanes, bytes);
    for (std::size_t row = 1; row < count; ++row)
        for (std::size_t v = 0; v < vectors; ++v)
            extremes[v] = combine(extremes[v], LoadSome<Vector>(rows[row] + at + v * kLanes, bytes));
    for (std::size_t v = 0; v < vectors; ++v) {
        if constexpr (streaming) {
            StoreStreaming(reinterpret_cast<std::uint8_t*>(out + at + v * kLanes), {extremes[v].bits});
        } else {
            StoreSome(out + at + v * kLanes, bytes, extremes[v]);
        }
    }
}

template <class Sample, bool largest, bool streaming>
void Extreme(const Sample* const* rows, std::size_t count, Sample* out, std::size_t samples)
{
    using D = Depth<Sample>;
    const auto combine = [](auto a, auto b) { return largest ? D::Larger(a, b) : D::Smaller(a, b); };
    constexpr std::size_t kLanes = kBytes / sizeof(Sample);
    constexpr std::size_t kBlock = kTogether * kLanes;
    std::size_t at = 0;
    if constexpr (streaming) {
        const std::size_t head = BytesToAligned(reinterpret_cast<std::uint8_t*>(out));
        if (head % sizeof(Sample) == 0 && head / sizeof(Sample) <= samples) {
            at = head / sizeof(Sample);
            if (at != 0) ExtremeBlock<1, false>(rows, count, out, 0, head, combine);
            for (; samples - at >= kBlock; at += kBlock)
                ExtremeBlock<kTogether, true>(rows, count, out, at, kBytes, combine);
        }
    }
    for (; samples - at >= kBlock; at += kBlock)
        ExtremeBlock<kTogether, false>(rows, count, out, at, kBytes, combine);
    for (; samples - at >= kLanes; at += kLanes)
        ExtremeBlock<1, false>(rows, count, out, at, kBytes, combine);
    if (at != samples) ExtremeBlock<1, false>(rows, count, out, at, (samples - at) * sizeof(Sample), combine);
}

/// The rows that all the windows have, once; before them the first windows' own, after them the last ones'.
template <std::size_t vectors, class Sample, class Combine>
void WindowsBlock(const Sample* const* rows, std::size_t height, Sample* const* outs, std::size_t at,
                  std::size_t bytes, Combine combine)
{
    using Vector = typename Depth<Sample>::Vector;
    constexpr std::size_t kLanes = kBytes / sizeof(Sample);
    constexpr std::size_t kLast = kWindowsAtOnce - 1;
    Vector windows[kWindowsAtOnce][vectors];
    for (std::size_t v = 0; v < vectors; ++v) {
        const auto load = [&](std::size_t row) {
            return LoadSome<Vector>(rows[row] + at + v * kLanes, bytes);
        };
        Vector common = load(kLast);
        for (std::size_t row = kLast + 1; row < height; ++row)
            common = combine(common, load(row));
        windows[kLast][v] = common;
        Vector own = load(kLast - 1);
        for (std::size_t window = kLast; window-- > 0;) {
            windows[window][v] = combine(common, own);
            if (window > 0) own = combine(own, load(window - 1));
        }
        own = load(height);
        for (std::size_t window = 1; window <= kLast; ++window) {
            windows[window][v] = combine(windows[window][v], own);
            if (window < kLast) own = combine(own, load(height + window));
        }
    }
    for (std::size_t window = 0; window < kWindowsAtOnce; ++window)
        for (std::size_t v = 0; v < vectors; ++v)
            StoreSome(outs[window] + at + v * kLanes, bytes, windows[window][v]);
}

template <class Sample, bool largest>
void Windows(const Sample* const* rows, std::size_t height, Sample* const* outs, std::size_t samples)
{
    using D = Depth<Sample>;
    const auto combine = [](auto a, auto b) { return largest ? D::Larger(a, b) : D::Smaller(a, b); };
    constexpr std::size_t kLanes = kBytes / sizeof(Sample);
    std::size_t at = 0;
    for (; samples - at >= 2 * kLanes; at += 2 * kLanes)
        WindowsBlock<2>(rows, height, outs, at, kBytes, combine);
    for (; at < samples; at += kLanes)
        WindowsBlock<1>(rows, height, outs, at, (samples - at) * sizeof(Sample), combine);
}

template <std::size_t vectors>
void PickBlock(const KeyedPixels* rows, std::size_t count, std::uint32_t* outKeys, std::uint8_t* outPixels,
               std::size_t at, std::size_t bytes)
{
    S32 keys[vectors];
    U8 pixels[vectors];
    for (std::size_t row = 0; row < count; ++row) {
        for (std::size_t v = 0; v < vectors; ++v) {
            const std::size_t word = at + v * kLanes32;
            const auto key = LoadSome<S32>(rows[row].keys + word, bytes);
            const auto pixel = LoadSome<U8>(rows[row].pixels + 4 * word, bytes);
            if (row == 0) {
                keys[v] = key;
                pixels[v] = pixel;
            } else {
                const auto larger = Greater(key, keys[v]);
                keys[v] = Select(larger, key, keys[v]);
                pixels[v] = Select(larger, pixel, pixels[v]);
            }
        }
    }
    for (std::size_t v = 0; v < vectors; ++v) {
        StoreSome(outKeys + at + v * kLanes32, bytes, keys[v]);
        StoreSome(outPixels + 4 * (at + v * kLanes32), bytes, pixels[v]);
    }
}

void Pick(const KeyedPixels* rows, std::size_t count, std::uint32_t* keys, std::uint8_t* pixels,
          std::size_t words)
{
    std::size_t at = 0;
    for (; words - at >= kTogether * kLanes32; at += kTogether * kLanes32)
        PickBlock<kTogether>(rows, count, keys, pixels, at, kBytes);
    for (; words - at >= kLanes32; at += kLanes32)
        PickBlock<1>(rows, count, keys, pixels, at, kBytes);
    if (at != words) PickBlock<1>(rows, count, keys, pixels, at, (words - at) * 4);
}

/// The brightness of each pixel of four bytes, in 32 bits. The weighted sum n is at most 24735 = 97 * 255,
/// and 43241 is 73 / 97 more than 2^22 / 97, so that n * 43241 / 2^22 is less than 1 / 97 above n / 97.
S32 Brightness(S32 pixels)
{
    const S32 redBlue = pixels & Splat32(0x00FF00FF);
    const S32 green = ShiftDownBits<8>(pixels) & Splat32(0xFF);
    const S32 sum = DotPairs(redBlue, SplatPair16(29, 11)) + DotPairs(green, SplatPair16(57, 0));
    return ShiftDownBits<6>({MulHigh({sum.bits}, {SplatPair16(43241, 0).bits}).bits});
}

void Keys8(const std::uint8_t* pixels, std::uint8_t* keys, std::size_t count)
{
    ConvertRow<false, 4, 1>(pixels, keys, count, [](const std::uint8_t* in, U8* out) {
        S32 lanes[4];
        for (std::size_t v = 0; v < 4; ++v)
            lanes[v] = Brightness({Load(in + v * kBytes).bits});
        out[0] = NarrowLanes(lanes[0], lanes[1], lanes[2], lanes[3]);
    });
}

/// Repeated selection for a vector of pixels at once. FindMedian takes the pixels of a key from the last to
/// the first, each to the end of what is left: that is, the last of the largest keys of places 0 .. end, over
/// and over, exchanged with the one at `end`, which is the same place for all windows.
template <class Sample>
class Selection {
public:
    using D = Depth<Sample>;
    using Vector = typename D::Vector;

    Selection(const Sample* const* keys, std::size_t count, std::size_t at, std::size_t bytes)
    {
        for (std::size_t i = 0; i < count; ++i) {
            m_keys[i] = LoadSome<Vector>(keys[i] + at, bytes);
            m_rows[i] = D::SplatRow(i);
            Meet(i);
        }
    }

    /// The rows of the middle keys.
    Vector Middle(std::size_t count)
    {
        for (std::size_t end = count - 1; end > count >> 1; --end)
            MoveToEnd(end);
        return m_row;
    }

private:
    /// Puts the one at `end` where the largest was, and finds the largest of those before `end`.
    void MoveToEnd(std::size_t end)
    {
        const Vector taken = m_row;
        const Vector endKey = m_keys[end];
        const Vector endRow = m_rows[end];
        for (std::size_t i = 0; i < end; ++i) {
            const auto isTaken = Equal(m_rows[i], taken);
            m_keys[i] = Select(isTaken, endKey, m_keys[i]);
            m_rows[i] = Select(isTaken, endRow, m_rows[i]);
            Meet(i);
        }
    }

    /// Goes on from places 0 .. i - 1 to i.
    void Meet(std::size_t i)
    {
        m_key = i == 0 ? m_keys[i] : D::Larger(m_key, m_keys[i]);
        m_row = i == 0 ? m_rows[i] : Select(Equal(m_key, m_keys[i]), m_rows[i], m_row);
    }

    Vector m_keys[kMostMiddleRows];
    Vector m_rows[kMostMiddleRows]; ///< where the key at a place came from
    Vector m_key;                   ///< the largest so far
    Vector m_row;                   ///< and the last place's row that has it
};

template <class Sample>
void Middle(const Sample* const* keys, std::size_t count, Sample* chosen, std::size_t pixels)
{
    for (std::size_t at = 0; at < pixels; at += kBytes / sizeof(Sample)) {
        const std::size_t bytes = (pixels - at) * sizeof(Sample);
        StoreSome(chosen + at, bytes, Selection<Sample>(keys, count, at, bytes).Middle(count));
    }
}

template <class Sample>
void FillCases(RankCases<Sample>& cases)
{
    cases.extreme[0][0] = Extreme<Sample, false, false>;
    cases.extreme[0][1] = Extreme<Sample, false, true>;
    cases.extreme[1][0] = Extreme<Sample, true, false>;
    cases.extreme[1][1] = Extreme<Sample, true, true>;
    cases.windows[0] = Windows<Sample, false>;
    cases.windows[1] = Windows<Sample, true>;
    cases.middle = Middle<Sample>;
}

} // namespace

namespace VFIL_LEVEL {

void Fill(RankRows& rows)
{
    FillCases(rows.cases8);
    FillCases(rows.cases16);
    rows.cases8.key = Keys8;
    rows.pick = Pick;
}

} // namespace VFIL_LEVEL
} // namespace vfil
