/// \file
/// The complement of every selected channel.

#include "il/loops/frame/rowloop.h"
#include "il/rows/pixel/pointrows.h"

#include <vfil/pixel.h>

using namespace vfil;

const wchar_t* const vfILInvertImg::m_ClassName = L"vfILInvertImg";

const wchar_t* vfILInvertImg::GetClassNameW() const
{
    return m_ClassName;
}

vfILStatus vfILInvertImg::Verify()
{
    if (vfILMonadicPixelProc::Verify() != VFIL_SUCCESS) return VFIL_FAILURE;
    if (!PointFormats::Contains(OutputFormat())) {
        return Fail(0x1000D, "%s ERROR Verify: Invalid image format \n", GetClassNameW());
    }
    return VFIL_SUCCESS;
}

unsigned char vfILInvertImg::InvertChannel8(unsigned char c)
{
    return static_cast<unsigned char>(255 - c);
}

unsigned short vfILInvertImg::InvertChannel16(unsigned short c)
{
    return static_cast<unsigned short>(65535 - c);
}

vfILStatus vfILInvertImg::DoEffect()
{
    const GUID format = OutputFormat();
    if (format == PXFormat_RGBA32 || format == PXFormat_Mono8) return Process8();
    if (format == PXFormat_RGBA64 || format == PXFormat_Mono16) return Process16();
    return VFIL_SUCCESS;
}

namespace {

/// All bits of the selected channels of a pixel, the first channel lowest.
template <class Pixel, class Sample>
Pixel SelectBits(unsigned channels)
{
    Pixel bits = 0;
    for (unsigned c = 0; c < 4; ++c) {
        if ((channels >> c & 1U) != 0) bits |= Pixel{Arith<Sample>::kFull} << (c * 8 * sizeof(Sample));
    }
    return bits;
}

/// Runs a row kernel over the process box; what follows the pixel count is passed on.
template <class Sample, class Kernel, class... Parameters>
vfILStatus RunRows(const vfILProcessor& processor, const vfILPixelRun& run, const vfILRowWalk& input,
                   Kernel kernel, Parameters... parameters)
{
    const auto pixels = static_cast<std::size_t>(run.processBox.GetSizeX());
    ForEachRow(processor, run.rows, [&](long row) {
        kernel(RowOf<const Sample>(input, row), RowOf<Sample>(run.output, row), pixels, parameters...);
    });
    return VFIL_SUCCESS;
}

} // namespace

vfILStatus vfILInvertImg::Process8()
{
    const bool mono = OutputFormat() == PXFormat_Mono8;
    if (GetMaskImg() != nullptr) {
        return mono ? RunPointOp<Mono8>(*this, Run(), InputWalk(), InvertChannel8)
                    : RunPointOp<Rgba8>(*this, Run(), InputWalk(), InvertChannel8);
    }
    const bool vectors = m_simdAvailable != 0;
    if (mono) {
        return RunRows<std::uint8_t>(*this, Run(), InputWalk(), FindInvertMono8(vectors, Run().streaming));
    }
    return RunRows<std::uint8_t>(*this, Run(), InputWalk(), FindInvertRow8(vectors, Run().streaming),
                                 SelectBits<std::uint32_t, std::uint8_t>(Rgba8::Channels(*this)));
}

vfILStatus vfILInvertImg::Process16()
{
    const bool mono = OutputFormat() == PXFormat_Mono16;
    if (GetMaskImg() != nullptr) {
        return mono ? RunPointOp<Mono16>(*this, Run(), InputWalk(), InvertChannel16)
                    : RunPointOp<Rgba16>(*this, Run(), InputWalk(), InvertChannel16);
    }
    const bool vectors = m_simdAvailable != 0;
    if (mono) {
        return RunRows<std::uint16_t>(*this, Run(), InputWalk(), FindInvertMono16(vectors, Run().streaming));
    }
    return RunRows<std::uint16_t>(*this, Run(), InputWalk(), FindInvertRow16(vectors, Run().streaming),
                                  SelectBits<std::uint64_t, std::uint16_t>(Rgba16::Channels(*this)));
}
