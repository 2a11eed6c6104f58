/// \file
/// Counts over 4:2:2.
#include "legality/judge.h"
#include "legality/lumalimits.h"

#include <algorithm>

namespace vfil::legality {

namespace {

// Where the samples of a pair are.
struct Layout {
    std::size_t left, cb, right, cr;
};
constexpr Layout kLumaFirst{0, 1, 2, 3};
constexpr Layout kChromaFirst{1, 0, 3, 2};

// The counts of one picture. Most pixels are legal, and found so by the table.
class Counter {
public:
    Counter(const host::Picture& picture, RightChroma right)
        : m_limits(Limits(picture.FormatInfo().model == PXColorModel_YCC709)),
          m_layout(picture.FormatInfo().chromaFirst ? kChromaFirst : kLumaFirst),
          m_mean(right == RightChroma::Mean)
    {}

    void CountRow(const std::uint8_t* row, long width, long y)
    {
        const long pairs = width / 2;
        for (long i = 0; i < pairs; ++i) {
            const std::uint8_t* pair = row + 4 * i;
            int cb = pair[m_layout.cb];
            int cr = pair[m_layout.cr];
            Count(pair[m_layout.left], cb, cr, 2 * i, y);
            if (m_mean && i + 1 < pairs) {
                cb = (cb + pair[4 + m_layout.cb] + 1) / 2;
                cr = (cr + pair[4 + m_layout.cr] + 1) / 2;
            }
            Count(pair[m_layout.right], cb, cr, 2 * i + 1, y);
        }
        if (width % 2 == 0) return;
        constexpr int kNoCr = 128; // of a lone pixel
        const std::uint8_t* pixel = row + 4 * pairs;
        Count(pixel[m_layout.left], pixel[m_layout.cb], kNoCr, width - 1, y);
    }

    Legality Result() const
    {
        Legality result = m_result;
        for (std::size_t found = 0; found < m_found.size(); ++found) {
            result.outside += m_found[found];
            if ((found & kBeyond) != 0) result.beyond += m_found[found];
            for (std::size_t kind = 0; kind < kKinds; ++kind)
                if ((found >> kind & 1) != 0) result.kinds[kind] += m_found[found];
        }
        return result;
    }

private:
    void Count(int luma, int cb, int cr, long x, long y)
    {
        const LumaLimits& limits = m_limits.LumaBeside(cb, cr);
        if (luma < limits.low || luma > limits.high) CountIllegal(luma, cb, cr, x, y);
    }

    void CountIllegal(int luma, int cb, int cr, long x, long y)
    {
        const Excursions by = ExcursionsOf(luma, cb, cr);
        const std::int64_t worst = *std::max_element(by.begin(), by.end());
        std::size_t found = worst > kCode ? kBeyond : 0;
        for (std::size_t kind = 0; kind < kKinds; ++kind)
            found |= static_cast<std::size_t>(by[kind] > 0) << kind;
        ++m_found[found];
        if (worst <= m_worst) return;
        m_worst = worst;
        const auto kind = static_cast<Kind>(std::find(by.begin(), by.end(), worst) - by.begin());
        m_result.worst = {static_cast<double>(worst) / static_cast<double>(kCode), kind, x, y};
    }

    // By kind, in 1/kCode; below 0 is inside.
    using Excursions = std::array<std::int64_t, kKinds>;
    Excursions ExcursionsOf(int luma, int cb, int cr) const
    {
        const ChromaPart& chroma = m_limits.PartOf(cb, cr);
        const std::int64_t part = LumaPart(luma);
        const int beside = std::max(std::max(kChromaLow - cb, cb - kChromaHigh),
                                    std::max(kChromaLow - cr, cr - kChromaHigh));
        return {(kLumaLow - luma) * kCode, (luma - kLumaHigh) * kCode, beside * kCode,
                part + chroma.most - 255 * kCode, -(part + chroma.least)};
    }

    // Bits of what is out of range, one a kind, and one for more than a code.
    static constexpr std::size_t kBeyond = std::size_t{1} << kKinds;

    const LimitTable& m_limits;
    Layout m_layout;
    bool m_mean;
    std::int64_t m_worst = 0;
    std::array<std::uint64_t, 2 * kBeyond> m_found{}; // pixels by their bits
    Legality m_result;
};

} // namespace

Legality& Legality::operator+=(const Legality& other)
{
    pixels += other.pixels;
    outside += other.outside;
    beyond += other.beyond;
    for (std::size_t i = 0; i < kKinds; ++i)
        kinds[i] += other.kinds[i];
    if (other.worst.codes > worst.codes) worst = other.worst;
    return *this;
}

Legality Judge(const host::Picture& picture, RightChroma right)
{
    Legality legality;
    if (picture.FormatInfo().subsampled) {
        Counter counter(picture, right);
        for (long y = picture.Height(); y-- > 0;)
            counter.CountRow(picture.Row(y), picture.Width(), y);
        legality = counter.Result();
    }
    legality.pixels =
        static_cast<std::uint64_t>(picture.Width()) * static_cast<std::uint64_t>(picture.Height());
    return legality;
}

} // namespace vfil::legality
