/// \file
/// The row kernel that composites RGBA pixels by a colour difference.
#include "il/rows/keyer/rgbcompositerows.h"

#include "il/rows/pixarith.h"

#include <algorithm>

namespace vfil {

namespace {

using Byte = std::uint8_t;

struct Rgb {
    Byte red, green, blue;
};

struct Ycc {
    Byte y, cb, cr;
};

/// Weights of 16 fraction bits, of red, green and blue.
struct Weights {
    std::int32_t red, green, blue;
};

/// What wraps beyond a byte is meant to.
Byte Weigh(const Rgb& pixel, const Weights& weights, std::int32_t offset)
{
    const std::int32_t sum =
        weights.red * pixel.red + weights.green * pixel.green + weights.blue * pixel.blue + 0x8000;
    return static_cast<Byte>((sum >> 16) + offset);
}

Ycc ToYcc(const Rgb& pixel, bool is709)
{
    static constexpr Weights kY[] = {{0x41BD, 0x810F, 0x1910}, {0x2EBE, 0x9D3E, 0x0FE0}};
    static constexpr Weights kCb[] = {{-0x25F2, -0x4A7E, 0x7070}, {-0x19C4, -0x56AD, 0x7070}};
    static constexpr Weights kCr[] = {{0x7070, -0x5E28, -0x1249}, {0x7070, -0x6621, -0x0A4F}};
    return {Weigh(pixel, kY[is709], 16), Weigh(pixel, kCb[is709], 128), Weigh(pixel, kCr[is709], 128)};
}

Byte ToByte(std::int32_t sum)
{
    return static_cast<Byte>(std::clamp(sum >> 16, 0, 255));
}

Rgb ToRgb(const Ycc& pixel, bool is709)
{
    const std::int32_t y = pixel.y * 0x12A15;
    if (is709) {
        return {ToByte(y - 0xF799DB + pixel.cr * 0x1CAF1),
                ToByte(y + 0x4D60CA - pixel.cr * 0x886D - pixel.cb * 0x3697),
                ToByte(y - 0x120847F + pixel.cb * 0x21CC6)};
    }
    return {ToByte(y - 0xDE6BEC + pixel.cr * 0x19895),
            ToByte(y + 0x88138E - pixel.cr * 0xD01F - pixel.cb * 0x644B),
            ToByte(y - 0x11455FA + pixel.cb * 0x20469)};
}

/// How much of a pixel is spill.
Byte SpillOf(const Byte* pixel, const RgbCompositeParams& params)
{
    const std::int64_t most = std::max(pixel[params.other], pixel[0]);
    const std::int64_t to = std::clamp<std::int64_t>(most - params.threshold, 1, 255);
    const std::int64_t from = to - params.softness;
    const std::int64_t key = pixel[params.key];
    if (key <= from) return 0;
    if (key >= to) return 255;
    const double share = static_cast<double>((key - from) * 255) / params.softness;
    return static_cast<Byte>(RoundHalfAway(share) & 0xFF);
}

/// \param whole  Of whole foreground the luma is multiplied; elsewhere the term is added.
Rgb Corrected(const Byte* pixel, bool whole, const RgbCompositeParams& params)
{
    using Rules = Arith<Byte>;
    const Byte spill = SpillOf(pixel, params);
    const Ycc ours = ToYcc({pixel[0], pixel[1], pixel[2]}, params.is709);
    const std::int64_t luma =
        whole ? std::int64_t{params.lumaTerm} * ours.y : std::int64_t{params.lumaTerm} + ours.y;
    const auto spilled = static_cast<Byte>(std::clamp<std::int64_t>(luma, 0, 255));
    return ToRgb({Rules::Blend(spilled, ours.y, spill), Rules::Blend(params.spillCb, ours.cb, spill),
                  Rules::Blend(params.spillCr, ours.cr, spill)},
                 params.is709);
}

Rgb Grey(Byte v)
{
    return {v, v, v};
}

Rgb Composite(const Byte* a, const Byte* b, const RgbCompositeParams& params)
{
    const std::int64_t limited = std::min<std::int64_t>(a[params.key], params.limit);
    const std::int64_t sum = std::int64_t{params.wP} * a[params.p] + params.wKey * limited +
                             std::int64_t{params.wQ} * a[params.q] + 0xFF0000;
    const Rgb back{b[0], b[1], b[2]};
    const Rgb front{a[0], a[1], a[2]};
    if (sum <= params.low16) return params.matte ? Grey(0) : back;
    if (sum >= params.high16) {
        if (params.matte) return Grey(255);
        return params.spill ? Corrected(a, true, params) : front;
    }
    const auto m = static_cast<Byte>(((((sum >> 16) - params.low) * params.gain) >> 16) & 0xFF);
    if (params.matte) return Grey(m);
    const Rgb ours = params.spill ? Corrected(a, false, params) : front;
    using Rules = Arith<Byte>;
    return {Rules::Blend(ours.red, back.red, m), Rules::Blend(ours.green, back.green, m),
            Rules::Blend(ours.blue, back.blue, m)};
}

} // namespace

void CompositeRgbRow(const std::uint8_t* a, const std::uint8_t* b, std::uint8_t* out, std::size_t pixels,
                     const RgbCompositeParams& params)
{
    for (; pixels != 0; --pixels, a += 4, b += 4, out += 4) {
        const Rgb result = Composite(a, b, params);
        out[0] = result.red;
        out[1] = result.green;
        out[2] = result.blue;
        out[3] = 255;
    }
}

} // namespace vfil
