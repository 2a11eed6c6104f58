/// \file
/// Grey from colour.

#include "il/loops/frame/rowloop.h"

#include <vfil/pixel.h>

using namespace vfil;

const wchar_t* const vfILGrayscaleImg::m_ClassName = L"vfILGrayscaleImg";

const wchar_t* vfILGrayscaleImg::GetClassNameW() const
{
    return m_ClassName;
}

vfILStatus vfILGrayscaleImg::Verify()
{
    if (vfILMonadicPixelProc::Verify() != VFIL_SUCCESS) return VFIL_FAILURE;
    if (!RgbaFormats::Contains(OutputFormat())) {
        return Fail(0x1000D, "%s ERROR Verify: Invalid image formats\n", GetClassNameW());
    }
    if ((GetProcessingMode() & VFIL_MODE_RGB) != VFIL_MODE_RGB) return Fail(0x20002, GetClassNameW());
    return VFIL_SUCCESS;
}

namespace {

template <class Format>
vfILStatus RunGrayscale(const vfILProcessor& processor, const vfILPixelRun& run, const vfILRowWalk& input)
{
    using Sample = typename Format::Sample;
    RunPixels<Format>(processor, run, input, VFIL_MODE_RGB, [&](long row, long index, Sample* result) {
        const auto* in = RowOf<const Sample>(input, row) + index;
        std::fill_n(result, Format::kChannels,
                    static_cast<Sample>(Arith<Sample>::Brightness(in[0], in[1], in[2])));
    });
    return VFIL_SUCCESS;
}

} // namespace

vfILStatus vfILGrayscaleImg::DoEffect()
{
    return RgbaFormats::RunByDepth(
        FormatOf(Run()), [this] { return Grayscale8(); }, [this] { return Grayscale16(); });
}

vfILStatus vfILGrayscaleImg::Grayscale8()
{
    return RunGrayscale<Rgba8>(*this, Run(), InputWalk());
}

vfILStatus vfILGrayscaleImg::Grayscale16()
{
    return RunGrayscale<Rgba16>(*this, Run(), InputWalk());
}
