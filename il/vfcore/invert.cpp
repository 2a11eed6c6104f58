/// \file
/// The complement of every selected channel.

#include "il/loops/frame/rowloop.h"
#include "il/rows/pixel/pointrows.h"

#include <vfil/pixel.h>

#include <type_traits>

using namespace vfil;

const wchar_t* const vfILInvertImg::m_ClassName = L"vfILInvertImg";

const wchar_t* vfILInvertImg::GetClassNameW() const
{
    return m_ClassName;
}

vfILStatus vfILInvertImg::Verify()
{
    if (vfILMonadicPixelProc::Verify() != VFIL_SUCCESS) return VFIL_FAILURE;
    if (!PointFormats::Contains(OutputFormat())) return Fail(0x1000D, GetClassNameW());
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
    return PointFormats::RunByDepth(
        FormatOf(Run()), [this] { return Process8(); }, [this] { return Process16(); });
}

namespace {

/// All bits of the selected channels of a pixel, the first channel lowest.
template <class Sample>
PixelBits<Sample> SelectBits(unsigned channels)
{
    PixelBits<Sample> bits = 0;
    for (unsigned c = 0; c < 4; ++c) {
        if ((channels >> c & 1U) != 0)
            bits |= PixelBits<Sample>{Arith<Sample>::kFull} << (c * 8 * sizeof(Sample));
    }
    return bits;
}

/// Runs a row kernel over the process box; what follows the pixel count is passed on.
template <class Sample, class Kernel, class... Parameters>
void RunRows(const vfILProcessor& processor, const vfILPixelRun& run, const vfILRowWalk& input, Kernel kernel,
             Parameters... parameters)
{
    const auto pixels = static_cast<std::size_t>(run.processBox.GetSizeX());
    ForEachRow(processor, run.rows, [&](long row) {
        kernel(RowOf<const Sample>(input, row), RowOf<Sample>(run.output, row), pixels, parameters...);
    });
}

/// Samples of one width: by whole rows, or under a mask one by one.
template <class Sample, class InvertChannel>
vfILStatus RunInvert(const vfILProcessor& processor, const vfILPixelRun& run, const vfILRowWalk& input,
                     bool vectors, InvertChannel invertChannel)
{
    PointFormats::Visit(FormatOf(run), [&](auto format) {
        using Format = decltype(format);
        if constexpr (std::is_same_v<typename Format::Sample, Sample>) {
            if (run.mask.first != nullptr) {
                RunPointOp<Format>(processor, run, input, invertChannel);
            } else if constexpr (Format::kChannels == 1) {
                RunRows<Sample>(processor, run, input, FindInvertMono<Sample>(vectors, run.streaming));
            } else {
                RunRows<Sample>(processor, run, input, FindInvertRow<Sample>(vectors, run.streaming),
                                SelectBits<Sample>(Format::Channels(processor)));
            }
        }
    });
    return VFIL_SUCCESS;
}

} // namespace

vfILStatus vfILInvertImg::Process8()
{
    return RunInvert<std::uint8_t>(*this, Run(), InputWalk(), m_simdAvailable != 0, InvertChannel8);
}

vfILStatus vfILInvertImg::Process16()
{
    return RunInvert<std::uint16_t>(*this, Run(), InputWalk(), m_simdAvailable != 0, InvertChannel16);
}
