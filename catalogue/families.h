/// \file
/// The families that the register is put together from.
#pragma once

#include <catalogue/entry.h>

namespace vfil::catalogue {

/// The entries of the layer operators and of the masked mix.
std::vector<Entry> LayerEntries();

/// The entries of the operators that make one pixel of one pixel.
std::vector<Entry> PixelEntries();

/// The entries of the blurs, the convolution and the sharpening.
std::vector<Entry> BlurEntries();

/// The entries of what finds edges or makes a relief of them.
std::vector<Entry> EdgeEntries();

/// The entries of what puts a neighbour in a pixel's place.
std::vector<Entry> RankEntries();

/// The entries of what works by a structuring element.
std::vector<Entry> MorphEntries();

/// The entries of the converters, and of the luma as alpha.
std::vector<Entry> ConvertEntries();

/// The entries of fill and key.
std::vector<Entry> FillkeyEntries();

/// The entries of the keyers of RGBA pictures.
std::vector<Entry> KeyerEntries();

/// The entries of the keys by tables, and of what corrects the colour beside a key.
std::vector<Entry> TableKeyerEntries();

/// The entries of the keyers of 4:2:2 video.
std::vector<Entry> VideoKeyerEntries();

/// The entries of what works on the fields of video.
std::vector<Entry> FieldEntries();

/// The entries of what treats colour: correction, ramps, broadcast legality.
std::vector<Entry> TreatEntries();

/// The entries of turns, scales and shifts.
std::vector<Entry> TransformEntries();

/// The entry of scales with a border and a falloff.
std::vector<Entry> PanZoomEntries();

/// The entries of what moves a picture by its corners.
std::vector<Entry> CornerEntries();

/// The entry of the warp along vectors.
std::vector<Entry> WarpEntries();

} // namespace vfil::catalogue
