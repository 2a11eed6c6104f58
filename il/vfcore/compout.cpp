/// \file
/// The front where the back is not.

#include "il/loops/layer/comploop.h"

#include <vfil/composite.h>

using namespace vfil;

const wchar_t* const vfILOutImage::m_ClassName = L"vfILOutImage";

const wchar_t* vfILOutImage::GetClassNameW() const
{
    return m_ClassName;
}

vfILStatus vfILOutImage::Process8()
{
    return RunLayerOp<std::uint8_t, LayerOp::Out>(*this, Layers());
}

vfILStatus vfILOutImage::Process16()
{
    return RunLayerOp<std::uint16_t, LayerOp::Out>(*this, Layers());
}
