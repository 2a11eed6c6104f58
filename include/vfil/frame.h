/// \file
/// The frames that all operators stand on: the processor root, the frame with an output picture, the frames
/// of one and of two inputs, and the pixel frames of both.
///
/// A host constructs a processor, calls setters, connects pictures, may call Verify, and calls Execute.
/// Setters only store; Verify checks and Execute does not call it. A processor may be executed any number of
/// times, by one thread at a time. Coordinates: x to the right, y upward from the first memory row of a
/// format that is not top-down.
#pragma once

#include <vfil/dyadic.h>
#include <vfil/imgproc.h>
#include <vfil/monadic.h>
#include <vfil/processor.h>
#include <vfil/run.h>
