/// \file
/// The frame of one output pixel for two input pixels.

#include "il/loops/frame/pixelrun.h"
#include "il/loops/frame/rowloop.h"

#include "il/rows/levels.h"

#include <vfil/frame.h>

using namespace vfil;

const wchar_t* const vfILDyadicPixelProc::m_ClassName = L"vfILDyadicPixelProc";

vfILDyadicPixelProc::~vfILDyadicPixelProc() = default;

const wchar_t* vfILDyadicPixelProc::GetClassNameW() const
{
    return m_ClassName;
}

vfILStatus vfILDyadicPixelProc::Verify()
{
    if (vfILDyadicImgProc::Verify() != VFIL_SUCCESS) return VFIL_FAILURE;
    const GUID output = OutputFormat();
    if (!(FormatOf(GetInputImgA()) == output) || !(FormatOf(GetInputImgB()) == output)) {
        return Fail(0x1000E, GetClassNameW());
    }
    return VFIL_SUCCESS;
}

bool vfILDyadicPixelProc::IsDominantB() const
{
    return GetDominantInput() != nullptr && GetDominantInput() != GetInputImgA();
}

vfILLayerRun vfILDyadicPixelProc::Layers() const
{
    return {m_run, m_inputA, m_inputB, IsDominantB(), m_simdAvailable != 0};
}

vfILStatus vfILDyadicPixelProc::PrepareData()
{
    const ImageView output(GetOutputImg());
    const ImageView inputA = ViewOf(GetInputImgA(), {output});
    const ImageView inputB = ViewOf(GetInputImgB(), {output, inputA});
    if (!AreConnected(inputA, output))
        return Fail(WhyUnconnected(inputA, output, 0x10013, 0x10015), GetClassNameW());
    if (!AreConnected(inputB, output))
        return Fail(WhyUnconnected(inputB, output, 0x10014, 0x10016), GetClassNameW());
    const bool dominantB = IsDominantB();
    const vfILVector2l& offset = GetInputOffset();
    const vfILBbox2l boxA = inputA.Box();
    const vfILBbox2l boxB = Moved(inputB.Box(), offset[0], offset[1]);
    PXImageChannel channel{};
    const vfILBbox2l& maskBox = GetMask(nullptr, &channel);
    ComputeRegions(m_run, dominantB ? boxB : boxA, dominantB ? boxA : boxB, GetROI(), maskBox,
                   GetOutputOffset());
    const ImageView mask = ViewOf(GetMaskImg(), {output, inputA, inputB});
    if (!PrepareMaskAndOutput(m_run, output, mask, maskBox, channel))
        return Fail(WhyUnprepared(m_run, mask), GetClassNameW());

    // Each input sees the plane's boxes in coordinates of its own: B's are moved back by its offset.
    const bool showsOutside = !(m_run.processBox == m_run.shiftedValidBox);
    const auto prepare = [&](const ImageView& input, bool dominant, std::int64_t dx, std::int64_t dy,
                             vfILRowWalk& walk, vfILRunBuffer& buffer) {
        const bool isOutput = input.image == output.image;
        const bool hazard = isOutput && IsHazard(m_run.targetBox, Moved(GetROI(), dx, dy));
        const InputPart part{input,  Moved(m_run.validBox, dx, dy), Moved(m_run.maskedBox, dx, dy), isOutput,
                             hazard, dominant && showsOutside};
        return PrepareInput(part, m_run, walk, buffer);
    };
    const InputState stateA = prepare(inputA, !dominantB, 0, 0, m_inputA, m_bufferA);
    const InputState stateB =
        prepare(inputB, dominantB, -std::int64_t{offset[0]}, -std::int64_t{offset[1]}, m_inputB, m_bufferB);
    if (stateA == InputState::OutOfMemory || stateB == InputState::OutOfMemory)
        return Fail(0x10001, "%s ERROR PrepareData: insufficient memory space\n", GetClassNameW());
    if (stateA == InputState::Unreadable)
        return Fail(0x10015, "%s ERROR PrepareData: Input image A cannot be read\n", GetClassNameW());
    if (stateB == InputState::Unreadable)
        return Fail(0x10016, "%s ERROR PrepareData: Input image B cannot be read\n", GetClassNameW());
    m_firstRowEven = (m_run.processBox.GetOffsetY() & 1) == 0 ? 1 : 0;
    return m_run.processBox.IsNull() ? VFIL_SUCCESS : AdjustJumps();
}

vfILStatus vfILDyadicPixelProc::AdjustJumps()
{
    SelectRows(m_run, GetProcessingMode(), {&m_inputA, &m_inputB});
    return VFIL_SUCCESS;
}

vfILStatus vfILDyadicPixelProc::ProcessData()
{
    FillUntreated(m_run, GetDefaultColor(), {GetProcessingMode(), m_simdAvailable != 0});
    return m_run.processBox.IsNull() ? VFIL_SUCCESS : DoEffect();
}

vfILStatus vfILDyadicPixelProc::CleanData()
{
    if (m_run.streaming) FinishStreaming();
    m_bufferA.Free();
    m_bufferB.Free();
    m_run = {};
    m_inputA = {};
    m_inputB = {};
    return VFIL_SUCCESS;
}

vfILStatus vfILDyadicPixelProc::DoEffect()
{
    PointFormats::Visit(m_run.picture.format->id, [this](auto format) {
        using Sample = typename decltype(format)::Sample;
        RunPairOp<decltype(format)>(*this, m_run, m_inputA, m_inputB, [this](Sample a, Sample b) -> Sample {
            if constexpr (sizeof(Sample) == 1) {
                return Operation8(a, b);
            } else {
                return Operation16(a, b);
            }
        });
    });
    return VFIL_SUCCESS;
}

unsigned char vfILDyadicPixelProc::Operation8(unsigned char a, [[maybe_unused]] unsigned char b)
{
    return a;
}

unsigned short vfILDyadicPixelProc::Operation16(unsigned short a, [[maybe_unused]] unsigned short b)
{
    return a;
}
