/// \file
/// The part of CheckJob that gives an operator that moves its picture a canvas to move it on.
#include "engine/failure.h"
#include "engine/planning.h"
#include "engine/settings.h"
#include "engine/text.h"
#include "engine/words.h"

#include <cmath>

namespace vfil::engine {

namespace {

using catalogue::Extent;
using catalogue::Placement;

// A part of a pixel that is not worth a row or a column: mappings are rounded.
constexpr double kSliver = 1e-3;

// The pixels that an extent covers, which are few enough to be counted.
vfILBbox2l PixelsOf(const Extent& extent)
{
    constexpr auto kMost = static_cast<double>(host::kMaxFileSide);
    const double left = std::floor(extent.left + 0.5 + kSliver);
    const double bottom = std::floor(extent.bottom + 0.5 + kSliver);
    const double width = std::max(1.0, std::ceil(extent.right + 0.5 - kSliver) - left);
    const double height = std::max(1.0, std::ceil(extent.top + 0.5 - kSliver) - bottom);
    if (!(width <= kMost && height <= kMost)) {
        throw RequestError(Named(kCanvasSetting) + " fit asks for " + NumberText(width) + "x" +
                           NumberText(height) + " pixels, and a side has at most " + NumberText(kMost));
    }
    if (!(std::abs(left) <= 1e9 && std::abs(bottom) <= 1e9))
        throw RequestError(Named(kCanvasSetting) + " fit: the picture goes too far away");
    return {static_cast<long>(left), static_cast<long>(bottom), static_cast<long>(width),
            static_cast<long>(height)};
}

// What 4:2:2 takes: a column more, and for codecs that halve chroma in height too, a row.
vfILBbox2l EvenOf(const vfILBbox2l& box)
{
    return {box.GetOffsetX(), box.GetOffsetY(), box.GetSizeX() + box.GetSizeX() % 2,
            box.GetSizeY() + box.GetSizeY() % 2};
}

vfILBbox2l SizedCanvas(const Placement& placement, const vfILVector2l& size, const Signal& input)
{
    if (!placement.IsCentred()) return {0, 0, size[0], size[1]};
    const auto beside = [](long side, long other) {
        const long difference = side - other;
        return (difference - (difference < 0 && difference % 2 != 0 ? 1 : 0)) / 2;
    };
    return {beside(input.width, size[0]), beside(input.height, size[1]), size[0], size[1]};
}

vfILBbox2l FittingCanvas(const Placement& placement, const Signal& input)
{
    const auto extent = placement.Covers(input.width, input.height);
    if (!extent) {
        throw RequestError(Named(kCanvasSetting) + " fit needs all of " + input.label +
                           " before the camera; give a size, such as " + SizeText(input.width, input.height));
    }
    const vfILBbox2l box = PixelsOf(*extent);
    return input.clip && InfoOf(input.home).subsampled ? EvenOf(box) : box;
}

// Where the picture fills whole pixels, these are all that is made, and its edges do not fade into what is
// beyond: what is made of neighbours finds the edge again there.
void PlanFilled(StepPlan& planned, const Placement& placement, const Signal& input)
{
    constexpr long kNeighbours = 2;
    const auto filled = placement.Fills(input.width, input.height);
    if (!filled) return;
    const vfILBbox2l canvas = planned.roi;
    const vfILBbox2l seen = canvas & *filled;
    if (seen.IsNull()) return;
    planned.roi = seen;
    planned.outputOffset = seen.GetOffset() - canvas.GetOffset();
    const bool enlarges = filled->GetSizeX() > input.width || filled->GetSizeY() > input.height;
    if (enlarges) planned.padding = kNeighbours;
}

vfILBbox2l CanvasOf(const CanvasSize& wanted, const Placement& placement, const Signal& input)
{
    const vfILBbox2l same(0, 0, input.width, input.height);
    switch (wanted.kind) {
    case CanvasSize::Kind::Usual:
        if (const auto own = placement.OwnSize()) return SizedCanvas(placement, *own, input);
        break;
    case CanvasSize::Kind::Given:
        return SizedCanvas(placement, wanted.size, input);
    case CanvasSize::Kind::Fit:
        return FittingCanvas(placement, input);
    case CanvasSize::Kind::Same:
        break;
    }
    return same;
}

} // namespace

std::unique_ptr<catalogue::Operator> Prepared(const Step& step)
{
    auto op = step.entry->make(true);
    for (const auto& [parameter, value] : step.parameters)
        parameter->apply(op->Processor(), value);
    return op;
}

void PlanCanvas(StepPlan& planned, const Signal& input)
{
    const Step& step = planned.step;
    const auto op = Prepared(step);
    const Placement& placement = *op->Placing();
    if (const auto objection = placement.Refuse(input.width, input.height)) {
        throw RequestError(Fault{.parameter = objection->parameter,
                                 .text = Named(objection->parameter) + ": " + objection->text});
    }
    planned.roi = CanvasOf(step.canvas, placement, input);
    planned.outputSize = planned.roi.GetSize();
    if ((step.mode & kFieldBits) != 0 && !(planned.roi == planned.dominantBox)) {
        throw RequestError(Named("fields") + " odd and even leave the other rows as they are, which takes " +
                           Named(kCanvasSetting) + " same");
    }
    PlanFilled(planned, placement, input);
    const bool covers =
        planned.roi.GetSize() == planned.outputSize && placement.Fills(input.width, input.height);
    planned.opaque = !input.alpha && !input.mayClear && !placement.MayClear() &&
                     (covers || step.defaultColor.GetAlpha() == 1);
}

} // namespace vfil::engine
