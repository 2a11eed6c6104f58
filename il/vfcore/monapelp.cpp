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
    if (!(FormatOf(GetInputImg()) == OutputFormat())) return Fail(0x1000E, GetClassNameW());
    return VFIL_SUCCESS;
}

vfILStatus vfILMonadicPixelProc::PrepareData()
{
    const ImageView output(GetOutputImg());
    const ImageView input = ViewOf(GetInputImg(), {output});
    if (!AreConnected(input, output)) return Fail(WhyUnconnected(input, output), GetClassNameW());
    PXImageChannel channel{};
    const vfILBbox2l& maskBox = GetMask(nullptr, &channel);
    const ImageView mask = ViewOf(GetMaskImg(), {output, input});
    ComputeRegions(m_run, input.Box(), GetROI(), maskBox, GetOutputOffset());
    if (!PrepareMaskAndOutput(m_run, output, mask, maskBox, channel))
        return Fail(WhyUnprepared(m_run, mask), GetClassNameW());

    const bool isOutput = input.image == output.image;
    const bool hazard = isOutput && IsHazard(m_run.targetBox, GetROI());
    const bool showsOutside = !(m_run.maskedBox == m_run.validBox);
    switch (PrepareInput({input, m_run.validBox, m_run.maskedBox, isOutput, hazard, showsOutside}, m_run,
                         m_input, m_buffer)) {
    case InputState::OutOfMemory:
        return Fail(0x10001, "%s ERROR PrepareData: insufficient memory space\n", GetClassNameW());
    case InputState::Unreadable:
        return Fail(0x1000C, "%s ERROR PrepareData: Input image cannot be read\n", GetClassNameW());
    case InputState::Ready:
        break;
    }
    m_firstRowEven = (m_run.processBox.GetOffsetY() & 1) == 0 ? 1 : 0;
    return m_run.processBox.IsNull() ? VFIL_SUCCESS : AdjustJumps();
}

vfILStatus vfILMonadicPixelProc::AdjustJumps()
{
    SelectRows(m_run, GetProcessingMode(), {&m_input});
    return VFIL_SUCCESS;
}

vfILStatus vfILMonadicPixelProc::ProcessData()
{
    FillUntreated(m_run, GetDefaultColor(), {GetProcessingMode(), m_simdAvailable != 0});
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
    PointFormats::Visit(m_run.picture.format->id, [this](auto format) {
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
