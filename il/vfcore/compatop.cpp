/// \file
/// The front where the back is, over the back.

#include "il/loops/layer/comploop.h"

#include <vfil/composite.h>

using namespace vfil;

const wchar_t* const vfILAtopImage::m_ClassName = L"vfILAtopImage";

const wchar_t* vfILAtopImage::GetClassNameW() const
{
    return m_ClassName;
}

vfILStatus vfILAtopImage::Process8()
{
    return RunLayerOp<std::uint8_t, LayerOp::Atop>(*this, Layers());
}

vfILStatus vfILAtopImage::Process16()
{
    return RunLayerOp<std::uint16_t, LayerOp::Atop>(*this, Layers());
}
