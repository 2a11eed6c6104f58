/// \file
/// The vector forms of the kernels of colour correction, for the level VFIL_LEVEL. They hold what FitsVectors
/// lets through.
#include "il/rows/treat/correctparams.h"
#include "il/rows/vecpairs.h"
#include "il/rows/vecplanes.h"

namespace vfil {
namespace {

#if defined(__AVX2__)

using Byte = std::uint8_t;
using Word = std::uint16_t;

/// kLanes32 pixels by their components: red, green, blue, or luma, Cb, Cr; and alpha.
struct Components {
    S32 v[3];
    S32 alpha;
};

/// kLanes32 pixels as pairs of samples: at 8 bits of red and blue, green and alpha; at 16 of red and green,
/// blue and alpha, each less 32768.
struct SamplePairs {
    S32 low, high;
};

SamplePairs LoadPairs(const Byte* in)
{
    const S32 pixels{Load(in).bits};
    const S32 even = Splat32(0x00FF00FF);
    return {pixels & even, ShiftDownBits<8>(pixels) & even};
}

const Byte* BytesOf(const Word* p)
{
    return reinterpret_cast<const Byte*>(p);
}

SamplePairs LoadPairs(const Word* in)
{
    const U8 middle = SplatU32(0x80008000);
    const SplitLanes pairs = Split(Load(BytesOf(in)) ^ middle, Load(BytesOf(in) + kBytes) ^ middle);
    return {pairs.even, pairs.odd};
}

/// What the middle of 16 bits, which LoadPairs takes off, makes of a sum; it wraps as the sum does.
std::int32_t WithMiddle(std::int32_t added, std::int32_t factors)
{
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(added) +
                                     static_cast<std::uint32_t>(factors) * 0x8000U);
}

/// The matrix on samples.
template <class Sample>
class SampleMatrix {
public:
    explicit SampleMatrix(const CorrectionMatrix& matrix)
    {
        constexpr bool words = sizeof(Sample) == 2;
        const auto& m = matrix.at;
        for (int k = 0; k < 3; ++k) {
            m_low[k] = SplatPair16(m[0][k], m[words ? 1 : 2][k]);
            m_high[k] = SplatPair16(m[words ? 2 : 1][k], 0);
            m_added[k] = Splat32(words ? WithMiddle(m[3][k], m[0][k] + m[1][k] + m[2][k]) : m[3][k]);
        }
        m_high[3] = SplatPair16(0, m[0][3]);
        m_added[3] = Splat32(words ? WithMiddle(m[3][3], m[0][3]) : m[3][3]);
    }
    Components operator()(SamplePairs in) const
    {
        return {{Component<0>(in), Component<1>(in), Component<2>(in)},
                ShiftDown<8>(DotPairs(in.high, m_high[3]) + m_added[3])};
    }

private:
    template <int k>
    S32 Component(SamplePairs in) const
    {
        return ShiftDown<8>(DotPairs(in.low, m_low[k]) + DotPairs(in.high, m_high[k]) + m_added[k]);
    }

    S32 m_low[3], m_high[4], m_added[4];
};

/// The entries of components that are limited by a byte.
SplitLanes Entries(const LumaIncrements* lut, S32 luma)
{
    return LookUp64(lut, Min(Max(luma, Splat32(0)), Splat32(255)));
}

/// The increments and the second matrix.
template <class Sample>
class LutStep;

template <>
class LutStep<Byte> {
public:
    explicit LutStep(const Correction& correction) : m_lut(correction.lut)
    {
        const auto& m = correction.behindLut.at;
        for (int k = 0; k < 3; ++k) {
            m_luma[k] = SplatPair16(m[0][k], 0);
            m_chroma[k] = SplatPair16(m[1][k], m[2][k]);
            m_added[k] = Splat32(m[3][k]);
        }
    }
    Components operator()(Components in) const
    {
        const SplitLanes more = Entries(m_lut, in.v[0]);
        const S32 chroma{(PackBeside(in.v[1], in.v[2]) + U16{more.even.bits}).bits};
        const S32 luma{(PackBeside(in.v[0], in.alpha) + U16{more.odd.bits}).bits};
        const auto component = [&](int k) {
            return ShiftDown<8>(DotPairs(luma, m_luma[k]) + DotPairs(chroma, m_chroma[k]) + m_added[k]);
        };
        return {{component(0), component(1), component(2)}, ShiftDown<16>(luma)};
    }

private:
    const LumaIncrements* m_lut;
    S32 m_luma[3], m_chroma[3], m_added[3];
};

template <>
class LutStep<Word> {
public:
    explicit LutStep(const Correction& correction) : m_lut(correction.lut)
    {
        for (int i = 0; i < 4; ++i)
            for (int k = 0; k < 3; ++k)
                m_matrix[i][k] = Splat32(correction.behindLut.at[i][k]);
    }
    Components operator()(Components in) const
    {
        const SplitLanes more = Entries(m_lut, ShiftDown<8>(in.v[0]));
        const S32 first = SplatPair16(257, 0);
        const S32 second = SplatPair16(0, 257);
        const S32 y = in.v[0] + DotPairs(more.odd, first);
        const S32 cb = in.v[1] + DotPairs(more.even, first);
        const S32 cr = in.v[2] + DotPairs(more.even, second);
        const auto component = [&](int k) {
            return ShiftDown<8>(y * m_matrix[0][k] + cb * m_matrix[1][k] + cr * m_matrix[2][k] +
                                m_matrix[3][k]);
        };
        return {{component(0), component(1), component(2)}, in.alpha + DotPairs(more.odd, second)};
    }

private:
    const LumaIncrements* m_lut;
    S32 m_matrix[4][3];
};

/// As bytes, limited; of 16 bits the upper ones.
template <class Sample>
U8 ToBytes(const Components& c)
{
    if constexpr (sizeof(Sample) == 1) return JoinLimited(c.v[0], c.v[1], c.v[2], c.alpha);
    return JoinLimited(ShiftDown<8>(c.v[0]), ShiftDown<8>(c.v[1]), ShiftDown<8>(c.v[2]),
                       ShiftDown<8>(c.alpha));
}

/// Limited to samples: a vector of them at 8 bits, two at 16.
template <class Sample>
void ToSamples(const Components& c, U8* vectors)
{
    if constexpr (sizeof(Sample) == 1) {
        vectors[0] = ToBytes<Sample>(c);
    } else {
        const U8Pair words = Merge({PackFullBeside(c.v[0], c.v[1]), PackFullBeside(c.v[2], c.alpha)});
        vectors[0] = words.lo;
        vectors[1] = words.hi;
    }
}

/// Tables of the channels of pixels of four bytes.
class ChannelTables {
public:
    explicit ChannelTables(const std::uint8_t (&tables)[4][256])
        : m_red(tables[0]), m_green(tables[1]), m_blue(tables[2]), m_alpha(tables[3])
    {}
    /// \param alpha  False leaves the fourth bytes.
    Block operator()(const Block& pixels, bool alpha) const
    {
        Block planes = ToPlanes(pixels);
        planes.v[0] = Lookup(m_red, planes.v[0]);
        planes.v[1] = Lookup(m_green, planes.v[1]);
        planes.v[2] = Lookup(m_blue, planes.v[2]);
        if (alpha) planes.v[3] = Lookup(m_alpha, planes.v[3]);
        return FromPlanes(planes);
    }

private:
    ByteTable<16> m_red, m_green, m_blue, m_alpha;
};

/// What a kernel is without.
struct Nothing {
    template <class Params>
    explicit Nothing(const Params&)
    {}
    Components operator()(const Components& in) const { return in; }
};

template <bool has, class Step>
struct Optional {
    using Type = Nothing;
};
template <class Step>
struct Optional<true, Step> {
    using Type = Step;
};
template <bool has, class Step>
using StepIf = typename Optional<has, Step>::Type;

/// All bits of the channels of pixels.
template <class Sample>
U8 SelectBits(unsigned channels)
{
    std::uint64_t bits = 0;
    for (unsigned c = 0; c < 4; ++c) {
        if ((channels >> c & 1U) != 0)
            bits |= std::uint64_t{static_cast<Sample>(~Sample{0})} << (c * 8 * sizeof(Sample));
    }
    return sizeof(Sample) == 1 ? SplatU32(static_cast<std::uint32_t>(bits)) : SplatU64(bits);
}

/// Of each bit that is selected the first, else the second.
U8 Choose(U8 select, U8 first, U8 second)
{
    return ((first ^ second) & select) ^ second;
}

template <class Sample, bool lut, bool tables, bool streaming>
void Correct(const Sample* in, Sample* out, std::size_t pixels, const Correction& correction,
             unsigned channels)
{
    const SampleMatrix<Sample> matrix(correction.matrix);
    const StepIf<lut, LutStep<Sample>> addLut(correction);
    const StepIf<tables, ChannelTables> replace(correction.tables);
    const U8 select = SelectBits<Sample>(channels);
    const bool alpha = (channels & 8U) != 0;
    constexpr std::size_t vectorsOf = sizeof(Sample); // those of kLanes32 pixels
    ConvertRow<streaming, 4 * vectorsOf, 4 * vectorsOf>(in, out, pixels, [&](const Byte* from, U8* vectors) {
        Block bytes;
        for (std::size_t i = 0; i < 4; ++i) {
            const auto* samples = reinterpret_cast<const Sample*>(from + i * vectorsOf * kBytes);
            const Components corrected = addLut(matrix(LoadPairs(samples)));
            if constexpr (tables) {
                bytes.v[i] = ToBytes<Sample>(corrected);
            } else {
                ToSamples<Sample>(corrected, vectors + i * vectorsOf);
            }
        }
        if constexpr (tables) {
            bytes = replace(bytes, alpha);
            for (std::size_t i = 0; i < 4; ++i) {
                if constexpr (vectorsOf == 1) {
                    vectors[i] = bytes.v[i];
                } else {
                    vectors[2 * i] = InterleaveLow(bytes.v[i], bytes.v[i]);
                    vectors[2 * i + 1] = InterleaveHigh(bytes.v[i], bytes.v[i]);
                }
            }
        }
        for (std::size_t i = 0; i < 4 * vectorsOf; ++i)
            vectors[i] = Choose(select, vectors[i], Load(from + i * kBytes));
    });
}

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

/// The first matrix and the increments.
class PairLutStep {
public:
    explicit PairLutStep(const Correction& correction) : m_matrix(correction.matrix), m_lut(correction.lut) {}
    Macropixels operator()(Macropixels in) const
    {
        const PairMatrix::Both y = m_matrix.Component<0>(in);
        const SplitLanes left = Entries(m_lut, y.left);
        const SplitLanes right = Entries(m_lut, y.right);
        const U16 lumas = PackBeside(y.left, y.right);
        const U16 chromas = PackBeside(m_matrix.LeftComponent<1>(in), m_matrix.LeftComponent<2>(in));
        const S32 more = (left.odd & Splat32(0xFFFF)) | ShiftUp<16>(right.odd);
        return {{(lumas + U16{more.bits}).bits}, {(chromas + U16{left.even.bits}).bits}};
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

template <bool chromaFirst, bool lut, bool streaming>
void CorrectPairs(const Byte* in, Byte* out, std::size_t macropixels, const Correction& correction,
                  const EncodeTable& /*back*/)
{
    const PairMatrix matrix(lut ? correction.behindLut : correction.matrix);
    const StepIf<lut, PairLutStep> addLut(correction);
    MapRow<streaming, 4>(in, in, out, 4 * macropixels, [&](U8 v, U8, Part) {
        Macropixels pixels = TakeApart<chromaFirst>(v);
        if constexpr (lut) pixels = addLut(pixels);
        const PairMatrix::Both y = matrix.Component<0>(pixels);
        const U16 luma = ClampToByte(PackBeside(y.left, y.right));
        const U16 chroma =
            ClampToByte(PackBeside(matrix.LeftComponent<1>(pixels), matrix.LeftComponent<2>(pixels)));
        return PutTogether<chromaFirst>({{luma.bits}, {chroma.bits}});
    });
}

template <bool chromaFirst, bool lut>
void CorrectPairsByTables(const Byte* in, Byte* out, std::size_t macropixels, const Correction& correction,
                          const EncodeTable& back)
{
    const PairMatrix matrix(lut ? correction.behindLut : correction.matrix);
    const StepIf<lut, PairLutStep> addLut(correction);
    const ChannelTables replace(correction.tables);
    const Encoder encode(back);
    ConvertRow<false, 4, 4>(in, out, macropixels, [&](const Byte* from, U8* vectors) {
        for (std::size_t i = 0; i < 4; i += 2) {
            Block pixels; // left and right ones in turn
            for (std::size_t j = 0; j < 2; ++j) {
                Macropixels m = TakeApart<chromaFirst>(Load(from + (i + j) * kBytes));
                if constexpr (lut) m = addLut(m);
                const PairMatrix::Both r = matrix.Component<0>(m);
                const PairMatrix::Both g = matrix.Component<1>(m);
                const PairMatrix::Both b = matrix.Component<2>(m);
                pixels.v[2 * j] = JoinLimited(r.left, g.left, b.left, b.left);
                pixels.v[2 * j + 1] = JoinLimited(r.right, g.right, b.right, b.right);
            }
            const Block replaced = replace(pixels, false);
            vectors[i] = PutTogether<chromaFirst>(encode(replaced.v[0], replaced.v[1]));
            vectors[i + 1] = PutTogether<chromaFirst>(encode(replaced.v[2], replaced.v[3]));
        }
    });
}

template <bool streaming>
void Replace(const Byte* in, Byte* out, std::size_t bytes, const Byte* table)
{
    const ByteTable<16> replaced(table);
    MapRow<streaming, 1>(in, in, out, bytes, [&](U8 v, U8, Part) { return Lookup(replaced, v); });
}

/// Each pixel's mask in all of its channels; of a part, no more are read than there are.
template <class Sample, class Load>
auto MasksOf(const Sample* mask, Part part, Load load)
{
    mask += part.at / (4 * sizeof(Sample));
    if (part.bytes == kBytes) return load(mask);
    Sample masks[kBytes / (4 * sizeof(Sample))] = {};
    std::memcpy(masks, mask, part.bytes / 4);
    return load(masks);
}

template <bool streaming>
void Mix8(const Byte* in, const Byte* corrected, const Byte* mask, Byte* out, std::size_t pixels,
          unsigned channels)
{
    const U8 select = SelectBits<Byte>(channels);
    MapRow<streaming, 4>(in, corrected, out, 4 * pixels, [=](U8 before, U8 after, Part part) {
        const U8 masks = MasksOf(mask, part, [](const Byte* p) { return SplatLowBytes(LoadEachAs32(p)); });
        const U16Pair m = Widen(masks);
        const U16Pair rest = Widen(masks ^ SplatByte(255));
        const U16Pair a = Widen(after);
        const U16Pair b = Widen(before);
        const U8 mixed = Narrow(
            {NormMult(m.lo, a.lo) + NormMult(rest.lo, b.lo), NormMult(m.hi, a.hi) + NormMult(rest.hi, b.hi)});
        return Choose(select, mixed, before);
    });
}

template <bool streaming>
void Mix16(const Word* in, const Word* corrected, const Word* mask, Word* out, std::size_t pixels,
           unsigned channels)
{
    const U8 select = SelectBits<Word>(channels);
    MapRow<streaming, 8>(in, corrected, out, 8 * pixels, [=](U8 before, U8 after, Part part) {
        const U16 m = MasksOf(mask, part, LoadEachFourTimes);
        const U16 mixed = NormMultFull(m, U16{after.bits}, m ^ Splat(-1), U16{before.bits});
        return Choose(select, {mixed.bits}, before);
    });
}

// Where so much is computed as behind a table, stores around the cache gain nothing.

template <class Sample>
void FillSamples(CorrectRow<Sample> (&rows)[2][2][2])
{
    rows[false][false][0] = Correct<Sample, false, false, false>;
    rows[false][false][1] = Correct<Sample, false, false, true>;
    for (int streaming = 0; streaming < 2; ++streaming) {
        rows[true][false][streaming] = Correct<Sample, true, false, false>;
        rows[false][true][streaming] = Correct<Sample, false, true, false>;
        rows[true][true][streaming] = Correct<Sample, true, true, false>;
    }
}

template <bool chromaFirst>
void FillPairs(CorrectPairRow (&rows)[2][2][2])
{
    rows[false][false][0] = CorrectPairs<chromaFirst, false, false>;
    rows[false][false][1] = CorrectPairs<chromaFirst, false, true>;
    for (int streaming = 0; streaming < 2; ++streaming) {
        rows[true][false][streaming] = CorrectPairs<chromaFirst, true, false>;
        rows[false][true][streaming] = CorrectPairsByTables<chromaFirst, false>;
        rows[true][true][streaming] = CorrectPairsByTables<chromaFirst, true>;
    }
}

#endif

} // namespace

namespace VFIL_LEVEL {

// Spreading and replacing bytes takes a byte shuffle, which the lowest level lacks.
void Fill([[maybe_unused]] CorrectRows& rows)
{
#if defined(__AVX2__)
    FillSamples(rows.correct8);
    FillSamples(rows.correct16);
    FillPairs<false>(rows.pairs[false]);
    FillPairs<true>(rows.pairs[true]);
    rows.replace[0] = Replace<false>;
    rows.replace[1] = Replace<true>;
    rows.mix8[0] = Mix8<false>;
    rows.mix8[1] = Mix8<true>;
    rows.mix16[0] = Mix16<false>;
    rows.mix16[1] = Mix16<true>;
#endif
}

} // namespace VFIL_LEVEL
} // namespace vfil
