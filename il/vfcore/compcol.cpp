/// \file
/// The hue and saturation of the front on the lightness of the back.

#include "il/loops/layer/compmodel.h"

#include <vfil/composite.h>

using namespace vfil;

const wchar_t* const vfILColImage::m_ClassName = L"vfILColImage";

const wchar_t* vfILColImage::GetClassNameW() const
{
    return m_ClassName;
}

namespace {

template <class Format>
vfILStatus RunFormat(vfILCompImg& processor, const vfILLayerRun& layers)
{
    return RunModelOp<Format>(processor, layers, [](Hlsa back, Hlsa front) {
        front.lightness = back.lightness;
        return front;
    });
}

} // namespace

vfILStatus vfILColImage::Process8()
{
    return RunFormat<Rgba8>(*this, Layers());
}

vfILStatus vfILColImage::Process16()
{
    return RunFormat<Rgba16>(*this, Layers());
}
