/// \file
/// What the two pixel frames share: how an input, the mask and the output of a run are laid out.
#pragma once

#include "il/loops/frame/imageview.h"
#include "il/loops/frame/regions.h"

#include <initializer_list>

namespace vfil {

/// What PrepareInput needs to know of an input, in the input's own coordinates.
struct InputPart {
    IPXImage* image;
    vfILBbox2l valid;  ///< what the run takes from this input
    vfILBbox2l part;   ///< what of it gets the operation
    bool isOutput;     ///< the output is this picture
    bool hazard;       ///< and the run would overwrite it before reading it
    bool showsOutside; ///< pixels of `valid` outside `part` are shown unchanged
};

/// Sets the row walk of an input, and the run's source when it shows outside the operated part. Under a
/// hazard the pixels are read into the buffer first. False when memory is short.
bool PrepareInput(const InputPart& input, vfILPixelRun& run, vfILRowWalk& walk, vfILRunBuffer& buffer);

/// Sets the walks of mask and output for the run's boxes. False for what Verify would have refused: a mask or
/// an output that does not cover its box, or whose samples differ in size.
bool PrepareMaskAndOutput(vfILPixelRun& run, IPXImage* output, IPXImage* mask, const vfILBbox2l& maskBox,
                          PXImageChannel channel);

/// True when a run can read the input and write the output: both have pixels of one size. An input of no size
/// at all needs none.
bool AreConnected(IPXImage* input, IPXImage* output);

/// The code of what the two above refuse, for the error of a run that nobody verified.
///
/// \param noInput  The code for a null input; \p noPixels for one without pixels.
unsigned long WhyUnconnected(IPXImage* input, IPXImage* output, unsigned long noInput = 0x1000B,
                             unsigned long noPixels = 0x1000C);
unsigned long WhyUnprepared(const vfILPixelRun& run, IPXImage* output, IPXImage* mask);

/// Moves the walks of the inputs, the mask and the output onto the rows that the mode's field bits select.
void SelectRows(vfILPixelRun& run, unsigned long mode, IPXImage* output,
                std::initializer_list<vfILRowWalk*> inputs);

} // namespace vfil
