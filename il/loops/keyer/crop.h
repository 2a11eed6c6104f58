/// \file
/// The crop of a keyer as numbers, for frames and for both fields of formats that keep fields apart.
#pragma once

#include <vfil/keyer.h>

namespace vfil {

/// What a crop box leaves of a region, whose rows are counted in the order of memory.
///
/// \param box    in pixels of the region, y from its lowest row; all zero stands for the whole region.
/// \param mode   a processing mode, whose field bits choose rows.
vfILKeyerCrop CropOf(const vfILBbox2l& box, long width, long height, const vfILFormatInfo& format,
                     unsigned long mode);

/// The rows 0 .. rows - 1 of a run that a crop keeps: each interval is cut to the run, and, where a run walks
/// both blocks of a format that keeps fields apart, to its own block.
class KeptRows {
public:
    KeptRows(const vfILKeyerCrop& crop, long rows, const vfILFormatInfo& format, unsigned long mode);
    bool Has(long row) const;

private:
    struct Interval {
        long start;
        long end;
    };
    Interval m_first;
    Interval m_second;
};

} // namespace vfil
