/// \file
/// Luma into alpha.

#include "il/loops/convert/pairloop.h"
#include "il/loops/frame/imageview.h"

#include "il/rows/convert/depthrows.h"

using namespace vfil;

const wchar_t* const vfILRGBA2Alpha::m_ClassName = L"vfILRGBA2Alpha";

vfILRGBA2Alpha::~vfILRGBA2Alpha() = default;

const wchar_t* vfILRGBA2Alpha::GetClassNameW() const
{
    return m_ClassName;
}

vfILStatus vfILRGBA2Alpha::Verify()
{
    if (vfILMonadicPixelProc::Verify() != VFIL_SUCCESS) return VFIL_FAILURE;
    const vfILBbox2l whole = ImageView(GetInputImg()).Box();
    if (whole.IsNull() || !((GetROI() & whole) == whole)) return Fail(0x20001, GetClassNameW());
    if (!RgbaFormats::Contains(OutputFormat())) return Fail(0x10034, GetClassNameW());
    return VFIL_SUCCESS;
}

vfILStatus vfILRGBA2Alpha::DoEffect()
{
    const GUID& format = FormatOf(Run());
    if (format == PXFormat_RGBA32) return Convert8();
    if (format == PXFormat_RGBA64) return Convert16();
    return VFIL_SUCCESS;
}

namespace {

template <class Format>
vfILStatus RunLumaToAlpha(const vfILProcessor& processor, const vfILPixelRun& run, const vfILRowWalk& input)
{
    using Sample = typename Format::Sample;
    RunPixels<Format>(processor, run, input, VFIL_MODE_ALPHA, [&](long row, long index, Sample* result) {
        const auto* in = RowOf<const Sample>(input, row) + index;
        std::fill_n(result, Format::kChannels,
                    static_cast<Sample>(Arith<Sample>::Brightness(in[0], in[1], in[2])));
    });
    return VFIL_SUCCESS;
}

} // namespace

vfILStatus vfILRGBA2Alpha::Convert8()
{
    if (GetMaskImg() != nullptr) return RunLumaToAlpha<Rgba8>(*this, Run(), InputWalk());
    const PixelRow kernel = FindDepthRows(m_simdAvailable != 0).lumaToAlpha[Run().streaming];
    const auto pixels = static_cast<std::size_t>(Run().processBox.GetSizeX());
    ForEachRow(*this, Run().rows, [&](long row) {
        kernel(RowOf<const std::uint8_t>(InputWalk(), row), RowOf<std::uint8_t>(Run().output, row), pixels);
    });
    return VFIL_SUCCESS;
}

vfILStatus vfILRGBA2Alpha::Convert16()
{
    return RunLumaToAlpha<Rgba16>(*this, Run(), InputWalk());
}

void* vfILRGBA2Alpha::GetConvertedColor(const vfILColor& color)
{
    return PackedColor{m_color8, m_color16}.Pack(color, OutputFormat());
}
