/// \file
/// For filters that some parameters turn into a copy.
#pragma once

#include "il/loops/frame/innerrun.h"

#include <vfil/pixel.h>

namespace vfil {

/// Copies the region of interest, as the processor would treat it but for its mask.
inline vfILStatus CopyInstead(vfILMonadicImgProc& processor)
{
    vfILCopyImg copy;
    copy.SetInputImg(processor.GetInputImg());
    copy.SetOutputImg(processor.GetOutputImg());
    copy.SetROI(processor.GetROI());
    copy.SetOutputOffset(processor.GetOutputOffset());
    copy.SetProcessingMode(processor.GetProcessingMode());
    const SharedInterruption interruption(processor, copy);
    const vfILStatus status = copy.Execute();
    if (status != VFIL_SUCCESS) processor.SetLastError(copy.GetLastError());
    return status;
}

} // namespace vfil
