/// \file
/// The frame of every operator with an output picture.

#include "il/loops/frame/fills.h"
#include "il/loops/frame/regions.h"
#include "il/loops/frame/rowloop.h"

#include <vfil/frame.h>

#include <limits>

using namespace vfil;

const wchar_t* const vfILImgProc::m_ClassName = L"vfILImgProc";

vfILImgProc::vfILImgProc()
{
    Init();
}

vfILImgProc::vfILImgProc(const vfILImgProc& other) : vfILProcessor(other)
{
    *this = other;
}

vfILImgProc::~vfILImgProc() = default;

void vfILImgProc::Init()
{
    constexpr long kEverywhere = std::numeric_limits<std::int32_t>::max();
    m_firstRowEven = 1;
    m_outputImg = nullptr;
    m_defaultColor = vfILColor(0.0, 0.0, 0.0, 0.0);
    m_maskImg = nullptr;
    m_maskBox = vfILBbox2l(0, 0, kEverywhere, kEverywhere);
    m_maskChannel = PXImageChannel_MONO;
    m_roi = vfILBbox2l(0, 0, -1, -1);
    m_outputOffset = vfILVector2l(0, 0);
    m_roiSet = 0;
}

const wchar_t* vfILImgProc::GetClassNameW() const
{
    return m_ClassName;
}

vfILStatus vfILImgProc::Execute()
{
    vfILStatus status = PrepareData();
    if (MustInterrupt() == 0 && status == VFIL_SUCCESS) status = ProcessData();
    const vfILStatus cleaned = CleanData();
    return status == VFIL_SUCCESS ? cleaned : status;
}

vfILStatus vfILImgProc::Verify()
{
    if (vfILProcessor::Verify() != VFIL_SUCCESS) return VFIL_FAILURE;
    if (m_outputImg == nullptr) return Fail(0x10002, GetClassNameW());
    const ImageView output(m_outputImg);
    if (!output.HasPixels()) return Fail(0x10003, GetClassNameW());
    if (m_defaultColor.Verify() != 1) return Fail(0x10004, GetClassNameW());
    if (m_maskImg != nullptr && VerifyMask() != VFIL_SUCCESS) return VFIL_FAILURE;

    const vfILBbox2l target = TargetBox(m_roi, m_outputOffset);
    if (!((target & output.Box()) == target)) return Fail(0x1000A, GetClassNameW());
    if (output.format->topDown && VerifyTopDown(output.Box()) != VFIL_SUCCESS) return VFIL_FAILURE;
    if (output.format->ycc && (GetProcessingMode() & VFIL_MODE_RGB) != VFIL_MODE_RGB) {
        return Fail(0x20002, GetClassNameW());
    }
    return VFIL_SUCCESS;
}

vfILStatus vfILImgProc::VerifyMask()
{
    const ImageView mask(m_maskImg);
    if (!mask.HasPixels()) return Fail(0x10005, GetClassNameW());
    if (mask.width != m_maskBox.GetSizeX() || mask.height != m_maskBox.GetSizeY()) {
        return Fail(0x10006, GetClassNameW());
    }
    const GUID format = FormatOf(m_maskImg);
    const bool mono = MonoFormats::Contains(format);
    if (!mono && !RgbaFormats::Contains(format)) return Fail(0x10007, GetClassNameW());
    const bool oneOfFour = m_maskChannel == PXImageChannel_RED || m_maskChannel == PXImageChannel_GREEN ||
                           m_maskChannel == PXImageChannel_BLUE || m_maskChannel == PXImageChannel_ALPHA;
    if (mono ? m_maskChannel != PXImageChannel_MONO : !oneOfFour) return Fail(0x10008, GetClassNameW());
    if (mask.channelBytes != ImageView(m_outputImg).channelBytes) return Fail(0x10009, GetClassNameW());
    return VFIL_SUCCESS;
}

vfILStatus vfILImgProc::VerifyTopDown(const vfILBbox2l& wholeOutput)
{
    // Both boxes have to start at (0, 0): an offset would name other memory rows than in the bottom-up
    // formats.
    if (!(m_roi == wholeOutput) || m_outputOffset[0] != 0 || m_outputOffset[1] != 0) {
        return Fail(0x10060, GetClassNameW());
    }
    if (m_maskImg != nullptr || !Covers(m_maskBox, wholeOutput)) return Fail(0x20001, GetClassNameW());
    return VFIL_SUCCESS;
}

void vfILImgProc::SetOutputImg(IPXImage* image)
{
    m_outputImg = image;
    if (image == nullptr || m_roiSet != 0) return;
    long width = 0;
    long height = 0;
    image->GetDimensions(&width, &height);
    m_roi.SetSize(width, height);
}

IPXImage* vfILImgProc::GetOutputImg() const
{
    return m_outputImg;
}

void vfILImgProc::SetROI(const vfILBbox2l& roi)
{
    m_roi = roi;
    m_roiSet = 1;
}

const vfILBbox2l& vfILImgProc::GetROI() const
{
    return m_roi;
}

void vfILImgProc::SetOutputOffset(const vfILVector2l& offset)
{
    m_outputOffset = offset;
}

const vfILVector2l& vfILImgProc::GetOutputOffset() const
{
    return m_outputOffset;
}

void vfILImgProc::SetDefaultColor(const vfILColor& color)
{
    m_defaultColor = color;
}

const vfILColor& vfILImgProc::GetDefaultColor() const
{
    return m_defaultColor;
}

void vfILImgProc::SetMask(const vfILBbox2l& box, IPXImage* mask, PXImageChannel channel)
{
    m_maskBox = box;
    m_maskImg = mask;
    m_maskChannel = channel;
}

void vfILImgProc::SetMask(long x, long y, unsigned long width, unsigned long height, IPXImage* mask,
                          PXImageChannel channel)
{
    SetMask(vfILBbox2l(x, y, static_cast<long>(width), static_cast<long>(height)), mask, channel);
}

const vfILBbox2l& vfILImgProc::GetMask(IPXImage** mask, PXImageChannel* channel) const
{
    if (mask != nullptr) *mask = m_maskImg;
    if (channel != nullptr) *channel = m_maskChannel;
    return m_maskBox;
}

IPXImage* vfILImgProc::GetMaskImg() const
{
    return m_maskImg;
}

GUID vfILImgProc::OutputFormat() const
{
    return FormatOf(m_outputImg);
}

vfILStatus vfILImgProc::FillOutputImage(const vfILColor& color)
{
    const vfILBbox2l target = TargetBox(m_roi, m_outputOffset);
    if (!((target & ImageView(m_outputImg).Box()) == target)) {
        return Fail(0x1000A,
                    "%s ERROR FillOutputImage: ROI and output offset does not fit into output image\n",
                    GetClassNameW());
    }
    FillOutput(vfILBbox2l(), target, color);
    return VFIL_SUCCESS;
}

void vfILImgProc::FillOutput(const vfILBbox2l& excluded, const vfILBbox2l& whole, const vfILColor& color)
{
    FillAround(m_outputImg, excluded, whole, color, {GetProcessingMode(), m_simdAvailable != 0});
}

void vfILImgProc::FillOutput(const vfILBbox2l& excluded, const vfILBbox2l& whole, void* const pixel)
{
    FillAround(m_outputImg, excluded, whole, pixel, {GetProcessingMode(), m_simdAvailable != 0});
}

void vfILImgProc::FillOutput(const vfILBbox2l& excluded, const vfILBbox2l& whole, void* const source,
                             unsigned long stride)
{
    FillAround(m_outputImg, excluded, whole, source, stride, {GetProcessingMode(), m_simdAvailable != 0});
}

void vfILImgProc::FillOutput(const vfILBbox2l& excluded, const vfILBbox2l& whole, IPXImage* const sourceImage,
                             const void* pixels, int premultiply, const vfILVector2l& offset)
{
    for (const vfILBbox2l& band : BandsAround(excluded, whole).band)
        FillRegionWithImage(m_outputImg, band, sourceImage, pixels, premultiply, offset);
}
