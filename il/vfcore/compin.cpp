/// \file
/// The front where the back is.

#include "il/loops/layer/comploop.h"

#include <vfil/composite.h>

using namespace vfil;

const wchar_t* const vfILInImage::m_ClassName = L"vfILInImage";

const wchar_t* vfILInImage::GetClassNameW() const
{
    return m_ClassName;
}

vfILStatus vfILInImage::Process8()
{
    return RunLayerOp<std::uint8_t, LayerOp::In>(*this, Layers());
}

vfILStatus vfILInImage::Process16()
{
    return RunLayerOp<std::uint16_t, LayerOp::In>(*this, Layers());
}
