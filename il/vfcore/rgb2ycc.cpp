/// \file
/// RGB to YCC, and what all conversions to YCC share.

#include "il/loops/convert/colmodels.h"
#include "il/loops/convert/yccloop.h"
#include "il/loops/frame/rowloop.h"

#include "il/rows/convert/depthrows.h"
#include "il/rows/convert/modelrows.h"
#include "il/rows/convert/yccrows.h"

using namespace vfil;

namespace {

constexpr vfILRGBFormats kRgba{L"vfILRGBA2YCCA", PXFormat_RGBA32, PXFormat_RGB24, true};

} // namespace

vfILRGBA2YCCA::vfILRGBA2YCCA() : vfILRGB2YCCProc(kRgba)
{}

vfILRGB2YCCProc::vfILRGB2YCCProc(const vfILRGBFormats& formats) : m_formats(formats)
{}

vfILRGB2YCCProc::vfILRGB2YCCProc(const vfILRGB2YCCProc& other)
    : vfILMonadicConvertProc(other), m_formats(other.m_formats), DoFiltering(other.DoFiltering),
      DoDithering(other.DoDithering)
{}

vfILRGB2YCCProc& vfILRGB2YCCProc::operator=(const vfILRGB2YCCProc& other)
{
    // Not the formats: a class stays what it is.
    vfILMonadicConvertProc::operator=(other);
    DoFiltering = other.DoFiltering;
    DoDithering = other.DoDithering;
    return *this;
}

vfILRGB2YCCProc::~vfILRGB2YCCProc() = default;

const wchar_t* vfILRGB2YCCProc::GetClassNameW() const
{
    return m_formats.className;
}

vfILStatus vfILRGB2YCCProc::Verify()
{
    if (vfILMonadicConvertProc::Verify() != VFIL_SUCCESS) return VFIL_FAILURE;
    return VerifyFormats();
}

vfILStatus vfILRGB2YCCProc::VerifyFormats()
{
    if (!m_formats.Contains(InputFormat())) return Fail(0x10034, GetClassNameW());
    if (!m_formats.Pairs(InputFormat(), OutputFormat())) return Fail(0x1000D, GetClassNameW());
    return VFIL_SUCCESS;
}

vfILStatus vfILRGB2YCCProc::DoEffect()
{
    const GUID output = OutputFormat();
    if (VerifyFormats() != VFIL_SUCCESS) return VFIL_FAILURE;
    const int hasAlpha = InputFormat() == m_formats.pixels32 ? 1 : 0;
    // The same dither on every run.
    m_dither.SetUniform(0.0F, 1.0F);
    m_dither.SetFixedSeed(0x49960a8f);
    if (output == PXFormat_YCCA32) {
        Convert8_RGBA2YCCA(hasAlpha);
    } else if (output == PXFormat_YCCA64) {
        Convert16_RGBA2YCCA();
    } else {
        Convert8_RGBA2YCC422(hasAlpha, WeightsOf(output), IsFormatAlternateYUV(output));
    }
    return VFIL_SUCCESS;
}

void vfILRGB2YCCProc::Convert8_RGBA2YCCA(int hasAlpha)
{
    const bool vectors = m_simdAvailable != 0;
    const DepthRows& bytes = FindDepthRows(vectors);
    const auto transform = FindModelRows(vectors).of8.transform;
    const double* matrix = MatricesOf(WeightsOf(OutputFormat())).fromRgb.data();
    const bool blueFirst = vfILFindFormat(InputFormat())->blueFirst;
    const auto pixels = static_cast<std::size_t>(Run().width);
    ForEachRow(*this, Run().rows, [&](long row) {
        const auto* rgb = RowOf<const std::uint8_t>(Run().input, row);
        auto* ycc = RowOf<std::uint8_t>(Run().output, row);
        if (hasAlpha == 0 || blueFirst) {
            const PixelRow order = hasAlpha != 0 ? bytes.swap[0] : bytes.expand[blueFirst][0];
            order(rgb, ycc, pixels);
            rgb = ycc;
        }
        transform(rgb, ycc, pixels, matrix);
    });
}

void vfILRGB2YCCProc::Convert16_RGBA2YCCA()
{
    const auto transform = FindModelRows(m_simdAvailable != 0).of16.transform;
    const double* matrix = MatricesOf(WeightsOf(OutputFormat())).fromRgb.data();
    ForEachRow(*this, Run().rows, [&](long row) {
        transform(RowOf<const std::uint16_t>(Run().input, row), RowOf<std::uint16_t>(Run().output, row),
                  static_cast<std::size_t>(Run().width), matrix);
    });
}

namespace {

/// The start of a dithered row: a number of 0 .. 1 as a residue.
std::uint32_t Residue(vfILRandomNumber& random, double most)
{
    return static_cast<std::uint32_t>(RoundHalfAway(random.GetNumber() * most));
}

/// What is left over before a row's first pixel.
DitherResidue DrawResidue(vfILRandomNumber& random, bool filtered)
{
    const double mostChroma = filtered ? 131071.0 : 65535.0;
    DitherResidue residue{};
    residue.y = Residue(random, 65535.0);
    residue.cb = Residue(random, mostChroma);
    residue.cr = Residue(random, mostChroma);
    return residue;
}

} // namespace

void vfILRGB2YCCProc::Convert8_RGBA2YCC422(int hasAlpha, PXColorModel model, int alternate)
{
    const bool vectors = m_simdAvailable != 0;
    const bool filtered = DoFiltering != 0;
    const int pixelBytes = hasAlpha != 0 ? 4 : 3;
    const auto pixels = static_cast<std::size_t>(Run().width);
    const YccLayout layout = LayoutOf(model, InputFormat(), alternate);
    const auto arithmetic = vectors && hasAlpha != 0 ? YccArithmetic::Fast : YccArithmetic::Exact;
    const EncodeRow encode = FindEncodeRow({arithmetic, pixelBytes, filtered, vectors, Run().streaming});
    const ImageView output(Run().to);
    ForEachRow(*this, Run().rows, [&](long row) {
        const auto* rgb = RowOf<const std::uint8_t>(Run().input, row);
        auto* ycc = RowOf<std::uint8_t>(Run().output, output.MemoryRow(row));
        if (DoDithering != 0) {
            EncodeDithered(rgb, ycc, pixels, pixelBytes, filtered, layout, DrawResidue(m_dither, filtered));
        } else {
            encode(rgb, ycc, pixels, layout);
        }
        if (output.format->alphaPlane) { // which takes 4-byte pixels alone
            FindDepthRows(vectors).takeAlpha[Run().streaming](
                rgb, PlaneRowAt(Run().output, output.MemoryRow(row)), pixels);
        }
    });
}

void* vfILRGB2YCCProc::GetConvertedColor(const vfILColor& color)
{
    const GUID output = OutputFormat();
    if (IsFormatYCC(output) == 0 || output == PXFormat_YCCA64) {
        color.GetColorAs64(m_color16.data(), PXColorModel_YCC);
        return m_color16.data();
    }
    color.GetColorAs32(m_color8.data(), WeightsOf(output));
    return m_color8.data();
}
