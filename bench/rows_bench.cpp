/// \file
/// Our row kernels by themselves, over whole pictures, with stores around the cache and plain ones: what the
/// processors add, and what the choice of stores does.
#include "frames.h"

#include "il/rows/layer/comprows.h"
#include "il/rows/pixel/pointrows.h"

namespace bench {

namespace {

using vfil::AlphaRule;
using vfil::LayerOp;
using vfil::LayerParams;

const char* Name(bool streaming)
{
    return streaming ? kOurRows : kOurRowsCached;
}

void AddLayer(const std::string& operation, LayerOp op, bool frontPremultiplied)
{
    for (const bool streaming : {true, false}) {
        const LayerParams<std::uint8_t> params{
            255, frontPremultiplied, true, AlphaRule::Computed, vfil::kAllChannels, false, streaming};
        const auto kernel = vfil::FindLayerRow<std::uint8_t>(true, op, params);
        Add(operation, Name(streaming), [params, kernel](const Frame& frame) {
            for (std::size_t y = 0; y < kHeight; ++y)
                kernel(Row<std::uint8_t>(frame.back, y), Row<std::uint8_t>(frame.front, y),
                       Row<std::uint8_t>(frame.out, y), kWidth, params);
            vfil::FinishStreaming();
        });
    }
}

void AddOneInput()
{
    for (const bool streaming : {true, false}) {
        Add("invert", Name(streaming), [kernel = vfil::FindInvertRow8(true, streaming)](const Frame& frame) {
            for (std::size_t y = 0; y < kHeight; ++y)
                kernel(Row<std::uint8_t>(frame.back, y), Row<std::uint8_t>(frame.out, y), kWidth, 0xFFFFFFFF);
            vfil::FinishStreaming();
        });
        Add("copy", Name(streaming), [streaming](const Frame& frame) {
            for (std::size_t y = 0; y < kHeight; ++y)
                vfil::CopyBytes(true, Row<std::uint8_t>(frame.back, y), Row<std::uint8_t>(frame.out, y),
                                kWidth * 4, streaming);
            vfil::FinishStreaming();
        });
    }
}

} // namespace

void AddRows()
{
    AddOneInput();
    AddLayer("over", LayerOp::Over, true);
    AddLayer("over, front straight", LayerOp::Over, false);
    AddLayer("xor", LayerOp::Xor, true);
    AddLayer("add", LayerOp::Add, true);
}

} // namespace bench
