/// \file
/// The sum without clipping.

#include "il/loops/layer/comploop.h"

#include <vfil/composite.h>

using namespace vfil;

const wchar_t* const vfILAddNoClipImage::m_ClassName = L"vfILAddNoClipImage";

const wchar_t* vfILAddNoClipImage::GetClassNameW() const
{
    return m_ClassName;
}

vfILStatus vfILAddNoClipImage::Process8()
{
    return RunLayerOp<std::uint8_t, LayerOp::AddNoClip>(*this, Layers());
}

vfILStatus vfILAddNoClipImage::Process16()
{
    return RunLayerOp<std::uint16_t, LayerOp::AddNoClip>(*this, Layers());
}
