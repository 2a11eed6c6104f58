/// \file
/// What the two pixel frames share: how an input, the mask and the output of a run are laid out.
#pragma once

#include "il/loops/frame/fills.h"
#include "il/loops/frame/imageview.h"
#include "il/loops/frame/regions.h"

#include <initializer_list>

namespace vfil {

/// What PrepareInput needs to know of an input, in the input's own coordinates.
struct InputPart {
    ImageView picture;
    vfILBbox2l valid;  ///< what the run takes from this input
    vfILBbox2l part;   ///< what of it gets the operation
    bool isOutput;     ///< the output is this picture
    bool hazard;       ///< and the run would overwrite it before reading it
    bool showsOutside; ///< pixels of `valid` outside `part` are shown unchanged
};

/// What became of an input.
enum class InputState { Ready, OutOfMemory, Unreadable };

/// Sets the row walk of an input, and the run's source when it shows outside the operated part. Under a
/// hazard the pixels are read into the buffer first, which memory or the picture may refuse.
InputState PrepareInput(const InputPart& input, vfILPixelRun& run, vfILRowWalk& walk, vfILRunBuffer& buffer);

/// Sets the run's picture and the walks of mask and output for its boxes. False for what Verify would have
/// refused: a mask or an output that does not cover its box, or whose samples differ in size.
bool PrepareMaskAndOutput(vfILPixelRun& run, const ImageView& output, const ImageView& mask,
                          const vfILBbox2l& maskBox, PXImageChannel channel);

/// True when a run can read the input and write the output: both have pixels of one size. An input of no size
/// at all needs none.
bool AreConnected(const ImageView& input, const ImageView& output);

/// The code of what the two above refuse, for the error of a run that nobody verified.
///
/// \param noInput  The code for a null input; \p noPixels for one without pixels.
unsigned long WhyUnconnected(const ImageView& input, const ImageView& output, unsigned long noInput = 0x1000B,
                             unsigned long noPixels = 0x1000C);
unsigned long WhyUnprepared(const vfILPixelRun& run, const ImageView& mask);

/// Moves the walks of the inputs, the mask and the output onto the rows that the mode's field bits select.
void SelectRows(vfILPixelRun& run, unsigned long mode, std::initializer_list<vfILRowWalk*> inputs);

/// Writes what of the run's target gets no operation: the default colour where there is no source, and the
/// pixels of the source that the operation leaves out.
void FillUntreated(const vfILPixelRun& run, const vfILColor& defaultColour, const FillRule& rule);

} // namespace vfil
