/// \file
/// The loops of the layer operators: rows through the row kernels, or pixel by pixel, and what is reported
/// after a run.
#pragma once

#include "il/loops/frame/rowloop.h"
#include "il/rows/layer/comprows.h"

#include <vfil/composite.h>

namespace vfil {

/// When a loop looks at the interrupt.
enum class Poll { EachRow, Never };

constexpr AlphaRule ToAlphaRule(vfILAlphaMode mode)
{
    if (mode == VFIL_ALPHA_COMPUTED) return AlphaRule::Computed;
    return mode == VFIL_ALPHA_ZERO ? AlphaRule::Zero : AlphaRule::Full;
}

/// An amount of 0 .. 1 as a sample. Amounts that Verify would have refused are limited.
template <class Sample>
Sample AmountToSample(double amount)
{
    return RoundToSample<Sample>(amount * Arith<Sample>::kFull);
}

inline int EitherPremultiplied(const vfILCompImg& processor)
{
    return processor.GetImgAPremultiplied() != 0 || processor.GetImgBPremultiplied() != 0 ? 1 : 0;
}

template <class Sample>
LayerParams<Sample> LayerParamsOf(const vfILCompImg& processor, const vfILLayerRun& layers)
{
    LayerParams<Sample> params{};
    params.strength = AmountToSample<Sample>(processor.GetExtraTransparency());
    params.frontPremultiplied = processor.GetImgBPremultiplied() != 0;
    params.backPremultiplied = processor.GetImgAPremultiplied() != 0;
    params.alpha = ToAlphaRule(processor.GetAlphaMode());
    params.channels = Rgba8::Channels(processor);
    params.dominantIsFront = layers.dominantFront;
    params.streaming = layers.run.streaming;
    params.fullScale = processor.GetFullScale16() != 0;
    return params;
}

/// Runs the row kernel of an operator over the process box.
template <LayerOp op, class Sample>
void RunLayerRows(const vfILProcessor& processor, const vfILLayerRun& layers,
                  const LayerParams<Sample>& params, Poll poll = Poll::EachRow)
{
    const LayerRow<Sample> treatPixels = FindLayerRow<Sample>(layers.fast, op, params);
    const auto pixels = static_cast<std::size_t>(layers.run.processBox.GetSizeX());
    const auto treatRow = [&](long row) {
        treatPixels(RowOf<const Sample>(layers.back, row), RowOf<const Sample>(layers.front, row),
                    RowOf<Sample>(layers.run.output, row), pixels, params);
    };
    if (poll == Poll::EachRow) {
        ForEachRow(processor, layers.run.rows, treatRow);
    } else {
        for (long row = 0; row < layers.run.rows; ++row)
            treatRow(row);
    }
}

/// A whole operator of a row kernel: the rows, then the report of the result's state.
template <class Sample, LayerOp op>
vfILStatus RunLayerOp(vfILCompImg& processor, const vfILLayerRun& layers)
{
    RunLayerRows<op>(processor, layers, LayerParamsOf<Sample>(processor, layers));
    // What one picture's alpha cuts out of the other is multiplied by it, whatever the inputs are.
    constexpr bool cut = TraitsOf(op).weighs == Weighs::Front;
    processor.SetOutputPremultiplied(cut ? 1 : EitherPremultiplied(processor));
    return VFIL_SUCCESS;
}

template <class Sample>
std::uint32_t Brightness(const Sample* rgba)
{
    return Arith<Sample>::Brightness(rgba[0], rgba[1], rgba[2]);
}

/// An operator that makes whole pixels: \p makePixel(back, scaled front, result) writes four samples. Only
/// alpha is selectable.
template <class Format, class MakePixel>
vfILStatus RunWholePixelOp(vfILCompImg& processor, const vfILLayerRun& layers, MakePixel makePixel)
{
    using Sample = typename Format::Sample;
    using Rules = Arith<Sample>;
    const LayerParams<Sample> params = LayerParamsOf<Sample>(processor, layers);
    const bool alphaSelected = processor.IsAlphaChannelProcessed() != 0;
    const Sample constant = params.alpha == AlphaRule::Zero ? Sample{0} : Rules::kFull;
    ForEachRow(processor, layers.run.rows, [&](long row) {
        const auto* back = RowOf<const Sample>(layers.back, row);
        const auto* front = RowOf<const Sample>(layers.front, row);
        auto* out = RowOf<Sample>(layers.run.output, row);
        for (long x = 0; x < layers.run.processBox.GetSizeX(); ++x, back += 4, front += 4, out += 4) {
            const Sample kept = params.dominantIsFront ? front[3] : back[3];
            Sample scaled[4];
            Sample result[4];
            for (int c = 0; c < 4; ++c)
                scaled[c] = Rules::Mult(params.strength, front[c]);
            makePixel(back, scaled, result);
            if (!alphaSelected) {
                result[3] = kept;
            } else if (params.alpha != AlphaRule::Computed) {
                result[3] = constant;
            }
            std::copy_n(result, 4, out);
        }
    });
    processor.SetOutputPremultiplied(EitherPremultiplied(processor));
    return VFIL_SUCCESS;
}

} // namespace vfil
