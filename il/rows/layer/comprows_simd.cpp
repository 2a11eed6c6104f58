/// \file
/// The vector forms of the two-input kernels, for the level VFIL_LEVEL.
#include "il/rows/layer/compparams.h"
#include "il/rows/vec.h"

namespace vfil {
namespace {

constexpr bool IsPremultiplying(LayerOp op)
{
    return op <= LayerOp::Xor;
}

/// Whether a vector of bytes is treated without being widened.
constexpr bool IsBytewise(LayerOp op)
{
    return op == LayerOp::Add || op == LayerOp::Diff || op == LayerOp::Lighter || op == LayerOp::Darker;
}

template <LayerOp op>
U8 BytewiseValue(U8 f, U8 q)
{
    if constexpr (op == LayerOp::Add) return AddClip(f, q);
    if constexpr (op == LayerOp::Diff) return AbsDiff(f, q);
    if constexpr (op == LayerOp::Lighter) return Max(f, q);
    if constexpr (op == LayerOp::Darker) return Min(f, q);
}

/// Lanes up to 510, which Narrow clips. f is the front at its strength and q the back, both premultiplied
/// where the operator is; u is the front's alpha at its strength. In the alpha lane f is u, and q is the
/// back's alpha.
template <LayerOp op>
U16 Value(U16 f, U16 q, [[maybe_unused]] U16 u, [[maybe_unused]] U16 backAlpha)
{
    [[maybe_unused]] const U16 full = Splat(255);
    if constexpr (op == LayerOp::Over) return f + NormMult(full - u, q);
    if constexpr (op == LayerOp::In) return NormMult(backAlpha, f);
    if constexpr (op == LayerOp::Out) return NormMult(full - backAlpha, f);
    if constexpr (op == LayerOp::Atop) return NormMult(full - u, q) + NormMult(backAlpha, f);
    if constexpr (op == LayerOp::Xor) return NormMult(full - u, q) + NormMult(full - backAlpha, f);
    if constexpr (op == LayerOp::AddNoClip) return NormMult(f, full - q) + q;
    if constexpr (op == LayerOp::Mult) return NormMult(f, q);
}

/// Colour times the pixel's alpha; the alpha lane's factor is full, which leaves alpha as it is.
U16 Premultiply8(U16 pixels, U16 alpha)
{
    return NormMult(pixels, alpha | SplatPixel(0x00FF'0000'0000'0000));
}

template <LayerOp op, bool frontPremultiplied, bool backPremultiplied, bool whole>
U16 WideValue(U16 back, U16 front, U16 strength)
{
    const U16 backAlpha = SplatAlpha(back);
    const U16 frontAlpha = SplatAlpha(front);
    U16 f = frontPremultiplied ? front : Premultiply8(front, frontAlpha);
    if constexpr (!whole) f = NormMult(f, strength);
    const U16 q = backPremultiplied ? back : Premultiply8(back, backAlpha);
    return Value<op>(f, q, whole ? frontAlpha : SplatAlpha(f), backAlpha);
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

template <LayerOp op, bool frontPremultiplied, bool backPremultiplied, bool whole, bool streaming>
void Layer8(const std::uint8_t* back, const std::uint8_t* front, std::uint8_t* out, std::size_t pixels,
            const LayerParams<std::uint8_t>& params)
{
    const U16 strength = Splat(params.strength);
    const auto value = [strength](U8 backs, U8 fronts, Part = {}) {
        if constexpr (IsBytewise(op) && whole) return BytewiseValue<op>(fronts, backs);
        const U16Pair b = Widen(backs);
        const U16Pair f = Widen(fronts);
        if constexpr (IsBytewise(op)) {
            return BytewiseValue<op>(Narrow({NormMult(f.lo, strength), NormMult(f.hi, strength)}), backs);
        } else {
            constexpr auto wide = WideValue<op, frontPremultiplied, backPremultiplied, whole>;
            return Narrow({wide(b.lo, f.lo, strength), wide(b.hi, f.hi, strength)});
        }
    };
    if constexpr (whole) {
        MapRow<streaming, 4>(back, front, out, 4 * pixels, value);
    } else {
        const Selection selection = SelectionOf(params);
        MapRow<streaming, 4>(back, front, out, 4 * pixels, [&](U8 backs, U8 fronts, Part) {
            return selection.Choose(value(backs, fronts), backs, fronts);
        });
    }
}

U16 Premultiply16(U16 pixels)
{
    return NormMultFull(pixels, SplatAlpha(pixels) | SplatPixel(0xFFFF'0000'0000'0000));
}

/// Over on 16-bit samples, whose front enters the sum unscaled.
template <bool frontPremultiplied, bool backPremultiplied, bool whole, bool streaming>
void Over16(const std::uint16_t* back, const std::uint16_t* front, std::uint16_t* out, std::size_t pixels,
            const LayerParams<std::uint16_t>& params)
{
    const U16 strength = Splat(params.strength);
    const Selection selection = SelectionOf(params);
    MapRow<streaming, 8>(back, front, out, 8 * pixels, [&](U8 backs, U8 fronts, Part) {
        const U16 b{backs.bits};
        U16 f{fronts.bits};
        if constexpr (!frontPremultiplied) f = Premultiply16(f);
        if constexpr (!whole) f = NormMultFull(f, strength);
        const U16 q = backPremultiplied ? b : Premultiply16(b);
        const U8 value{AddNormMultFull(f, Splat(0xFFFF) - SplatAlpha(f), q).bits};
        return whole ? value : selection.Choose(value, backs, fronts);
    });
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
template <LayerOp op, bool front, bool back, bool whole>
void FillLayer8(CompRows& rows)
{
    constexpr bool f = front || !IsPremultiplying(op);
    constexpr bool b = back || !IsPremultiplying(op) || op == LayerOp::In || op == LayerOp::Out;
    auto& cases = rows.layer8[static_cast<std::size_t>(op)].at[front][back][whole];
    cases[false] = Layer8<op, f, b, whole, false>;
    cases[true] = Layer8<op, f, b, whole, true>;
}

template <bool front, bool back, bool whole>
void FillOver16(CompRows& rows)
{
    auto& cases = rows.layer16[static_cast<std::size_t>(LayerOp::Over)].at[front][back][whole];
    cases[false] = Over16<front, back, whole, false>;
    cases[true] = Over16<front, back, whole, true>;
}

template <bool front, bool back, bool whole>
void FillCase(CompRows& rows)
{
    FillLayer8<LayerOp::Over, front, back, whole>(rows);
    FillLayer8<LayerOp::In, front, back, whole>(rows);
    FillLayer8<LayerOp::Out, front, back, whole>(rows);
    FillLayer8<LayerOp::Atop, front, back, whole>(rows);
    FillLayer8<LayerOp::Xor, front, back, whole>(rows);
    FillLayer8<LayerOp::Add, front, back, whole>(rows);
    FillLayer8<LayerOp::AddNoClip, front, back, whole>(rows);
    FillLayer8<LayerOp::Diff, front, back, whole>(rows);
    FillLayer8<LayerOp::Mult, front, back, whole>(rows);
    FillLayer8<LayerOp::Lighter, front, back, whole>(rows);
    FillLayer8<LayerOp::Darker, front, back, whole>(rows);
    FillOver16<front, back, whole>(rows);
}

template <bool front, bool back>
void FillCases(CompRows& rows)
{
    FillCase<front, back, false>(rows);
    FillCase<front, back, true>(rows);
}

} // namespace

namespace VFIL_LEVEL {

void Fill(CompRows& rows)
{
    FillCases<false, false>(rows);
    FillCases<false, true>(rows);
    FillCases<true, false>(rows);
    FillCases<true, true>(rows);
    rows.mix8[false] = Mix8<false>;
    rows.mix8[true] = Mix8<true>;
    rows.overYuva = OverYuva;
}

} // namespace VFIL_LEVEL
} // namespace vfil
