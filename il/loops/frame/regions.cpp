/// \file
/// The box arithmetic of a run.

#include "il/loops/frame/regions.h"

#include "il/loops/frame/saturate.h"

namespace vfil {

namespace {

/// Derives the target and the shifted boxes from the valid and the masked one.
void ShiftToOutput(vfILPixelRun& run, const vfILBbox2l& roi, const vfILVector2l& outputOffset)
{
    const std::int64_t dx = std::int64_t{outputOffset[0]} - roi.GetOffsetX();
    const std::int64_t dy = std::int64_t{outputOffset[1]} - roi.GetOffsetY();
    run.targetBox = TargetBox(roi, outputOffset);
    run.shiftedValidBox = Moved(run.validBox, dx, dy);
    run.processBox = Moved(run.maskedBox, dx, dy);
}

RowSelection EverySecond(bool firstRowTreated, long height)
{
    return firstRowTreated ? RowSelection{0, 2, (height + 1) >> 1} : RowSelection{1, 2, height >> 1};
}

constexpr unsigned long kFieldBits = VFIL_MODE_ODD_ROWS | VFIL_MODE_EVEN_ROWS;

} // namespace

vfILBbox2l Moved(const vfILBbox2l& box, std::int64_t dx, std::int64_t dy)
{
    return {SaturateToInt32(box.GetOffsetX() + dx), SaturateToInt32(box.GetOffsetY() + dy), box.GetSizeX(),
            box.GetSizeY()};
}

bool Covers(const vfILBbox2l& outer, const vfILBbox2l& inner)
{
    return inner.IsNull() || (outer & inner) == inner;
}

vfILBbox2l TargetBox(const vfILBbox2l& roi, const vfILVector2l& outputOffset)
{
    return {outputOffset[0], outputOffset[1], roi.GetSizeX(), roi.GetSizeY()};
}

void ComputeRegions(vfILPixelRun& run, const vfILBbox2l& input, const vfILBbox2l& roi, const vfILBbox2l& mask,
                    const vfILVector2l& outputOffset)
{
    run.validBox = input & roi;
    run.maskedBox = run.validBox & mask;
    ShiftToOutput(run, roi, outputOffset);
}

void ComputeRegions(vfILPixelRun& run, const vfILBbox2l& dominant, const vfILBbox2l& other,
                    const vfILBbox2l& roi, const vfILBbox2l& mask, const vfILVector2l& outputOffset)
{
    run.validBox = dominant & roi;
    run.maskedBox = run.validBox & other & mask;
    ShiftToOutput(run, roi, outputOffset);
}

bool IsHazard(const vfILBbox2l& target, const vfILBbox2l& read)
{
    return !(target & read).IsNull() && !(target == read);
}

RowSelection SelectField(unsigned long mode, long y0, long height)
{
    const unsigned long field = mode & kFieldBits;
    if (field == 0) return {0, 1, height};
    if (field == kFieldBits) return {0, 1, 0};
    const bool firstRowEven = (y0 & 1) == 0;
    return EverySecond(firstRowEven == (field == VFIL_MODE_EVEN_ROWS), height);
}

RowSelection SelectMemoryRows(unsigned long mode, const vfILFormatInfo& format, long y0, long height)
{
    const unsigned long field = mode & kFieldBits;
    if (!format.splitField || field == 0 || field == kFieldBits) {
        return SelectField(mode, format.topDown ? y0 + height - 1 : y0, height);
    }
    const bool evenRows = field == VFIL_MODE_EVEN_ROWS;
    const long evenCount = (height + 1) >> 1;
    const long oddCount = height >> 1;
    const long before = evenRows == format.evenFieldFirst ? 0 : (evenRows ? oddCount : evenCount);
    return {before, 1, evenRows ? evenCount : oddCount};
}

Bands BandsAround(const vfILBbox2l& excluded, const vfILBbox2l& whole)
{
    const vfILBbox2l hole = whole & excluded;
    if (hole.IsNull()) return {{whole, {}, {}, {}}};
    const long x = whole.GetOffsetX();
    const long y = whole.GetOffsetY();
    const long left = hole.GetOffsetX() - x;
    const long below = hole.GetOffsetY() - y;
    const long right = whole.GetSizeX() - left - hole.GetSizeX();
    const long above = whole.GetSizeY() - below - hole.GetSizeY();
    return {{{x, y, whole.GetSizeX(), below},
             {x, hole.GetOffsetY(), left, hole.GetSizeY()},
             {hole.GetOffsetX() + hole.GetSizeX(), hole.GetOffsetY(), right, hole.GetSizeY()},
             {x, hole.GetOffsetY() + hole.GetSizeY(), whole.GetSizeX(), above}}};
}

} // namespace vfil
