/// \file
/// YCC to RGB, and what all conversions from YCC share.

#include "il/loops/convert/colmodels.h"
#include "il/loops/convert/yccloop.h"
#include "il/loops/frame/rowloop.h"

#include "il/rows/convert/depthrows.h"
#include "il/rows/convert/modelrows.h"
#include "il/rows/convert/yccrows.h"

#include <utility>

using namespace vfil;

namespace {

constexpr vfILRGBFormats kRgba{L"vfILYCCA2RGBA", PXFormat_RGBA32, PXFormat_RGB24, true};

} // namespace

vfILYCCA2RGBA::vfILYCCA2RGBA() : vfILYCC2RGBProc(kRgba)
{}

vfILYCC2RGBProc::vfILYCC2RGBProc(const vfILRGBFormats& formats) : m_formats(formats)
{}

vfILYCC2RGBProc::vfILYCC2RGBProc(const vfILYCC2RGBProc& other) = default;

vfILYCC2RGBProc& vfILYCC2RGBProc::operator=(const vfILYCC2RGBProc& other)
{
    // Not the formats: a class stays what it is.
    vfILMonadicConvertProc::operator=(other);
    DoFiltering = other.DoFiltering;
    return *this;
}

vfILYCC2RGBProc::~vfILYCC2RGBProc() = default;

const wchar_t* vfILYCC2RGBProc::GetClassNameW() const
{
    return m_formats.className;
}

vfILStatus vfILYCC2RGBProc::Verify()
{
    if (vfILMonadicConvertProc::Verify() != VFIL_SUCCESS) return VFIL_FAILURE;
    return VerifyFormats();
}

vfILStatus vfILYCC2RGBProc::VerifyFormats()
{
    if (IsFormatYCC(InputFormat()) == 0) return Fail(0x10034, GetClassNameW());
    if (!m_formats.Pairs(OutputFormat(), InputFormat())) return Fail(0x1000D, GetClassNameW());
    return VFIL_SUCCESS;
}

vfILStatus vfILYCC2RGBProc::DoEffect()
{
    const GUID input = InputFormat();
    if (VerifyFormats() != VFIL_SUCCESS) return VFIL_FAILURE;
    const int hasAlpha = OutputFormat() == m_formats.pixels32 ? 1 : 0;
    if (input == PXFormat_YCCA32) {
        Convert8_YCCA2RGBA(hasAlpha);
    } else if (input == PXFormat_YCCA64) {
        Convert16_YCCA2RGBA();
    } else {
        Convert8_YCC4222RGBA(hasAlpha, WeightsOf(input), IsFormatAlternateYUV(input));
    }
    return VFIL_SUCCESS;
}

void vfILYCC2RGBProc::Convert8_YCCA2RGBA(int hasAlpha)
{
    const bool vectors = m_simdAvailable != 0;
    const DepthRows& bytes = FindDepthRows(vectors);
    const auto transform = FindModelRows(vectors).of8.transform;
    const double* matrix = MatricesOf(WeightsOf(InputFormat())).toRgb.data();
    const bool blueFirst = vfILFindFormat(OutputFormat())->blueFirst;
    const auto pixels = static_cast<std::size_t>(Run().width);
    ForEachRow(*this, Run().rows, [&](long row) {
        const auto* ycc = RowOf<const std::uint8_t>(Run().input, row);
        auto* rgb = RowOf<std::uint8_t>(Run().output, row);
        if (hasAlpha != 0) {
            transform(ycc, rgb, pixels, matrix);
            if (blueFirst) bytes.swap[0](rgb, rgb, pixels);
            return;
        }
        constexpr std::size_t most = 256;
        for (std::size_t at = 0; at < pixels; at += most) {
            std::uint8_t some[4 * most];
            const std::size_t count = std::min(most, pixels - at);
            transform(ycc + 4 * at, some, count, matrix);
            bytes.drop[blueFirst][0](some, rgb + 3 * at, count);
        }
    });
}

void vfILYCC2RGBProc::Convert16_YCCA2RGBA()
{
    const auto transform = FindModelRows(m_simdAvailable != 0).of16.transform;
    const double* matrix = MatricesOf(WeightsOf(InputFormat())).toRgb.data();
    ForEachRow(*this, Run().rows, [&](long row) {
        transform(RowOf<const std::uint16_t>(Run().input, row), RowOf<std::uint16_t>(Run().output, row),
                  static_cast<std::size_t>(Run().width), matrix);
    });
}

void vfILYCC2RGBProc::Convert8_YCC4222RGBA(int hasAlpha, PXColorModel model, int alternate)
{
    const bool vectors = m_simdAvailable != 0;
    const YccLayout layout = LayoutOf(model, OutputFormat(), alternate);
    const auto arithmetic = vectors && hasAlpha != 0 ? YccArithmetic::Fast : YccArithmetic::Exact;
    const DecodeRow decode =
        FindDecodeRow({arithmetic, hasAlpha != 0 ? 4 : 3, DoFiltering != 0, vectors, Run().streaming});
    const ImageView input(Run().from);
    ForEachRow(*this, Run().rows, [&](long row) {
        const long from = input.MemoryRow(row);
        const long next = input.MemoryRow(std::min(row + 1, Run().rows - 1));
        decode(RowOf<std::uint8_t>(Run().input, from),
               input.format->alphaPlane ? PlaneRowAt(Run().input, from) : nullptr,
               RowOf<std::uint8_t>(Run().output, row), static_cast<std::size_t>(Run().width), layout,
               (next - from) * Run().input.step);
    });
}

void* vfILYCCA2RGBA::GetConvertedColor(const vfILColor& color)
{
    const GUID output = OutputFormat();
    if (output == PXFormat_RGBA32) {
        color.GetColorAs32(m_color8.data(), PXColorModel_RGB);
        return m_color8.data();
    }
    if (output == PXFormat_RGB24) {
        color.GetColorAs24(m_color8.data(), PXColorModel_RGB);
        return m_color8.data();
    }
    color.GetColorAs64(m_color16.data(), PXColorModel_RGB);
    return m_color16.data();
}
