/// \file
/// The darker pixel as a whole.

#include "il/loops/layer/comploop.h"

#include <vfil/composite.h>

using namespace vfil;

const wchar_t* const vfILInvNonAddImage::m_ClassName = L"vfILInvNonAddImage";

const wchar_t* vfILInvNonAddImage::GetClassNameW() const
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
            std::copy_n(Brightness(front) < Brightness(back) ? front : back, 4, out);
        });
}

} // namespace

vfILStatus vfILInvNonAddImage::Process8()
{
    return RunFormat<Rgba8>(*this, Layers());
}

vfILStatus vfILInvNonAddImage::Process16()
{
    return RunFormat<Rgba16>(*this, Layers());
}
