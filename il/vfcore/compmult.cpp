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
    return RunLayerOp<std::uint8_t, LayerOp::Mult>(*this, Layers());
}

vfILStatus vfILMultImage::Process16()
{
    return RunLayerOp<std::uint16_t, LayerOp::Mult>(*this, Layers());
}
