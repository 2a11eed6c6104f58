/// \file
/// Our layer operators over whole pictures, and some of their row kernels by themselves, with stores around
/// the cache and plain ones: what the processors add, and what the choice of stores does.
#include "frames.h"

#include "il/rows/layer/comprows.h"

#include <vfil/composite.h>

namespace bench {

namespace {

using vfil::AlphaRule;
using vfil::LayerOp;
using vfil::LayerParams;

/// Where a layer operator works.
struct Layers {
    PicturePtr Frame::*back;
    PicturePtr Frame::*front;
    PicturePtr Frame::*out;
    int fullScale = 0;
};
constexpr Layers kApart = {&Frame::back, &Frame::front, &Frame::out};
constexpr Layers kOverBack = {&Frame::back, &Frame::front, &Frame::back};
constexpr Layers kApart16 = {&Frame::back16, &Frame::front16, &Frame::out16};
constexpr Layers kFullScale16 = {&Frame::back16, &Frame::front16, &Frame::out16, 1};

template <class Processor>
void RunLayer(const Frame& frame, Layers layers, bool frontPremultiplied, bool backPremultiplied)
{
    Processor processor;
    processor.SetInputImgA((frame.*layers.back).Get());
    processor.SetInputImgB((frame.*layers.front).Get());
    processor.SetOutputImg((frame.*layers.out).Get());
    processor.SetDominantInput((frame.*layers.back).Get());
    processor.SetImgAPremultiplied(backPremultiplied);
    processor.SetImgBPremultiplied(frontPremultiplied);
    processor.SetProcessingMode(15);
    processor.SetFullScale16(layers.fullScale);
    Execute(processor);
}

template <class Processor>
void AddLayer(const std::string& operation, Layers layers = kApart, bool frontPremultiplied = true,
              bool backPremultiplied = true)
{
    Add(operation, kOurs, [=](const Frame& frame) {
        RunLayer<Processor>(frame, layers, frontPremultiplied, backPremultiplied);
    });
}

template <class Processor>
void AddLayerBothPlaces(const std::string& operation)
{
    AddLayer<Processor>(operation);
    AddLayer<Processor>(operation + kInPlace, kOverBack);
}

void AddMix(const std::string& operation, Layers layers)
{
    Add(operation, kOurs, [=](const Frame& frame) {
        vfILCompositeImg processor;
        processor.SetInputImgA((frame.*layers.back).Get());
        processor.SetInputImgB((frame.*layers.front).Get());
        processor.SetOutputImg((frame.*layers.out).Get());
        processor.SetMask(0, 0, kWidth, kHeight, frame.mask.Get(), PXImageChannel_MONO);
        Execute(processor);
    });
}

void AddLayerRows(const std::string& operation, LayerOp op, bool frontPremultiplied)
{
    for (const bool streaming : {true, false}) {
        const LayerParams<std::uint8_t> params{
            255, frontPremultiplied, true, AlphaRule::Computed, vfil::kAllChannels, false, streaming};
        const auto kernel = vfil::FindLayerRow<std::uint8_t>(true, op, params);
        Add(operation, RowsName(streaming), [params, kernel](const Frame& frame) {
            for (std::size_t y = 0; y < kHeight; ++y)
                kernel(Row<std::uint8_t>(frame.back, y), Row<std::uint8_t>(frame.front, y),
                       Row<std::uint8_t>(frame.out, y), kWidth, params);
            vfil::FinishStreaming();
        });
    }
}

void AddLayers()
{
    AddLayerBothPlaces<vfILOverImage>("over");
    AddLayer<vfILOverImage>("over, front straight", kApart, false, true);
    AddLayer<vfILOverImage>("over, back straight", kApart, true, false);
    AddLayer<vfILOverImage>("over, both straight", kApart, false, false);
    AddLayerBothPlaces<vfILInImage>("in");
    AddLayerBothPlaces<vfILOutImage>("out");
    AddLayerBothPlaces<vfILAtopImage>("atop");
    AddLayerBothPlaces<vfILXorImage>("xor");
    AddLayerBothPlaces<vfILAddImage>("add");
    AddLayerBothPlaces<vfILAddNoClipImage>("add-no-clip");
    AddLayer<vfILDiffImage>("diff");
    AddLayer<vfILMultImage>("mult");
    AddLayer<vfILLighterImage>("lighter");
    AddLayer<vfILDarkerImage>("darker");
    AddMix("masked mix", kApart);
    AddMix(std::string("masked mix") + kInPlace, kOverBack);
    AddLayer<vfILOverImage>("over, 16 bits", kApart16);
    AddLayer<vfILOverImage>("over, both straight, 16 bits", kApart16, false, false);
    AddLayer<vfILOverImage>("over, 16 bits, full scale", kFullScale16);
    AddLayer<vfILAtopImage>("atop, 16 bits", kApart16);
    AddLayer<vfILAtopImage>("atop, 16 bits, full scale", kFullScale16);
    AddLayer<vfILAddImage>("add, 16 bits", kApart16);
    AddLayer<vfILMultImage>("mult, 16 bits", kApart16);
    AddLayer<vfILLighterImage>("lighter, 16 bits", kApart16);
    AddLayerRows("over", LayerOp::Over, true);
    AddLayerRows("over, front straight", LayerOp::Over, false);
    AddLayerRows("xor", LayerOp::Xor, true);
    AddLayerRows("add", LayerOp::Add, true);
}

const Source s_source(AddLayers);

} // namespace
} // namespace bench
