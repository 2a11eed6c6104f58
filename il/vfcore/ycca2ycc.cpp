/// \file
/// A picture with an alpha plane to fill and key.

#include "il/loops/fillkey/keypair.h"
#include "il/loops/frame/rowloop.h"

#include "il/rows/fillkey/fillkeyrows.h"

#include <vfil/fillkey.h>

using namespace vfil;

const wchar_t* const vfILYCCA2YCCYCC::m_ClassName = L"vfILYCCA2YCCYCC";

vfILYCCA2YCCYCC::vfILYCCA2YCCYCC() : m_defaultColor(0.0, 0.0, 0.0, 0.0)
{}

vfILYCCA2YCCYCC::vfILYCCA2YCCYCC(const vfILYCCA2YCCYCC& other) = default;
vfILYCCA2YCCYCC& vfILYCCA2YCCYCC::operator=(const vfILYCCA2YCCYCC& other) = default;
vfILYCCA2YCCYCC::~vfILYCCA2YCCYCC() = default;

const wchar_t* vfILYCCA2YCCYCC::GetClassNameW() const
{
    return m_ClassName;
}

vfILStatus vfILYCCA2YCCYCC::Execute()
{
    vfILStatus status = Verify();
    if (status == VFIL_SUCCESS) status = PrepareData();
    if (status == VFIL_SUCCESS && MustInterrupt() == 0) status = ProcessData();
    const vfILStatus cleaned = CleanData();
    return status == VFIL_SUCCESS ? cleaned : status;
}

vfILStatus vfILYCCA2YCCYCC::Verify()
{
    if (vfILProcessor::Verify() != VFIL_SUCCESS) return VFIL_FAILURE;
    if (m_inputImg == nullptr) return Fail(0x1000B, GetClassNameW());
    const ImageView input(m_inputImg);
    if (!input.HasPixels()) return Fail(0x1000C, GetClassNameW());
    if (m_outputImgA == nullptr && m_outputImgB == nullptr) return Fail(0x10002, GetClassNameW());
    if (!input.format->alphaPlane) return Fail(0x10034, GetClassNameW());
    if (VerifyOutput(m_outputImgA) != VFIL_SUCCESS || VerifyOutput(m_outputImgB) != VFIL_SUCCESS)
        return VFIL_FAILURE;
    if (m_defaultColor.Verify() != 1) return Fail(0x10004, GetClassNameW());
    if (!(m_roi == input.Box()) || m_outputOffset[0] != 0 || m_outputOffset[1] != 0)
        return Fail(0x10060, GetClassNameW());
    return VFIL_SUCCESS;
}

vfILStatus vfILYCCA2YCCYCC::VerifyOutput(IPXImage* output)
{
    if (output == nullptr) return VFIL_SUCCESS;
    const ImageView to(output);
    const ImageView input(m_inputImg);
    if (!IsSubsampled(to)) return Fail(0x10003, GetClassNameW());
    if (!(to.Box() == input.Box())) return Fail(0x10062, GetClassNameW());
    if (!IsOfStandard(to, input)) return Fail(0x1000D, GetClassNameW());
    return VFIL_SUCCESS;
}

vfILStatus vfILYCCA2YCCYCC::PrepareData()
{
    const ImageView fill(m_outputImgA);
    const ImageView key(m_outputImgB);
    if (!HasFormatBytes(ImageView(m_inputImg)) || !HasFormatBytes(fill) || !HasFormatBytes(key))
        return Fail(0x1000D, GetClassNameW());
    const std::int64_t bytes = fill.RowBytes() * fill.height + key.RowBytes() * key.height;
    m_streaming = bytes >= static_cast<std::int64_t>(kStreamingBytes);
    return VFIL_SUCCESS;
}

vfILStatus vfILYCCA2YCCYCC::ProcessData()
{
    Convert8_YCCA2YCCYCC();
    return VFIL_SUCCESS;
}

vfILStatus vfILYCCA2YCCYCC::CleanData()
{
    if (m_streaming) FinishStreaming();
    m_streaming = false;
    return VFIL_SUCCESS;
}

namespace {

/// A row of the picture's 4:2:2 part to the fill, when there is one.
void Convert8_CbYCr2YCC422(FillKeyRow convert, const ImageView& input, const ImageView& fill, long row)
{
    if (!fill.HasPixels()) return;
    convert(input.Pixel(0, row), RowBeside(fill, row), static_cast<std::size_t>(input.width));
}

/// A row of the alpha plane to the key, when there is one.
void Convert8_Alpha2YCC422(FillKeyRow convert, const ImageView& input, const ImageView& key, long row)
{
    if (!key.HasPixels()) return;
    convert(input.PlanePixel(0, row), RowBeside(key, row), static_cast<std::size_t>(input.width));
}

} // namespace

void vfILYCCA2YCCYCC::Convert8_YCCA2YCCYCC()
{
    const ImageView input(m_inputImg);
    const ImageView fill(m_outputImgA);
    const ImageView key(m_outputImgB);
    const bool vectors = m_simdAvailable != 0;
    const FillKeyRow toFill = FindColourRow({fill.format->chromaFirst, vectors, m_streaming});
    const FillKeyRow toKey = FindAlphaToKeyRow({key.format->chromaFirst, vectors, m_streaming});
    ForEachRow(*this, input.height, [&](long row) {
        Convert8_CbYCr2YCC422(toFill, input, fill, row);
        Convert8_Alpha2YCC422(toKey, input, key, row);
    });
}

void vfILYCCA2YCCYCC::SetInputImg(IPXImage* image)
{
    m_inputImg = image;
}

IPXImage* vfILYCCA2YCCYCC::GetInputImg() const
{
    return m_inputImg;
}

void vfILYCCA2YCCYCC::TakeSize(IPXImage* output)
{
    if (output == nullptr || m_roiSet) return;
    const ImageView view(output);
    m_roi.SetSize(view.width, view.height);
}

void vfILYCCA2YCCYCC::SetOutputImgA(IPXImage* image)
{
    m_outputImgA = image;
    TakeSize(image);
}

IPXImage* vfILYCCA2YCCYCC::GetOutputImgA() const
{
    return m_outputImgA;
}

void vfILYCCA2YCCYCC::SetOutputImgB(IPXImage* image)
{
    m_outputImgB = image;
    TakeSize(image);
}

IPXImage* vfILYCCA2YCCYCC::GetOutputImgB() const
{
    return m_outputImgB;
}

void vfILYCCA2YCCYCC::SetROI(const vfILBbox2l& roi)
{
    m_roi = roi;
    m_roiSet = true;
}

const vfILBbox2l& vfILYCCA2YCCYCC::GetROI() const
{
    return m_roi;
}

void vfILYCCA2YCCYCC::SetOutputOffset(const vfILVector2l& offset)
{
    m_outputOffset = offset;
}

const vfILVector2l& vfILYCCA2YCCYCC::GetOutputOffset() const
{
    return m_outputOffset;
}

void vfILYCCA2YCCYCC::SetDefaultColor(const vfILColor& color)
{
    m_defaultColor = color;
}

const vfILColor& vfILYCCA2YCCYCC::GetDefaultColor() const
{
    return m_defaultColor;
}
