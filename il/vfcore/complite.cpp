/// \file
/// The larger value.

#include "il/loops/layer/comploop.h"

#include <vfil/composite.h>

using namespace vfil;

const wchar_t* const vfILLighterImage::m_ClassName = L"vfILLighterImage";

const wchar_t* vfILLighterImage::GetClassNameW() const
{
    return m_ClassName;
}

vfILStatus vfILLighterImage::Process8()
{
    return RunLayerOp<std::uint8_t, LayerOp::Lighter>(*this, Layers());
}

vfILStatus vfILLighterImage::Process16()
{
    return RunLayerOp<std::uint16_t, LayerOp::Lighter>(*this, Layers());
}
