/// \file
/// The distance.

#include "il/loops/layer/comploop.h"

#include <vfil/composite.h>

using namespace vfil;

const wchar_t* const vfILDiffImage::m_ClassName = L"vfILDiffImage";

const wchar_t* vfILDiffImage::GetClassNameW() const
{
    return m_ClassName;
}

vfILStatus vfILDiffImage::Process8()
{
    return RunLayerOp<std::uint8_t, LayerOp::Diff>(*this, Layers());
}

vfILStatus vfILDiffImage::Process16()
{
    return RunLayerOp<std::uint16_t, LayerOp::Diff>(*this, Layers());
}
