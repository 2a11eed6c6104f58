/// \file
/// The colours that broadcast allows.
#include "legality/lumalimits.h"

#include <algorithm>

namespace vfil::legality {

namespace {

// The terms of the way to RGB, times kScale.
struct Terms {
    std::int64_t red;       // of Cr
    std::int64_t greenBlue; // of Cb
    std::int64_t greenRed;  // of Cr
    std::int64_t blue;      // of Cb
};
constexpr Terms kTerms601{140200000, -34414000, -71414000, 177200000};
constexpr Terms kTerms709{157480000, -18732427, -46812427, 185560000};

ChromaPart ChromaPartOf(const Terms& terms, int cb, int cr)
{
    const std::int64_t b = std::int64_t{255} * 219 * (cb - 128);
    const std::int64_t r = std::int64_t{255} * 219 * (cr - 128);
    const auto [least, most] =
        std::minmax({terms.red * r, terms.greenBlue * b + terms.greenRed * r, terms.blue * b});
    return {least, most};
}

std::int64_t FloorOf(std::int64_t number, std::int64_t divisor)
{
    const std::int64_t quotient = number / divisor;
    return number % divisor < 0 ? quotient - 1 : quotient;
}

LumaLimits LimitsOf(const ChromaPart& chroma, int cb, int cr)
{
    const auto isLegal = [](int c) { return c >= kChromaLow && c <= kChromaHigh; };
    constexpr std::int64_t kStep = LumaPart(kLumaLow + 1);
    const std::int64_t high = kLumaLow + FloorOf(255 * kCode - chroma.most, kStep);
    const std::int64_t low = kLumaLow - FloorOf(chroma.least, kStep);
    if (!isLegal(cb) || !isLegal(cr) || low > kLumaHigh || high < kLumaLow) return {1, 0};
    return {static_cast<std::uint8_t>(std::max<std::int64_t>(low, kLumaLow)),
            static_cast<std::uint8_t>(std::min<std::int64_t>(high, kLumaHigh))};
}

} // namespace

LimitTable::LimitTable(bool is709)
{
    for (int cb = 0; cb < 256; ++cb) {
        for (int cr = 0; cr < 256; ++cr) {
            const ChromaPart part = ChromaPartOf(is709 ? kTerms709 : kTerms601, cb, cr);
            m_parts[IndexOf(cb, cr)] = part;
            m_limits[IndexOf(cb, cr)] = LimitsOf(part, cb, cr);
        }
    }
}

const LimitTable& Limits(bool is709)
{
    static const LimitTable of601(false);
    static const LimitTable of709(true);
    return is709 ? of709 : of601;
}

} // namespace vfil::legality
