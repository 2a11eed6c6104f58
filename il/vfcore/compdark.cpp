/// \file
/// The smaller value.

#include "il/loops/layer/comploop.h"

#include <vfil/composite.h>

using namespace vfil;

const wchar_t* const vfILDarkerImage::m_ClassName = L"vfILDarkerImage";

const wchar_t* vfILDarkerImage::GetClassNameW() const
{
    return m_ClassName;
}

vfILStatus vfILDarkerImage::Process8()
{
    return RunLayerOp<std::uint8_t, LayerOp::Darker>(*this, Layers());
}

vfILStatus vfILDarkerImage::Process16()
{
    return RunLayerOp<std::uint16_t, LayerOp::Darker>(*this, Layers());
}
