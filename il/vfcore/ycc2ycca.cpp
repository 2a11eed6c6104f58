/// \file
/// Fill and key to a picture with an alpha plane.

#include "il/loops/fillkey/keypair.h"
#include "il/loops/frame/colourpixel.h"
#include "il/loops/frame/rowcopy.h"
#include "il/loops/frame/rowloop.h"

#include "il/rows/fillkey/fillkeyrows.h"

#include <vfil/fillkey.h>

using namespace vfil;

const wchar_t* const vfILYCCYCC2YCCA::m_ClassName = L"vfILYCCYCC2YCCA";

vfILYCCYCC2YCCA::vfILYCCYCC2YCCA() = default;
vfILYCCYCC2YCCA::vfILYCCYCC2YCCA(const vfILYCCYCC2YCCA& other) = default;
vfILYCCYCC2YCCA& vfILYCCYCC2YCCA::operator=(const vfILYCCYCC2YCCA& other) = default;
vfILYCCYCC2YCCA::~vfILYCCYCC2YCCA() = default;

const wchar_t* vfILYCCYCC2YCCA::GetClassNameW() const
{
    return m_ClassName;
}

vfILStatus vfILYCCYCC2YCCA::Execute()
{
    return Verify() == VFIL_SUCCESS ? vfILImgProc::Execute() : VFIL_FAILURE;
}

vfILStatus vfILYCCYCC2YCCA::Verify()
{
    if (vfILImgProc::Verify() != VFIL_SUCCESS) return VFIL_FAILURE;
    const bool complete = m_inputImgA != nullptr && m_inputImgB != nullptr;
    if (!complete && m_fillMissingInput == 0) return Fail(0x1000B, GetClassNameW());
    for (IPXImage* input : {m_inputImgA, m_inputImgB}) {
        if (input == nullptr) continue;
        const ImageView from(input);
        if (!from.HasPixels()) return Fail(0x1000C, GetClassNameW());
        if (!IsSubsampled(from)) return Fail(0x10034, GetClassNameW());
    }
    if (!ImageView(GetOutputImg()).format->alphaPlane) return Fail(0x10003, GetClassNameW());
    if (VerifyInput(m_inputImgA) != VFIL_SUCCESS) return VFIL_FAILURE;
    return VerifyInput(m_inputImgB);
}

vfILStatus vfILYCCYCC2YCCA::VerifyInput(IPXImage* input)
{
    if (input == nullptr) return VFIL_SUCCESS;
    const ImageView from(input);
    const ImageView output(GetOutputImg());
    if (!(from.Box() == output.Box())) return Fail(0x10062, GetClassNameW());
    if (!IsOfStandard(from, output)) return Fail(0x1000D, GetClassNameW());
    return VFIL_SUCCESS;
}

vfILStatus vfILYCCYCC2YCCA::PrepareData()
{
    const ImageView output(GetOutputImg());
    if (!HasFormatBytes(ImageView(m_inputImgA)) || !HasFormatBytes(ImageView(m_inputImgB)) ||
        !HasFormatBytes(output))
        return Fail(0x1000D, GetClassNameW());
    const std::int64_t bytes = std::int64_t{output.pixelBytes} * output.width * output.height;
    m_streaming = bytes >= static_cast<std::int64_t>(kStreamingBytes);
    return VFIL_SUCCESS;
}

vfILStatus vfILYCCYCC2YCCA::ProcessData()
{
    Convert8_YCCYCC2YCCA();
    return VFIL_SUCCESS;
}

vfILStatus vfILYCCYCC2YCCA::CleanData()
{
    if (m_streaming) FinishStreaming();
    m_streaming = false;
    return VFIL_SUCCESS;
}

namespace {

/// What rows without a source show: a group of bytes, over and over.
struct Filling {
    const unsigned char* group;
    std::size_t groupBytes;
    bool vectors, streaming;

    /// Makes the first row, and copies it to the others: a copy is as fast as memory, and its source stays in
    /// the cache.
    void FillOrCopy(unsigned char* first, unsigned char* row, std::size_t bytes) const
    {
        if (row == first) {
            FillRow(row, bytes, group, groupBytes);
        } else {
            MoveRow(vectors, first, row, bytes, streaming);
        }
    }
};

std::size_t PixelsOf(const ImageView& output)
{
    return static_cast<std::size_t>(output.width);
}

void Convert8_YCC4222CbYCrY(FillKeyRow convert, const ImageView& fill, const ImageView& output, long row)
{
    convert(RowBeside(fill, row), output.Pixel(0, row), PixelsOf(output));
}

void Convert8_YCC4222Alpha(FillKeyRow convert, const ImageView& key, const ImageView& output, long row)
{
    convert(RowBeside(key, row), output.PlanePixel(0, row), PixelsOf(output));
}

void FillCbYCrY(const Filling& filling, const ImageView& output, long row)
{
    filling.FillOrCopy(output.Pixel(0, 0), output.Pixel(0, row), 2 * PixelsOf(output));
}

void FillAlpha(const Filling& filling, const ImageView& output, long row)
{
    filling.FillOrCopy(output.PlanePixel(0, 0), output.PlanePixel(0, row), PixelsOf(output));
}

} // namespace

void vfILYCCYCC2YCCA::Convert8_YCCYCC2YCCA()
{
    const ImageView fill(m_inputImgA);
    const ImageView key(m_inputImgB);
    const ImageView output(GetOutputImg());
    const bool vectors = m_simdAvailable != 0;
    const FillKeyRow fromFill = FindColourRow({fill.format->chromaFirst, vectors, m_streaming});
    const FillKeyRow fromKey = FindKeyToAlphaRow({key.format->chromaFirst, vectors, m_streaming});
    ColourPixel color; // [Cb Y Cr Y A]
    color.Set(*output.format, m_fillColor);
    const Filling colour{color.bytes, 4, vectors, m_streaming};
    const Filling alpha{color.bytes + 4, 1, vectors, m_streaming};

    ForEachRow(*this, output.height, [&](long row) {
        if (fill.HasPixels()) {
            Convert8_YCC4222CbYCrY(fromFill, fill, output, row);
        } else {
            FillCbYCrY(colour, output, row);
        }
        if (key.HasPixels()) {
            Convert8_YCC4222Alpha(fromKey, key, output, row);
        } else {
            FillAlpha(alpha, output, row);
        }
    });
}

void vfILYCCYCC2YCCA::SetInputImgA(IPXImage* image)
{
    m_inputImgA = image;
}

IPXImage* vfILYCCYCC2YCCA::GetInputImgA() const
{
    return m_inputImgA;
}

void vfILYCCYCC2YCCA::SetInputImgB(IPXImage* image)
{
    m_inputImgB = image;
}

IPXImage* vfILYCCYCC2YCCA::GetInputImgB() const
{
    return m_inputImgB;
}

void vfILYCCYCC2YCCA::SetFillMissingInput(int flag)
{
    m_fillMissingInput = flag;
}

int vfILYCCYCC2YCCA::GetFillMissingInput() const
{
    return m_fillMissingInput;
}

void vfILYCCYCC2YCCA::SetFillColor(const vfILColor& color)
{
    m_fillColor = color;
}

const vfILColor& vfILYCCYCC2YCCA::GetFillColor() const
{
    return m_fillColor;
}
