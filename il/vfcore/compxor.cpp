/// \file
/// Either where the other is not.

#include "il/loops/layer/comploop.h"

#include <vfil/composite.h>

using namespace vfil;

const wchar_t* const vfILXorImage::m_ClassName = L"vfILXorImage";

const wchar_t* vfILXorImage::GetClassNameW() const
{
    return m_ClassName;
}

vfILStatus vfILXorImage::Process8()
{
    return RunLayerOp<std::uint8_t, LayerOp::Xor>(*this, Layers());
}

vfILStatus vfILXorImage::Process16()
{
    return RunLayerOp<std::uint16_t, LayerOp::Xor>(*this, Layers());
}
