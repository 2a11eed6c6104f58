/// \file
/// The plain forms of the kernels of the RGBA composite, and the table of their levels.
#include "il/rows/keyer/rgbcompositerows.h"

#include "il/rows/keyer/keybytes.h"

namespace vfil {

namespace {

using Byte = std::uint8_t;
using Rules = Arith<Byte>;

/// \param to  Where spill is whole.
Byte AmountOf(std::int64_t key, std::int64_t to, std::int64_t softness)
{
    const std::int64_t from = to - softness;
    if (key <= from) return 0;
    if (key >= to) return 255;
    const double share = static_cast<double>((key - from) * 255) / static_cast<double>(softness);
    return static_cast<Byte>(RoundHalfAway(share) & 0xFF);
}

Byte AmountOf(const Byte* pixel, const RgbSpillParams& spill)
{
    const std::int64_t most = std::max(pixel[spill.other], pixel[0]);
    return AmountOf(pixel[spill.key], std::clamp<std::int64_t>(most - spill.threshold, 1, 255),
                    spill.softness);
}

void Correct(const Byte* pixel, bool whole, const RgbSpillParams& spill, Byte* out)
{
    const Byte amount = AmountOf(pixel, spill);
    const YccBytes ours = Encode(pixel, spill.weights);
    const std::int64_t term = spill.lumaTerm;
    Decode({Rules::Blend(Limit(whole ? term * ours.y : term + ours.y), ours.y, amount),
            Rules::Blend(spill.cb, ours.cb, amount), Rules::Blend(spill.cr, ours.cr, amount)},
           spill.weights, out);
}

struct Matte {
    Byte value;
    bool whole; ///< the front is
};

Matte MatteOf(const Byte* a, const RgbCompositeParams& params)
{
    const std::int64_t sum = Sum(params.difference, a);
    if (sum <= params.low16) return {0, false};
    if (sum >= params.high16) return {255, true};
    return {static_cast<Byte>(((((sum >> 16) - params.low) * params.gain) >> 16) & 0xFF), false};
}

template <KeyResult result>
void PlainRow(const Byte* a, const Byte* b, Byte* out, std::size_t pixels, const RgbCompositeParams& params)
{
    for (; pixels != 0; --pixels, a += 4, b += 4, out += 4) {
        const Matte matte = MatteOf(a, params);
        Byte front[] = {a[0], a[1], a[2]};
        if (result == KeyResult::SpillCorrected) Correct(a, matte.whole, params.spill, front);
        for (int c = 0; c < 3; ++c)
            out[c] = result == KeyResult::Matte ? matte.value : Rules::Blend(front[c], b[c], matte.value);
        out[3] = 255;
    }
}

const LevelTables<RgbCompositeRows>& Tables()
{
    static const LevelTables<RgbCompositeRows> tables(
        {{{PlainRow<KeyResult::Composite>, PlainRow<KeyResult::Composite>},
          {PlainRow<KeyResult::SpillCorrected>, PlainRow<KeyResult::SpillCorrected>},
          {PlainRow<KeyResult::Matte>, PlainRow<KeyResult::Matte>}}},
        VFIL_FILLS);
    return tables;
}

} // namespace

void SetSoftness(RgbSpillParams& spill, std::int32_t softness)
{
    spill.softness = softness;
    for (int i = 0; i < 256; ++i)
        spill.amounts[i] = softness > 0 ? AmountOf(-i, 0, softness) : AmountOf(i, 0, softness);
}

const RgbCompositeRows& RgbCompositeRowsAt(Level level)
{
    return Tables().At(level);
}

RgbCompositeRow FindRgbCompositeRow(KeyResult result, bool useVectors, bool streaming,
                                    const RgbCompositeParams& params)
{
    const Level level = useVectors && FitsVectors(params.difference) ? BestLevel() : Level::Plain;
    return RgbCompositeRowsAt(level).rows[static_cast<int>(result)][streaming];
}

} // namespace vfil
