/// \file
/// The vector forms of the kernels of the RGBA composite, for the level VFIL_LEVEL.
#include "il/rows/keyer/keylanes.h"
#include "il/rows/keyer/rgbcompositeparams.h"

namespace vfil {
namespace {

#if defined(__AVX2__)

using Byte = std::uint8_t;

constexpr std::uint32_t kOpaque = 0xFF000000;

/// The mattes of the pixels of a vector, in lanes of 32 bits.
class Key {
public:
    explicit Key(const RgbCompositeParams& params)
        : m_difference(params.difference), m_low16(Splat32(params.low16)), m_high16(Splat32(params.high16)),
          m_low(Splat32(params.low)), m_gain(Splat32(params.gain))
    {}

    struct Mattes {
        S32 values;
        S32 whole; ///< 255 where the front is, unless nothing of it is seen
    };

    Mattes operator()(U8 a) const
    {
        const S32 sum = m_difference(a);
        const S32 whole = Select(Greater(m_high16, sum), Splat32(0), Splat32(255));
        // What the product has beyond 32 bits does not matter.
        const S32 between = ShiftDownBits<16>((ShiftDown<16>(sum) - m_low) * m_gain) & Splat32(255);
        return {Select(Greater(sum, m_low16), between | whole, Splat32(0)), whole};
    }

private:
    DifferenceLanes m_difference;
    S32 m_low16, m_high16, m_low, m_gain;
};

bool AreAll(S32 mattes, int value)
{
    return IsZero(U16{mattes.bits} ^ U16{Splat32(value).bits});
}

template <bool streaming>
void Composite(const Byte* a, const Byte* b, Byte* out, std::size_t pixels, const RgbCompositeParams& params)
{
    const Key key(params);
    MapRow<streaming, 4>(a, b, out, 4 * pixels, [key](U8 front, U8 back, Part) -> U8 {
        const U8 opaque = SplatU32(kOpaque);
        const S32 mattes = key(front).values;
        if (AreAll(mattes, 0)) return back | opaque;
        if (AreAll(mattes, 255)) return front | opaque;
        return Blend(front, back, SplatLowBytes({mattes.bits})) | opaque;
    });
}

template <bool streaming>
void Matte(const Byte* a, const Byte* /*b*/, Byte* out, std::size_t pixels, const RgbCompositeParams& params)
{
    const Key key(params);
    MapRow<streaming, 4>(a, a, out, 4 * pixels, [key](U8 front, U8, Part) {
        return SplatLowBytes({key(front).values.bits}) | SplatU32(kOpaque);
    });
}

class SpillCorrection {
public:
    explicit SpillCorrection(const RgbSpillParams& spill)
        : m_key(spill.key), m_other(spill.other), m_isSoft(spill.softness > 0),
          m_threshold(spill.threshold, kOnes), m_amounts(spill.amounts), m_term(spill.lumaTerm, kOnes),
          m_factor(Splat(spill.lumaTerm < 0 ? 0 : (spill.lumaTerm > 255 ? 255 : spill.lumaTerm))),
          m_cb(SplatByte(spill.cb)), m_cr(SplatByte(spill.cr)), m_encode(spill.weights),
          m_decode(spill.weights)
    {}

    Block operator()(const Block& planes, U8 whole) const
    {
        const YccPlanes ycc = m_encode(planes);
        const U8 amount = Amount(planes);
        const U8 luma = (whole & Multiplied(ycc.y)) | (m_term.Add(ycc.y) & (whole ^ SplatByte(255)));
        return m_decode(
            {Blend(luma, ycc.y, amount), Blend(m_cb, ycc.cb, amount), Blend(m_cr, ycc.cr, amount)});
    }

private:
    static constexpr std::uint32_t kOnes = 0x01010101;

    U8 Amount(const Block& planes) const
    {
        const U8 key = planes.v[m_key];
        const U8 to = Max(m_threshold.Take(Max(planes.v[m_other], planes.v[0])), SplatByte(1));
        return Lookup(m_amounts, m_isSoft ? SubClip(to, key) : SubClip(key, to));
    }

    U8 Multiplied(U8 luma) const
    {
        const U16Pair wide = Widen(luma);
        return Narrow({Min(wide.lo * m_factor, Splat(255)), Min(wide.hi * m_factor, Splat(255))});
    }

    int m_key, m_other;
    bool m_isSoft;
    Shift m_threshold;
    ByteTable<16> m_amounts;
    Shift m_term;
    U16 m_factor;
    U8 m_cb, m_cr;
    Encoder m_encode;
    Decoder m_decode;
};

/// Lanes of the pixels of a block as a plane, in the order of ToPlanes.
U8 PlaneOf(const S32 (&lanes)[4])
{
    return Narrow({PackSigned(lanes[0], lanes[1]), PackSigned(lanes[2], lanes[3])});
}

void CompositeCorrected(const Byte* a, const Byte* b, Byte* out, std::size_t pixels,
                        const RgbCompositeParams& params)
{
    const Key key(params);
    const SpillCorrection correct(params.spill);
    MapBlocks(a, b, out, pixels, [&](const Byte* as, const Byte* bs) -> Block {
        const Block front = LoadBlock(as);
        Block back = LoadBlock(bs);
        S32 values[4], wholes[4];
        for (int i = 0; i < 4; ++i) {
            const Key::Mattes mattes = key(front.v[i]);
            values[i] = mattes.values;
            wholes[i] = mattes.whole;
            back.v[i] = back.v[i] | SplatU32(kOpaque);
        }
        const U8 matte = PlaneOf(values);
        if (IsZero({matte.bits})) return back;
        Block corrected = correct(ToPlanes(front), PlaneOf(wholes));
        if (!IsZero(U16{(matte ^ SplatByte(255)).bits})) {
            back = ToPlanes(back);
            for (int c = 0; c < 3; ++c)
                corrected.v[c] = Blend(corrected.v[c], back.v[c], matte);
        }
        return FromPlanes(corrected);
    });
}

template <bool streaming>
void FillStreaming(RgbCompositeRows& rows)
{
    rows.rows[static_cast<int>(KeyResult::Composite)][streaming] = Composite<streaming>;
    rows.rows[static_cast<int>(KeyResult::SpillCorrected)][streaming] = CompositeCorrected;
    rows.rows[static_cast<int>(KeyResult::Matte)][streaming] = Matte<streaming>;
}

#endif

} // namespace

namespace VFIL_LEVEL {

// The products of 32 bits and the byte shuffle are what the lowest level lacks.
void Fill([[maybe_unused]] RgbCompositeRows& rows)
{
#if defined(__AVX2__)
    FillStreaming<false>(rows);
    FillStreaming<true>(rows);
#endif
}

} // namespace VFIL_LEVEL
} // namespace vfil
