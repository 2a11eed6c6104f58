/// \file
/// The clipped sum.

#include "il/loops/layer/comploop.h"

#include <vfil/composite.h>

using namespace vfil;

const wchar_t* const vfILAddImage::m_ClassName = L"vfILAddImage";

const wchar_t* vfILAddImage::GetClassNameW() const
{
    return m_ClassName;
}

vfILStatus vfILAddImage::Process8()
{
    return RunLayerOp<std::uint8_t, LayerOp::Add>(*this, Layers());
}

vfILStatus vfILAddImage::Process16()
{
    return RunLayerOp<std::uint16_t, LayerOp::Add>(*this, Layers());
}
