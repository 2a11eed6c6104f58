/// \file
/// A plug-in that uses the library. It is built with the compiler's own visibility, as a stranger's may be.

#include "tinypicture.h"

#include <vfil/vfil.h>

/// Runs what has shared, thread's or static data. \return 1 when all of it ran.
extern "C" int RunProcessors()
{
    TinyFactory factory; // sharpening works on a picture of the host's
    TinyPicture in(5, 3);
    TinyPicture out(5, 3);
    vfILInvertImg invert;
    vfILSharpenImg sharpen;
    sharpen.SetRadius(1);
    sharpen.SetType(VFIL_SHARPEN_EDGES);
    vfILBlurImg blur;
    blur.SetType(VFIL_BLUR_FAST_GAUSS);
    bool ran = IsFormatWithAlpha(PXFormat_RGBA32) != 0;
    for (vfILMonadicImgProc* processor :
         {static_cast<vfILMonadicImgProc*>(&invert), static_cast<vfILMonadicImgProc*>(&sharpen),
          static_cast<vfILMonadicImgProc*>(&blur)}) {
        processor->SetInputImg(&in);
        processor->SetOutputImg(&out);
        ran = ran && processor->Verify() == VFIL_SUCCESS && processor->Execute() == VFIL_SUCCESS;
    }
    vfILColor color;
    color.SetName(L"shared");
    const vfILColor copy(color);
    vfILRandomNumber random;
    return ran && copy == color && random.GetNumber() < 1 ? 1 : 0;
}
