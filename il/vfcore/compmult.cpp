/// \file
/// The product.

#include "il/loops/layer/comploop.h"

#include <vfil/composite.h>

using namespace vfil;

const wchar_t* const vfILMultImage::m_ClassName = L"vfILMultImage";

const wchar_t* vfILMultImage::GetClassNameW() const
{
    return m_ClassName;
}

vfILStatus vfILMultImage::Process8()
{
    return RunLayerOp<std::uint8_t>(*this, Layers(), LayerOp::Mult);
}

vfILStatus vfILMultImage::Process16()
{
    return RunLayerOp<std::uint16_t>(*this, Layers(), LayerOp::Mult);
}
