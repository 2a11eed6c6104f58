/// \file
/// The plain forms of the two-input kernels, pixel by pixel from the definition, and the table of their
/// levels.
#include "il/rows/layer/comprows.h"

#include "il/rows/pixarith.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace vfil {

namespace {

constexpr std::size_t kAlpha = 3; // the place of alpha in a pixel

/// One channel of the result, by the arithmetic A. f is the front at its strength and q the back, both
/// premultiplied where the operator is; u is the front's alpha at its strength. In the alpha channel f is u,
/// and q is the back's alpha.
template <LayerOp op, class A, class Sample = typename A::Sample>
Sample Value(Sample f, Sample q, [[maybe_unused]] Sample u, [[maybe_unused]] Sample backAlpha)
{
    if constexpr (op == LayerOp::Over)
        return A::FrontOverBack(f, q, u);
    else if constexpr (op == LayerOp::In)
        return A::FrontInBack(f, backAlpha);
    else if constexpr (op == LayerOp::Out)
        return A::FrontOutBack(f, backAlpha);
    else if constexpr (op == LayerOp::Atop)
        return A::FrontAtopBack(f, q, u, backAlpha);
    else if constexpr (op == LayerOp::Xor)
        return A::FrontXorBack(f, q, u, backAlpha);
    else if constexpr (op == LayerOp::Add)
        return A::Add(f, q);
    else if constexpr (op == LayerOp::AddNoClip)
        return A::AddNoClip(f, q);
    else if constexpr (op == LayerOp::Diff)
        return A::Diff(f, q);
    else if constexpr (op == LayerOp::Mult)
        return A::Mult(f, q);
    else if constexpr (op == LayerOp::Lighter)
        return std::max(f, q);
    else if constexpr (op == LayerOp::Darker)
        return std::min(f, q);
    else
        static_assert(kHasFormula<op>, "an operator without a formula");
}

/// The constant alpha of a rule that is not Computed.
template <class Sample>
constexpr Sample ConstantAlpha(AlphaRule rule)
{
    return rule == AlphaRule::Full ? Arith<Sample>::kFull : Sample{0};
}

template <LayerOp op, class A, class Sample = typename A::Sample>
void PlainLayer(const Sample* back, const Sample* front, Sample* out, std::size_t pixels,
                const LayerParams<Sample>& params)
{
    constexpr Weighs weighs = TraitsOf(op).weighs;
    const bool scalesFront = weighs != Weighs::None && !params.frontPremultiplied;
    const bool scalesBack = weighs == Weighs::Both && !params.backPremultiplied;
    for (const Sample* end = back + 4 * pixels; back != end; back += 4, front += 4, out += 4) {
        const Sample backAlpha = back[kAlpha];
        const Sample frontAlpha = front[kAlpha];
        const Sample u = A::Mult(frontAlpha, params.strength);
        const Sample* dominant = params.dominantIsFront ? front : back;
        for (std::size_t c = 0; c < 4; ++c) {
            const Sample p = scalesFront && c != kAlpha ? A::Mult(frontAlpha, front[c]) : front[c];
            const Sample q = scalesBack && c != kAlpha ? A::Mult(backAlpha, back[c]) : back[c];
            Sample value = Value<op, A>(A::Mult(params.strength, p), q, u, backAlpha);
            if (c == kAlpha && params.alpha != AlphaRule::Computed)
                value = ConstantAlpha<Sample>(params.alpha);
            out[c] = (params.channels >> c & 1) != 0 ? value : dominant[c];
        }
    }
}

template <class Sample>
void PlainMix(const Sample* back, const Sample* front, const Sample* mask, std::ptrdiff_t maskStep,
              Sample* out, std::size_t pixels, const MixParams<Sample>& params)
{
    using A = Arith<Sample>;
    for (std::size_t i = 0; i < pixels; ++i, back += 4, front += 4, out += 4) {
        const Sample amount = A::Mult(mask[static_cast<std::ptrdiff_t>(i) * maskStep], params.amount);
        const auto bothAlphas = static_cast<Sample>(back[kAlpha] | front[kAlpha]);
        for (std::size_t c = 0; c < kAlpha; ++c)
            out[c] = A::Blend(front[c], back[c], amount);
        out[kAlpha] = params.alpha == AlphaRule::Computed ? bothAlphas : ConstantAlpha<Sample>(params.alpha);
    }
}

constexpr int kChromaZero = 128;
constexpr int kLumaZero = 16;

/// One 4:2:2 value, chroma or luma, counted from its zero; alpha is that of the pixel that owns it.
std::uint8_t OverYuvaValue(int back, std::uint8_t backAlpha, int front, std::uint8_t frontAlpha, int zero,
                           const YuvaParams& params)
{
    const std::uint8_t u = Arith<std::uint8_t>::Mult(frontAlpha, params.strength);
    const int p = params.frontPremultiplied ? front : SignedNormMult(frontAlpha, front);
    const int q = params.backPremultiplied ? back : SignedNormMult(backAlpha, back);
    const int sum =
        SignedNormMult(params.strength, p) + SignedNormMult(static_cast<std::uint8_t>(255 - u), q);
    return static_cast<std::uint8_t>(std::clamp(sum + zero, 16, zero == kChromaZero ? 240 : 235));
}

std::uint8_t OverYuvaAlpha(std::uint8_t back, std::uint8_t front, const YuvaParams& params)
{
    if (!params.alphaProcessed) return params.dominantIsFront ? front : back;
    if (params.alpha != AlphaRule::Computed) return ConstantAlpha<std::uint8_t>(params.alpha);
    const std::uint8_t u = Arith<std::uint8_t>::Mult(front, params.strength);
    return Arith<std::uint8_t>::FrontOverBack(u, back, u);
}

void PlainOverYuva(const std::uint8_t* backColour, const std::uint8_t* backAlpha,
                   const std::uint8_t* frontColour, const std::uint8_t* frontAlpha, std::uint8_t* outColour,
                   std::uint8_t* outAlpha, std::size_t pixels, const YuvaParams& params)
{
    for (std::size_t i = 0; i < pixels; i += 2) {
        const std::size_t count = std::min<std::size_t>(2, pixels - i);
        // Alphas of the pair before they are overwritten; both chroma values belong to the first pixel.
        const std::uint8_t backs[2] = {backAlpha[i], backAlpha[i + count - 1]};
        const std::uint8_t fronts[2] = {frontAlpha[i], frontAlpha[i + count - 1]};
        for (std::size_t k = 0; k < count; ++k) {
            const std::size_t at = 2 * (i + k);
            outColour[at] = OverYuvaValue(backColour[at] - kChromaZero, backs[0],
                                          frontColour[at] - kChromaZero, fronts[0], kChromaZero, params);
            outColour[at + 1] = OverYuvaValue(backColour[at + 1] - kLumaZero, backs[k],
                                              frontColour[at + 1] - kLumaZero, fronts[k], kLumaZero, params);
            outAlpha[i + k] = OverYuvaAlpha(backs[k], fronts[k], params);
        }
    }
}

/// The plain form serves every case of an operator.
template <class Sample>
void FillCases(LayerCases<Sample>& cases, LayerRow<Sample> kernel)
{
    for (auto& front : cases.at)
        for (auto& back : front)
            for (auto& whole : back)
                std::fill(std::begin(whole), std::end(whole), kernel);
}

template <class A, std::size_t... at>
void FillPlain(LayerCases<typename A::Sample> (&layers)[kLayerOps], std::index_sequence<at...>)
{
    (FillCases<typename A::Sample>(layers[at], PlainLayer<kLayers[at].op, A>), ...);
}

CompRows PlainRows()
{
    CompRows rows{};
    constexpr auto operators = std::make_index_sequence<kLayerOps>();
    FillPlain<Arith<std::uint8_t>>(rows.layer8, operators);
    FillPlain<Arith<std::uint16_t>>(rows.layer16[false], operators);
    FillPlain<FullScale<std::uint16_t>>(rows.layer16[true], operators);
    std::fill_n(rows.mix8, 2, PlainMix<std::uint8_t>);
    std::fill_n(rows.mix16, 2, PlainMix<std::uint16_t>);
    rows.overYuva = PlainOverYuva;
    return rows;
}

const CompRows& Rows(bool useVectors)
{
    return CompRowsAt(useVectors ? BestLevel() : Level::Plain);
}

/// The member of CompRows that has the samples' width.
template <class Sample>
auto& Pick(auto& rows8, auto& rows16)
{
    if constexpr (sizeof(Sample) == 1)
        return rows8;
    else
        return rows16;
}

} // namespace

const CompRows& CompRowsAt(Level level)
{
    static const LevelTables<CompRows> tables(PlainRows(), VFIL_FILLS);
    return tables.At(level);
}

template <class Sample>
LayerRow<Sample> FindLayerRow(bool useVectors, LayerOp op, const LayerParams<Sample>& params)
{
    const CompRows& rows = Rows(useVectors);
    const bool whole = params.strength == Arith<Sample>::kFull && params.channels == kAllChannels &&
                       params.alpha == AlphaRule::Computed;
    return Pick<Sample>(rows.layer8, rows.layer16[params.fullScale])[static_cast<std::size_t>(op)]
        .at[params.frontPremultiplied][params.backPremultiplied][whole][params.streaming];
}

template <class Sample>
MixRow<Sample> FindMixRow(bool useVectors, bool streaming)
{
    const CompRows& rows = Rows(useVectors);
    return Pick<Sample>(rows.mix8, rows.mix16)[streaming];
}

OverYuvaRow FindOverYuvaRow(bool useVectors)
{
    return Rows(useVectors).overYuva;
}

template LayerRow<std::uint8_t> FindLayerRow(bool, LayerOp, const LayerParams<std::uint8_t>&);
template LayerRow<std::uint16_t> FindLayerRow(bool, LayerOp, const LayerParams<std::uint16_t>&);
template MixRow<std::uint8_t> FindMixRow<std::uint8_t>(bool, bool);
template MixRow<std::uint16_t> FindMixRow<std::uint16_t>(bool, bool);

} // namespace vfil
