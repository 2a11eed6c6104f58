/// \file
/// The vector forms of the kernels of colour correction in 4:2:2, for the level VFIL_LEVEL.
#include "il/rows/treat/correctlanes.h"

namespace vfil {
namespace {

#if defined(__AVX2__)

/// kLanes32 macropixels: (Y0, Y1) and (Cb, Cr) as the 16-bit lanes of each 32 bits.
struct Macropixels {
    S32 luma, chroma;
};

template <bool chromaFirst>
Macropixels TakeApart(U8 v)
{
    const S32 lanes{v.bits};
    const S32 even = lanes & Splat32(0x00FF00FF);
    const S32 odd = ShiftDownBits<8>(lanes) & Splat32(0x00FF00FF);
    return chromaFirst ? Macropixels{odd, even} : Macropixels{even, odd};
}

/// Of lanes of bytes.
template <bool chromaFirst>
U8 PutTogether(Macropixels m)
{
    return {(chromaFirst ? m.chroma | ShiftUp<8>(m.luma) : m.luma | ShiftUp<8>(m.chroma)).bits};
}

/// The matrix on macropixels. Its sums' parts are made once for both lumas.
class PairMatrix {
public:
    explicit PairMatrix(const CorrectionMatrix& matrix)
    {
        const auto& m = matrix.at;
        for (int k = 0; k < 3; ++k) {
            m_left[k] = SplatPair16(m[0][k], 0);
            m_right[k] = SplatPair16(0, m[0][k]);
            m_chroma[k] = SplatPair16(m[1][k], m[2][k]);
            m_added[k] = Splat32(m[3][k]);
        }
    }
    /// A component, by both lumas.
    struct Both {
        S32 left, right;
    };
    template <int k>
    Both Component(Macropixels in) const
    {
        const S32 chroma = Chroma<k>(in);
        return {ShiftDown<8>(DotPairs(in.luma, m_left[k]) + chroma),
                ShiftDown<8>(DotPairs(in.luma, m_right[k]) + chroma)};
    }
    template <int k>
    S32 LeftComponent(Macropixels in) const
    {
        return ShiftDown<8>(DotPairs(in.luma, m_left[k]) + Chroma<k>(in));
    }

private:
    template <int k>
    S32 Chroma(Macropixels in) const
    {
        return DotPairs(in.chroma, m_chroma[k]) + m_added[k];
    }

    S32 m_left[3], m_right[3], m_chroma[3], m_added[3];
};

/// The first matrix and the increments, in two steps as LutStep.
class PairLutStep {
public:
    struct Held {
        U16 lumas, chromas;
        Indices left, right;
    };

    explicit PairLutStep(const Correction& correction) : m_matrix(correction.matrix), m_lut(correction.lut) {}
    void Hold(Held& held, Macropixels in) const
    {
        const PairMatrix::Both y = m_matrix.Component<0>(in);
        StoreIndices(held.left, y.left);
        StoreIndices(held.right, y.right);
        held.lumas = PackBeside(y.left, y.right);
        held.chromas = PackBeside(m_matrix.LeftComponent<1>(in), m_matrix.LeftComponent<2>(in));
    }
    Macropixels Finish(const Held& held) const
    {
        const SplitLanes left = LookUp64(m_lut, held.left.at);
        const SplitLanes right = LookUp64(m_lut, held.right.at);
        const S32 more = (left.odd & Splat32(0xFFFF)) | ShiftUp<16>(right.odd);
        return {{(held.lumas + U16{more.bits}).bits}, {(held.chromas + U16{left.even.bits}).bits}};
    }

private:
    PairMatrix m_matrix;
    const LumaIncrements* m_lut;
};

/// From RGB to YCC by weights of 256ths.
class Encoder {
public:
    explicit Encoder(const EncodeTable& table) : m_y(table.y, 16), m_cb(table.cb, 128), m_cr(table.cr, 128) {}
    /// Pixels of red, green, blue and anything, as bytes.
    Macropixels operator()(U8 left, U8 right) const
    {
        const Pairs l = PairsOf(left);
        const Pairs r = PairsOf(right);
        return {m_y(l) | ShiftUp<16>(m_y(r)), m_cb(l) | ShiftUp<16>(m_cr(l))};
    }

private:
    struct Pairs {
        S32 redBlue, green; ///< green beside 128
    };
    static Pairs PairsOf(U8 v)
    {
        const S32 pixels{v.bits};
        return {pixels & Splat32(0x00FF00FF),
                (ShiftDownBits<8>(pixels) & Splat32(0xFF)) | Splat32(128 << 16)};
    }
    struct Weights {
        /// \param middle  256 of it and the 128 that round are a product with 128.
        Weights(const EncodeWeights& w, int middle)
            : redBlue(SplatPair16(w.red, w.blue)), green(SplatPair16(w.green, 2 * middle + 1))
        {}
        S32 operator()(Pairs in) const
        {
            return ShiftDown<8>(DotPairs(in.redBlue, redBlue) + DotPairs(in.green, green));
        }
        S32 redBlue, green;
    };

    Weights m_y, m_cb, m_cr;
};

U16 ClampToByte(U16 v)
{
    return MinSigned(MaxSigned(v, Splat(0)), Splat(255));
}

/// The matrix to 4:2:2.
template <bool chromaFirst>
U8 ToPairs(const PairMatrix& matrix, Macropixels in)
{
    const PairMatrix::Both y = matrix.Component<0>(in);
    const U16 luma = ClampToByte(PackBeside(y.left, y.right));
    const U16 chroma = ClampToByte(PackBeside(matrix.LeftComponent<1>(in), matrix.LeftComponent<2>(in)));
    return PutTogether<chromaFirst>({{luma.bits}, {chroma.bits}});
}

/// The matrix to RGB, the tables, and the way back, of two vectors.
class ByTables {
public:
    ByTables(const Correction& correction, const EncodeTable& back)
        : m_tables(correction.tables), m_encode(back)
    {}
    template <bool chromaFirst>
    U8Pair Apply(const PairMatrix& matrix, const Macropixels* in) const
    {
        Block pixels; // left and right ones in turn
        for (int i = 0; i < 2; ++i) {
            const PairMatrix::Both r = matrix.Component<0>(in[i]);
            const PairMatrix::Both g = matrix.Component<1>(in[i]);
            const PairMatrix::Both b = matrix.Component<2>(in[i]);
            pixels.v[2 * i] = ToTurned(r.left, g.left, b.left, b.left);
            pixels.v[2 * i + 1] = ToTurned(r.right, g.right, b.right, b.right);
        }
        m_tables.Replace(pixels, false);
        return {PutTogether<chromaFirst>(m_encode(pixels.v[0], pixels.v[1])),
                PutTogether<chromaFirst>(m_encode(pixels.v[2], pixels.v[3]))};
    }

private:
    ChannelTables m_tables;
    Encoder m_encode;
};

template <bool chromaFirst, bool lut, bool tables, bool streaming>
void CorrectPairs(const Byte* in, Byte* out, std::size_t macropixels, const Correction& correction,
                  const EncodeTable& back)
{
    const PairMatrix matrix(lut ? correction.behindLut : correction.matrix);
    const StepIf<lut, PairLutStep> addLut(correction);
    const StepIf<tables, ByTables> byTables(correction, back);
    ConvertRow<streaming, 4, 4>(in, out, macropixels, [&](const Byte* from, U8* vectors) {
        Macropixels pixels[4];
        for (std::size_t i = 0; i < 4; ++i)
            pixels[i] = TakeApart<chromaFirst>(Load(from + i * kBytes));
        if constexpr (lut) {
            PairLutStep::Held held[4];
            for (int i = 0; i < 4; ++i)
                addLut.Hold(held[i], pixels[i]);
            for (int i = 0; i < 4; ++i)
                pixels[i] = addLut.Finish(held[i]);
        }
        for (int i = 0; i < 4; i += 2) {
            if constexpr (tables) {
                const U8Pair both = byTables.template Apply<chromaFirst>(matrix, pixels + i);
                vectors[i] = both.lo;
                vectors[i + 1] = both.hi;
            } else {
                vectors[i] = ToPairs<chromaFirst>(matrix, pixels[i]);
                vectors[i + 1] = ToPairs<chromaFirst>(matrix, pixels[i + 1]);
            }
        }
    });
}

template <bool streaming>
void Replace(const Byte* in, Byte* out, std::size_t bytes, const Byte* table)
{
    const ByteTable<16> replaced(table);
    MapRow<streaming, 1>(in, in, out, bytes, [&](U8 v, U8, Part) { return Lookup(replaced, v); });
}

// Where so much is computed as behind a table, stores around the cache gain nothing.
template <bool chromaFirst, bool lut, bool tables>
void FillPairs(CorrectPairRow (&rows)[2][2][2])
{
    rows[lut][tables][0] = CorrectPairs<chromaFirst, lut, tables, false>;
    rows[lut][tables][1] = CorrectPairs < chromaFirst, lut, tables, !lut && !tables > ;
}

template <bool chromaFirst>
void FillOrder(CorrectPairRow (&rows)[2][2][2])
{
    FillPairs<chromaFirst, false, false>(rows);
    FillPairs<chromaFirst, false, true>(rows);
    FillPairs<chromaFirst, true, false>(rows);
    FillPairs<chromaFirst, true, true>(rows);
}

#endif

} // namespace

namespace VFIL_LEVEL {

// Spreading and replacing bytes takes a byte shuffle, which the lowest level lacks.
void Fill([[maybe_unused]] CorrectPairRows& rows)
{
#if defined(__AVX2__)
    FillOrder<false>(rows.pairs[false]);
    FillOrder<true>(rows.pairs[true]);
    rows.replace[0] = Replace<false>;
    rows.replace[1] = Replace<true>;
#endif
}

} // namespace VFIL_LEVEL
} // namespace vfil
