/// \file
/// Copies whole pixels of any format.

#include "il/loops/frame/imageview.h"
#include "il/loops/frame/rowcopy.h"
#include "il/loops/frame/rowloop.h"

#include <vfil/pixel.h>

using namespace vfil;

vfILStatus vfILCopyImg::PrepareData()
{
    if (vfILMonadicPixelProc::PrepareData() != VFIL_SUCCESS) return VFIL_FAILURE;
    const auto width = static_cast<std::size_t>(Run().processBox.GetSizeX());
    m_rowBytes = width * static_cast<std::size_t>(ImageView(Run().picture).RowPixelBytes());
    m_planeRowBytes = Run().output.plane == nullptr ? 0 : width;
    return VFIL_SUCCESS;
}

vfILStatus vfILCopyImg::DoEffect()
{
    const vfILRowWalk& in = InputWalk();
    const vfILRowWalk& out = Run().output;
    const bool vectors = m_simdAvailable != 0;
    const bool streaming = Run().streaming;
    ForEachRow(*this, Run().rows, [&](long row) {
        MoveRow(vectors, in.first + row * in.step, out.first + row * out.step, m_rowBytes, streaming);
        if (m_planeRowBytes == 0) return;
        MoveRow(vectors, in.plane + row * in.planeStep, out.plane + row * out.planeStep, m_planeRowBytes,
                streaming);
    });
    return VFIL_SUCCESS;
}

void vfILSIMDMemCopy(const void* source, void* destination, unsigned long bytes)
{
    const bool streaming = bytes >= kStreamingBytes;
    CopyBytes(true, source, destination, bytes, streaming);
    if (streaming) FinishStreaming();
}
