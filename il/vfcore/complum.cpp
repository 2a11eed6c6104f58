/// \file
/// The lightness of the front with the hue and saturation of the back.

#include "il/loops/layer/compmodel.h"

#include <vfil/composite.h>

using namespace vfil;

const wchar_t* const vfILLumImage::m_ClassName = L"vfILLumImage";

const wchar_t* vfILLumImage::GetClassNameW() const
{
    return m_ClassName;
}

namespace {

template <class Format>
vfILStatus RunFormat(vfILCompImg& processor, const vfILLayerRun& layers)
{
    return RunModelOp<Format>(processor, layers, [](Hlsa back, Hlsa front) {
        back.lightness = front.lightness;
        return back;
    });
}

} // namespace

vfILStatus vfILLumImage::Process8()
{
    return RunFormat<Rgba8>(*this, Layers());
}

vfILStatus vfILLumImage::Process16()
{
    return RunFormat<Rgba16>(*this, Layers());
}
