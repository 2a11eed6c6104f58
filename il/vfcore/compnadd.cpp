/// \file
/// The brighter pixel as a whole.

#include "il/loops/layer/comploop.h"

#include <vfil/composite.h>

using namespace vfil;

const wchar_t* const vfILNonAddImage::m_ClassName = L"vfILNonAddImage";

const wchar_t* vfILNonAddImage::GetClassNameW() const
{
    return m_ClassName;
}

namespace {

template <class Format>
vfILStatus RunFormat(vfILCompImg& processor, const vfILLayerRun& layers)
{
    using Sample = typename Format::Sample;
    return RunWholePixelOp<Format>(
        processor, layers, [](const Sample* back, const Sample* front, Sample* out) {
            std::copy_n(Brightness(back) < Brightness(front) ? front : back, 4, out);
        });
}

} // namespace

vfILStatus vfILNonAddImage::Process8()
{
    return RunFormat<Rgba8>(*this, Layers());
}

vfILStatus vfILNonAddImage::Process16()
{
    return RunFormat<Rgba16>(*this, Layers());
}
