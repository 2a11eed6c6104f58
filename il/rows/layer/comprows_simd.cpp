/// \file
/// The vector forms of the two-input kernels, for the level VFIL_LEVEL.
#include "il/rows/layer/compparams.h"
#include "il/rows/vec.h"

namespace vfil {
namespace {

/// Lanes of bytes in 16 bits. A sum is up to 510, which Narrow clips.
struct ByteLanes {
    using Sample = std::uint8_t;
    static constexpr std::uint64_t kAlphaLane = 0x00FF'0000'0000'0000;
    static U16 Full() { return Splat(255); }
    static U16 Mult(U16 a, U16 b) { return NormMult(a, b); }
    static U16 Sum(U16 a, U16 b) { return a + b; }
};

/// Lanes of 16-bit samples at full scale.
struct WordLanes {
    using Sample = std::uint16_t;
    static constexpr std::uint64_t kAlphaLane = 0xFFFF'0000'0000'0000;
    static U16 Full() { return Splat(0xFFFF); }
    static U16 Mult(U16 a, U16 b) { return NormMultFull(a, b); }
    static U16 Sum(U16 a, U16 b) { return AddClip(a, b); }
};

/// The same by the other arithmetic: a sum of products is divided once.
struct NarrowWordLanes : WordLanes {};

/// Of bytes, or of 16-bit lanes.
template <LayerOp op, class Vector>
Vector SamplewiseValue(Vector f, Vector q)
{
    if constexpr (op == LayerOp::Add)
        return AddClip(f, q);
    else if constexpr (op == LayerOp::Diff)
        return AbsDiff(f, q);
    else if constexpr (op == LayerOp::Lighter)
        return Max(f, q);
    else if constexpr (op == LayerOp::Darker)
        return Min(f, q);
    else
        static_assert(kHasFormula<op>, "an operator without a formula");
}

/// f is the front at its strength and q the back, both premultiplied where the operator is; u is the front's
/// alpha at its strength. In the alpha lane f is u, and q is the back's alpha.
template <LayerOp op, class Lanes>
U16 Value(Lanes, U16 f, U16 q, [[maybe_unused]] U16 u, [[maybe_unused]] U16 backAlpha)
{
    [[maybe_unused]] const U16 full = Lanes::Full();
    if constexpr (TraitsOf(op).samplewise)
        return SamplewiseValue<op>(f, q);
    else if constexpr (op == LayerOp::Over)
        return Lanes::Sum(f, Lanes::Mult(full - u, q));
    else if constexpr (op == LayerOp::In)
        return Lanes::Mult(backAlpha, f);
    else if constexpr (op == LayerOp::Out)
        return Lanes::Mult(full - backAlpha, f);
    else if constexpr (op == LayerOp::Atop)
        return Lanes::Sum(Lanes::Mult(full - u, q), Lanes::Mult(backAlpha, f));
    else if constexpr (op == LayerOp::Xor)
        return Lanes::Sum(Lanes::Mult(full - u, q), Lanes::Mult(full - backAlpha, f));
    else if constexpr (op == LayerOp::AddNoClip)
        return Lanes::Sum(Lanes::Mult(f, full - q), q);
    else if constexpr (op == LayerOp::Mult)
        return Lanes::Mult(f, q);
    else
        static_assert(kHasFormula<op>, "an operator without a formula");
}

template <LayerOp op>
U16 Value(NarrowWordLanes, U16 f, U16 q, [[maybe_unused]] U16 u, [[maybe_unused]] U16 backAlpha)
{
    const U16 full = WordLanes::Full();
    if constexpr (op == LayerOp::Over)
        return AddNormMultFull(f, full - u, q);
    else if constexpr (op == LayerOp::Atop)
        return NormMultFull(full - u, q, backAlpha, f);
    else if constexpr (op == LayerOp::Xor)
        return NormMultFull(full - u, q, full - backAlpha, f);
    else if constexpr (op == LayerOp::AddNoClip)
        return AddNormMultFull(q, f, full - q);
    else if constexpr (op == LayerOp::Diff)
        return AbsDiff(f, q) & Splat(0xFF);
    else
        static_assert(kHasFormula<op>, "an operator without a formula of its own");
}

/// Colour times the pixel's alpha; the alpha lane's factor is full, which leaves alpha as it is.
template <class Lanes>
U16 Premultiply(U16 pixels, U16 alpha)
{
    return Lanes::Mult(pixels, alpha | SplatPixel(Lanes::kAlphaLane));
}

// What follows is inlined by order: a compiler that calls it for each vector also loads its constants anew.

template <LayerOp op, class Lanes, bool frontPremultiplied, bool backPremultiplied, bool whole>
[[gnu::always_inline]] inline U16 LaneValue(U16 back, U16 front, [[maybe_unused]] U16 strength)
{
    const U16 backAlpha = SplatAlpha(back);
    const U16 frontAlpha = SplatAlpha(front);
    U16 f = frontPremultiplied ? front : Premultiply<Lanes>(front, frontAlpha);
    if constexpr (!whole) f = Lanes::Mult(f, strength);
    const U16 q = backPremultiplied ? back : Premultiply<Lanes>(back, backAlpha);
    return Value<op>(Lanes{}, f, q, whole ? frontAlpha : SplatAlpha(f), backAlpha);
}

/// What becomes of the channels: of each comes the result, the dominant input, or a constant.
struct Selection {
    U8 result, dominant, constant;
    bool dominantIsFront;

    U8 Choose(U8 value, U8 back, U8 front) const
    {
        return (value & result) | ((dominantIsFront ? front : back) & dominant) | constant;
    }
};

/// All ones in each channel of a pixel that is in channels.
template <class Sample>
U8 ChannelMask(unsigned channels)
{
    std::uint64_t mask = 0;
    for (unsigned c = 0; c < 4; ++c) {
        if ((channels >> c & 1) != 0)
            mask |= std::uint64_t{static_cast<Sample>(~Sample{0})} << c * 8 * sizeof(Sample);
    }
    return sizeof(Sample) == 1 ? SplatU32(static_cast<std::uint32_t>(mask)) : SplatU64(mask);
}

template <class Sample>
Selection SelectionOf(const LayerParams<Sample>& params)
{
    const unsigned fixed = params.alpha == AlphaRule::Computed ? 0 : params.channels & kAlphaChannel;
    return {ChannelMask<Sample>(params.channels & ~fixed), ChannelMask<Sample>(~params.channels),
            ChannelMask<Sample>(params.alpha == AlphaRule::Full ? fixed : 0), params.dominantIsFront};
}

/// A vector of bytes.
template <LayerOp op, class Lanes, bool frontPremultiplied, bool backPremultiplied, bool whole>
[[gnu::always_inline]] inline U8 LayerValue(ByteLanes, U8 backs, U8 fronts, [[maybe_unused]] U16 strength)
{
    if constexpr (TraitsOf(op).samplewise && whole) return SamplewiseValue<op>(fronts, backs);
    const U16Pair b = Widen(backs);
    const U16Pair f = Widen(fronts);
    if constexpr (TraitsOf(op).samplewise) {
        return SamplewiseValue<op>(Narrow({NormMult(f.lo, strength), NormMult(f.hi, strength)}), backs);
    } else {
        constexpr auto value = LaneValue<op, Lanes, frontPremultiplied, backPremultiplied, whole>;
        return Narrow({value(b.lo, f.lo, strength), value(b.hi, f.hi, strength)});
    }
}

/// A vector of 16-bit samples.
template <LayerOp op, class Lanes, bool frontPremultiplied, bool backPremultiplied, bool whole>
[[gnu::always_inline]] inline U8 LayerValue(WordLanes, U8 backs, U8 fronts, U16 strength)
{
    constexpr auto value = LaneValue<op, Lanes, frontPremultiplied, backPremultiplied, whole>;
    return {value({backs.bits}, {fronts.bits}, strength).bits};
}

template <LayerOp op, class Lanes, bool frontPremultiplied, bool backPremultiplied, bool whole,
          bool streaming, class Sample = typename Lanes::Sample>
void Layer(const Sample* back, const Sample* front, Sample* out, std::size_t pixels,
           const LayerParams<Sample>& params)
{
    constexpr std::size_t pixelBytes = 4 * sizeof(Sample);
    const U16 strength = Splat(params.strength);
    const auto value = [strength](U8 backs, U8 fronts, Part = {}) {
        return LayerValue<op, Lanes, frontPremultiplied, backPremultiplied, whole>(Lanes{}, backs, fronts,
                                                                                   strength);
    };
    if constexpr (whole) {
        MapRow<streaming, pixelBytes>(back, front, out, pixelBytes * pixels, value);
    } else {
        const Selection selection = SelectionOf(params);
        MapRow<streaming, pixelBytes>(back, front, out, pixelBytes * pixels, [&](U8 backs, U8 fronts, Part) {
            return selection.Choose(value(backs, fronts), backs, fronts);
        });
    }
}

/// Where each pixel's mask is.
struct Masks {
    const std::uint8_t* first;
    std::ptrdiff_t step;
    std::size_t rowBytes; ///< of the pictures

    /// A part's masks, each in the lowest byte of its pixel, whose others are zero. In the step of a whole
    /// pixel a vector is read to the end of its last pixel, which is there when another pixel follows.
    U8 Get(Part part) const
    {
        const std::uint8_t* mask = first + static_cast<std::ptrdiff_t>(part.at / 4) * step;
        if (step == 1 && part.bytes == kBytes) return LoadEachAs32(mask);
        if (step == 4 && part.at + kBytes < rowBytes) return Load(mask) & SplatU32(0xFF);
        std::uint8_t spread[kBytes] = {};
        for (std::size_t i = 0; i < part.bytes; i += 4, mask += step)
            spread[i] = *mask;
        return Load(spread);
    }
};

U16 Blend(U16 front, U16 back, U16 amount)
{
    return NormMult(amount, front) + NormMult(Splat(255) - amount, back);
}

template <bool streaming>
void Mix8(const std::uint8_t* back, const std::uint8_t* front, const std::uint8_t* mask,
          std::ptrdiff_t maskStep, std::uint8_t* out, std::size_t pixels,
          const MixParams<std::uint8_t>& params)
{
    const U16 amount = Splat(params.amount);
    const U8 colours = SplatU32(0x00FFFFFF);
    const U8 alphas = SplatU32(0xFF000000);
    const U8 bothAlphas = params.alpha == AlphaRule::Computed ? alphas : U8{};
    const U8 constant = params.alpha == AlphaRule::Full ? alphas : U8{};
    const Masks masks{mask, maskStep, 4 * pixels};
    MapRow<streaming, 4>(back, front, out, 4 * pixels, [&](U8 backs, U8 fronts, Part part) {
        const U16 masked = NormMult({masks.Get(part).bits}, amount); // two lanes a pixel, the upper zero
        const U16Pair m = Widen(SplatLowBytes({masked.bits}));
        const U16Pair b = Widen(backs);
        const U16Pair f = Widen(fronts);
        const U8 mixed = Narrow({Blend(f.lo, b.lo, m.lo), Blend(f.hi, b.hi, m.hi)});
        return (mixed & colours) | ((backs | fronts) & bothAlphas) | constant;
    });
}

/// Over on lanes of [u y0 v y1]; an alpha lane is its value's.
class OverYuvaLanes {
public:
    explicit OverYuvaLanes(const YuvaParams& params)
        : m_strength(Splat(params.strength)), m_frontKeep(Splat(params.frontPremultiplied ? 255 : 0)),
          m_backKeep(Splat(params.backPremultiplied ? 255 : 0))
    {}

    U16 Colour(U16 back, U16 backAlpha, U16 front, U16 frontAlpha) const
    {
        const U16 zero = SplatPixel(0x0010'0080'0010'0080); // [128 16 128 16]
        const U16 most = SplatPixel(0x00EB'00F0'00EB'00F0); // [240 235 240 235]
        const U16 u = NormMult(frontAlpha, m_strength);
        // A factor of 255 leaves a premultiplied value as it is.
        const U16 p = SignedNormMult(frontAlpha | m_frontKeep, front - zero);
        const U16 q = SignedNormMult(backAlpha | m_backKeep, back - zero);
        const U16 sum = SignedNormMult(m_strength, p) + SignedNormMult(Splat(255) - u, q);
        return MaxSigned(MinSigned(sum + zero, most), Splat(16));
    }

    U16 Alpha(U16 back, U16 front) const
    {
        const U16 u = NormMult(front, m_strength);
        return u + NormMult(Splat(255) - u, back);
    }

private:
    U16 m_strength, m_frontKeep, m_backKeep;
};

/// The alphas of each pair of pixels, at the values they weigh: [a0 a0 a0 a1].
U8 LoadAlphaPairs(const std::uint8_t* alphas)
{
    const U8 pair = LoadPairsAs32(alphas); // [a0 a1 0 0]
    const U8 first = pair & SplatU32(0xFF);
    return first | ShiftLeft32<8>(first) | ShiftLeft32<16>(pair & SplatU32(0xFFFF));
}

constexpr std::size_t kYuvaPixels = kBytes; // of a block: two vectors of colour, one of alpha

void OverYuvaColours(const OverYuvaLanes& over, const std::uint8_t* back, const std::uint8_t* backAlpha,
                     const std::uint8_t* front, const std::uint8_t* frontAlpha, std::uint8_t* out)
{
    const U16Pair b = Widen(Load(back));
    const U16Pair f = Widen(Load(front));
    const U16Pair ba = Widen(LoadAlphaPairs(backAlpha));
    const U16Pair fa = Widen(LoadAlphaPairs(frontAlpha));
    Store(out, Narrow({over.Colour(b.lo, ba.lo, f.lo, fa.lo), over.Colour(b.hi, ba.hi, f.hi, fa.hi)}));
}

U8 OverYuvaAlphas(const OverYuvaLanes& over, U8 back, U8 front, const YuvaParams& params)
{
    if (!params.alphaProcessed) return params.dominantIsFront ? front : back;
    if (params.alpha != AlphaRule::Computed)
        return SplatU32(params.alpha == AlphaRule::Full ? 0xFFFFFFFF : 0);
    const U16Pair b = Widen(back);
    const U16Pair f = Widen(front);
    return Narrow({over.Alpha(b.lo, f.lo), over.Alpha(b.hi, f.hi)});
}

/// kYuvaPixels of a row. Alphas are stored last, for they may lie over an input's.
void OverYuvaBlock(const std::uint8_t* backColour, const std::uint8_t* backAlpha,
                   const std::uint8_t* frontColour, const std::uint8_t* frontAlpha, std::uint8_t* outColour,
                   std::uint8_t* outAlpha, const YuvaParams& params)
{
    const OverYuvaLanes over(params);
    const U8 alphas = OverYuvaAlphas(over, Load(backAlpha), Load(frontAlpha), params);
    for (std::size_t at = 0; at < 2 * kYuvaPixels; at += kBytes)
        OverYuvaColours(over, backColour + at, backAlpha + at / 2, frontColour + at, frontAlpha + at / 2,
                        outColour + at);
    Store(outAlpha, alphas);
}

void OverYuva(const std::uint8_t* backColour, const std::uint8_t* backAlpha, const std::uint8_t* frontColour,
              const std::uint8_t* frontAlpha, std::uint8_t* outColour, std::uint8_t* outAlpha,
              std::size_t pixels, const YuvaParams& params)
{
    std::size_t at = 0;
    for (; pixels - at >= kYuvaPixels; at += kYuvaPixels)
        OverYuvaBlock(backColour + 2 * at, backAlpha + at, frontColour + 2 * at, frontAlpha + at,
                      outColour + 2 * at, outAlpha + at, params);
    const std::size_t rest = pixels - at;
    if (rest == 0) return;
    struct {
        std::uint8_t colour[2 * kYuvaPixels], alpha[kYuvaPixels];
    } back{}, front{}, out;
    std::memcpy(back.colour, backColour + 2 * at, 2 * rest);
    std::memcpy(back.alpha, backAlpha + at, rest);
    std::memcpy(front.colour, frontColour + 2 * at, 2 * rest);
    std::memcpy(front.alpha, frontAlpha + at, rest);
    OverYuvaBlock(back.colour, back.alpha, front.colour, front.alpha, out.colour, out.alpha, params);
    std::memcpy(outColour + 2 * at, out.colour, 2 * rest);
    std::memcpy(outAlpha + at, out.alpha, rest);
}

/// A case of an operator; one that looks at no alpha has one form for all premultiplications.
template <LayerOp op, class Lanes, bool front, bool back, bool whole>
void FillCase(LayerCases<typename Lanes::Sample>& cases)
{
    constexpr bool f = front || TraitsOf(op).weighs == Weighs::None;
    constexpr bool b = back || TraitsOf(op).weighs != Weighs::Both;
    cases.at[front][back][whole][false] = Layer<op, Lanes, f, b, whole, false>;
    cases.at[front][back][whole][true] = Layer<op, Lanes, f, b, whole, true>;
}

template <LayerOp op, class Lanes>
void FillCases(LayerCases<typename Lanes::Sample>& cases)
{
    FillCase<op, Lanes, false, false, false>(cases);
    FillCase<op, Lanes, false, false, true>(cases);
    FillCase<op, Lanes, false, true, false>(cases);
    FillCase<op, Lanes, false, true, true>(cases);
    FillCase<op, Lanes, true, false, false>(cases);
    FillCase<op, Lanes, true, false, true>(cases);
    FillCase<op, Lanes, true, true, false>(cases);
    FillCase<op, Lanes, true, true, true>(cases);
}

/// The operators of the list, from one on.
template <std::size_t at = 0>
void FillLayers(CompRows& rows)
{
    constexpr LayerOp op = kLayers[at].op;
    FillCases<op, ByteLanes>(rows.layer8[at]);
    FillCases<op, WordLanes>(rows.layer16[true][at]);
    if constexpr (kLayers[at].narrow16)
        FillCases<op, NarrowWordLanes>(rows.layer16[false][at]);
    else
        rows.layer16[false][at] = rows.layer16[true][at];
    if constexpr (at + 1 < kLayerOps) FillLayers<at + 1>(rows);
}

} // namespace

namespace VFIL_LEVEL {

void Fill(CompRows& rows)
{
    FillLayers(rows);
    rows.mix8[false] = Mix8<false>;
    rows.mix8[true] = Mix8<true>;
    rows.overYuva = OverYuva;
}

} // namespace VFIL_LEVEL
} // namespace vfil
