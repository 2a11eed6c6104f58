/// \file
/// The frame of one output pixel for one input pixel.

#include "il/loops/frame/pixelrun.h"
#include "il/loops/frame/rowloop.h"

#include "il/rows/levels.h"

#include <vfil/frame.h>

using namespace vfil;

const wchar_t* const vfILMonadicPixelProc::m_ClassName = L"vfILMonadicPixelProc";

vfILMonadicPixelProc::~vfILMonadicPixelProc() = default;

const wchar_t* vfILMonadicPixelProc::GetClassNameW() const
{
    return m_ClassName;
}

vfILStatus vfILMonadicPixelProc::Verify()
{
    if (vfILMonadicImgProc::Verify() != VFIL_SUCCESS) return VFIL_FAILURE;
    if (!(FormatOf(GetInputImg()) == OutputFormat())) {
        return Fail(0x1000E, "%s ERROR: Verify(): Input and output image formats do not match\n",
                    GetClassNameW());
    }
    return VFIL_SUCCESS;
}

vfILStatus vfILMonadicPixelProc::PrepareData()
{
    if (!AreConnected(GetInputImg(), GetOutputImg()))
        return Fail(WhyUnconnected(GetInputImg(), GetOutputImg()), GetClassNameW());
    PXImageChannel channel{};
    const vfILBbox2l& maskBox = GetMask(nullptr, &channel);
    ComputeRegions(m_run, ImageView(GetInputImg()).Box(), GetROI(), maskBox, GetOutputOffset());
    if (!PrepareMaskAndOutput(m_run, GetOutputImg(), GetMaskImg(), maskBox, channel))
        return Fail(WhyUnprepared(m_run, GetOutputImg(), GetMaskImg()), GetClassNameW());

    const bool isOutput = GetInputImg() == GetOutputImg();
    const bool hazard = isOutput && IsHazard(m_run.targetBox, GetROI());
    const bool showsOutside = !(m_run.maskedBox == m_run.validBox);
    const InputPart part{GetInputImg(), m_run.validBox, m_run.maskedBox, isOutput, hazard, showsOutside};
    if (!PrepareInput(part, m_run, m_input, m_buffer)) {
        return Fail(0x10001, "%s ERROR PrepareData: insufficient memory space\n", GetClassNameW());
    }
    m_firstRowEven = (m_run.processBox.GetOffsetY() & 1) == 0 ? 1 : 0;
    return m_run.processBox.IsNull() ? VFIL_SUCCESS : AdjustJumps();
}

vfILStatus vfILMonadicPixelProc::AdjustJumps()
{
    SelectRows(m_run, GetProcessingMode(), GetOutputImg(), {&m_input});
    return VFIL_SUCCESS;
}

vfILStatus vfILMonadicPixelProc::ProcessData()
{
    FillOutput(m_run.shiftedValidBox, m_run.targetBox, GetDefaultColor());
    FillOutput(m_run.processBox, m_run.shiftedValidBox, m_run.source, m_run.sourceStride);
    return m_run.processBox.IsNull() ? VFIL_SUCCESS : DoEffect();
}

vfILStatus vfILMonadicPixelProc::CleanData()
{
    if (m_run.streaming) FinishStreaming();
    m_buffer.Free();
    m_run = {};
    m_input = {};
    return VFIL_SUCCESS;
}

vfILStatus vfILMonadicPixelProc::DoEffect()
{
    PointFormats::Visit(OutputFormat(), [this](auto format) {
        using Sample = typename decltype(format)::Sample;
        RunPointOp<decltype(format)>(*this, m_run, m_input, [this](Sample value) -> Sample {
            if constexpr (sizeof(Sample) == 1) {
                return Operation8(value);
            } else {
                return Operation16(value);
            }
        });
    });
    return VFIL_SUCCESS;
}

unsigned char vfILMonadicPixelProc::Operation8(unsigned char value)
{
    return value;
}

unsigned short vfILMonadicPixelProc::Operation16(unsigned short value)
{
    return value;
}
