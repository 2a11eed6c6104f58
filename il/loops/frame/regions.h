/// \file
/// The box arithmetic of a run: pure functions of values, for the frames.
#pragma once

#include <vfil/frame.h>

namespace vfil {

/// The box moved by a distance; offsets saturate at 32 bits.
vfILBbox2l Moved(const vfILBbox2l& box, std::int64_t dx, std::int64_t dy);

/// True when \p inner is null or lies within \p outer.
bool Covers(const vfILBbox2l& outer, const vfILBbox2l& inner);

/// The ROI's size at the output offset.
vfILBbox2l TargetBox(const vfILBbox2l& roi, const vfILVector2l& outputOffset);

/// Fills the boxes of \p run for one input of a size.
void ComputeRegions(vfILPixelRun& run, const vfILBbox2l& input, const vfILBbox2l& roi, const vfILBbox2l& mask,
                    const vfILVector2l& outputOffset);

/// Fills the boxes of \p run for two inputs, placed on one plane: what the dominant one covers is valid, what
/// both cover gets the operation.
void ComputeRegions(vfILPixelRun& run, const vfILBbox2l& dominant, const vfILBbox2l& other,
                    const vfILBbox2l& roi, const vfILBbox2l& mask, const vfILVector2l& outputOffset);

/// True when an input that is also the output would be overwritten before it is read: the target overlaps the
/// region that is read (both in the picture's own coordinates) and isn't exactly that region.
bool IsHazard(const vfILBbox2l& target, const vfILBbox2l& read);

/// A choice among consecutive rows: \p count of them, from \p skip on, \p step apart.
struct RowSelection {
    long skip;
    long step;
    long count;
};

/// The image rows y0 .. y0 + height - 1 that the mode's field bits allow.
RowSelection SelectField(unsigned long mode, long y0, long height);

/// The memory rows that the field bits allow, of \p height memory rows of which the first, in a format that
/// is not top-down, is image row y0. Rows of one field lie together in a split-field format.
RowSelection SelectMemoryRows(unsigned long mode, const vfILFormatInfo& format, long y0, long height);

/// The bands that remain of \p whole without \p excluded: below, left, right, above. Some may be null.
struct Bands {
    vfILBbox2l band[4];
};

Bands BandsAround(const vfILBbox2l& excluded, const vfILBbox2l& whole);

} // namespace vfil
