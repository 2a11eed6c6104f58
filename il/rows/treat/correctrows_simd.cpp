/// \file
/// The vector forms of the kernels of colour correction in RGBA, for the level VFIL_LEVEL.
#include "il/rows/treat/correctlanes.h"

namespace vfil {
namespace {

#if defined(__AVX2__)

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
    template <bool keepAlpha>
    Components Apply(SamplePairs in) const
    {
        const S32 alpha =
            keepAlpha ? OldAlpha(in.high) : ShiftDown<8>(DotPairs(in.high, m_high[3]) + m_added[3]);
        return {{Component<0>(in), Component<1>(in), Component<2>(in)}, alpha};
    }

private:
    static S32 OldAlpha(S32 high)
    {
        return sizeof(Sample) == 1 ? ShiftDownBits<16>(high) : ShiftDown<16>(high) + Splat32(0x8000);
    }
    template <int k>
    S32 Component(SamplePairs in) const
    {
        return ShiftDown<8>(DotPairs(in.low, m_low[k]) + DotPairs(in.high, m_high[k]) + m_added[k]);
    }

    S32 m_low[3], m_high[4], m_added[4];
};

/// The increments and the second matrix, in two steps: what a lookup waits for is so long done before it.
template <class Sample>
class LutStep;

template <>
class LutStep<Byte> {
public:
    struct Held {
        U16 chroma, luma; ///< beside alpha
        Indices indices;
    };

    explicit LutStep(const Correction& correction) : m_lut(correction.lut)
    {
        const auto& m = correction.behindLut.at;
        for (int k = 0; k < 3; ++k) {
            m_luma[k] = SplatPair16(m[0][k], 0);
            m_chroma[k] = SplatPair16(m[1][k], m[2][k]);
            m_added[k] = Splat32(m[3][k]);
        }
    }
    static void Hold(Held& held, const Components& in)
    {
        StoreIndices(held.indices, in.v[0]);
        held.chroma = PackBeside(in.v[1], in.v[2]);
        held.luma = PackBeside(in.v[0], in.alpha);
    }
    Components Finish(const Held& held) const
    {
        const SplitLanes more = LookUp64(m_lut, held.indices.at);
        const S32 chroma{(held.chroma + U16{more.even.bits}).bits};
        const S32 luma{(held.luma + U16{more.odd.bits}).bits};
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
    struct Held {
        Components components;
        Indices indices;
    };

    explicit LutStep(const Correction& correction) : m_lut(correction.lut)
    {
        for (int i = 0; i < 4; ++i)
            for (int k = 0; k < 3; ++k)
                m_matrix[i][k] = Splat32(correction.behindLut.at[i][k]);
    }
    static void Hold(Held& held, const Components& in)
    {
        StoreIndices(held.indices, ShiftDown<8>(in.v[0]));
        held.components = in;
    }
    Components Finish(const Held& held) const
    {
        const SplitLanes more = LookUp64(m_lut, held.indices.at);
        const Components& in = held.components;
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

/// Components of samples limited to bytes, turned over; of 16 bits the upper ones.
template <class Sample>
U8 ToTurned(const Components& c)
{
    if constexpr (sizeof(Sample) == 1) return ToTurned(c.v[0], c.v[1], c.v[2], c.alpha);
    return ToTurned(ShiftDown<8>(c.v[0]), ShiftDown<8>(c.v[1]), ShiftDown<8>(c.v[2]), ShiftDown<8>(c.alpha));
}

/// Bytes as samples: a vector of them at 8 bits, two at 16, whose samples have them in both bytes.
template <class Sample>
void FromBytes(U8 bytes, U8* vectors)
{
    if constexpr (sizeof(Sample) == 1) {
        vectors[0] = bytes;
    } else {
        vectors[0] = InterleaveLow(bytes, bytes);
        vectors[1] = InterleaveHigh(bytes, bytes);
    }
}

/// Limited to samples: a vector of them at 8 bits, two at 16.
template <class Sample>
void ToSamples(const Components& c, U8* vectors)
{
    if constexpr (sizeof(Sample) == 1) {
        vectors[0] = TurnBytes(ToTurned<Sample>(c));
    } else {
        const U8Pair words = Merge({PackFullBeside(c.v[0], c.v[1]), PackFullBeside(c.v[2], c.alpha)});
        vectors[0] = words.lo;
        vectors[1] = words.hi;
    }
}

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

/// Which channels change.
enum class Selection { All, Colour, Some };

template <class Sample, bool lut, bool tables, Selection selection, bool streaming>
void CorrectSelected(const Sample* in, Sample* out, std::size_t pixels, const Correction& correction,
                     unsigned channels)
{
    constexpr std::size_t vectorsOf = sizeof(Sample); // those of kLanes32 pixels
    const SampleMatrix<Sample> matrix(correction.matrix);
    const StepIf<lut, LutStep<Sample>> addLut(correction);
    const StepIf<tables, ChannelTables> tablesOf(correction.tables);
    const U8 select = SelectBits<Sample>(channels);
    ConvertRow<streaming, 4 * vectorsOf, 4 * vectorsOf>(in, out, pixels, [&](const Byte* from, U8* vectors) {
        Block bytes;
        const auto applyMatrix = [&](std::size_t i) {
            return matrix.template Apply<selection == Selection::Colour>(
                LoadPairs(reinterpret_cast<const Sample*>(from + i * vectorsOf * kBytes)));
        };
        const auto put = [&](std::size_t i, const Components& corrected) {
            if constexpr (tables) {
                bytes.v[i] = ToTurned<Sample>(corrected);
            } else {
                ToSamples<Sample>(corrected, vectors + i * vectorsOf);
            }
        };
        if constexpr (lut) {
            typename LutStep<Sample>::Held held[4];
            for (std::size_t i = 0; i < 4; ++i)
                addLut.Hold(held[i], applyMatrix(i));
            for (std::size_t i = 0; i < 4; ++i)
                put(i, addLut.Finish(held[i]));
        } else {
            for (std::size_t i = 0; i < 4; ++i)
                put(i, applyMatrix(i));
        }
        if constexpr (tables) {
            tablesOf.Replace(bytes, (channels & 8U) != 0);
            for (std::size_t i = 0; i < 4; ++i)
                FromBytes<Sample>(bytes.v[i], vectors + i * vectorsOf);
        }
        if constexpr (selection == Selection::Some) {
            for (std::size_t i = 0; i < 4 * vectorsOf; ++i)
                vectors[i] = Choose(select, vectors[i], Load(from + i * kBytes));
        }
    });
}

template <class Sample, bool lut, bool tables, bool streaming>
void Correct(const Sample* in, Sample* out, std::size_t pixels, const Correction& correction,
             unsigned channels)
{
    auto correct = CorrectSelected<Sample, lut, tables, Selection::Some, streaming>;
    if constexpr (!lut && !tables) {
        if (channels == 15) correct = CorrectSelected<Sample, lut, tables, Selection::All, streaming>;
        if (channels == 7) correct = CorrectSelected<Sample, lut, tables, Selection::Colour, streaming>;
    }
    correct(in, out, pixels, correction, channels);
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

template <class Sample, bool lut, bool tables>
void FillCase(CorrectRow<Sample> (&rows)[2])
{
    rows[0] = Correct<Sample, lut, tables, false>;
    rows[1] = Correct < Sample, lut, tables, !lut && !tables > ;
}

template <bool lut, bool tables>
void FillSteps(CorrectRows& rows)
{
    FillCase<Byte, lut, tables>(rows.correct8[lut][tables]);
    FillCase<Word, lut, tables>(rows.correct16[lut][tables]);
}

#endif

} // namespace

namespace VFIL_LEVEL {

// Replacing bytes takes a byte shuffle, which the lowest level lacks.
void Fill([[maybe_unused]] CorrectRows& rows)
{
#if defined(__AVX2__)
    FillSteps<false, false>(rows);
    FillSteps<false, true>(rows);
    FillSteps<true, false>(rows);
    FillSteps<true, true>(rows);
    rows.mix8[0] = Mix8<false>;
    rows.mix8[1] = Mix8<true>;
    rows.mix16[0] = Mix16<false>;
    rows.mix16[1] = Mix16<true>;
#endif
}

} // namespace VFIL_LEVEL
} // namespace vfil
