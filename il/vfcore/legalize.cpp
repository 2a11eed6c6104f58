/// \file
/// The legalizer of 4:2:2 video.

#include "il/loops/frame/innerrun.h"
#include "il/loops/frame/pixelrun.h"
#include "il/loops/frame/rowcopy.h"
#include "il/loops/frame/rowloop.h"
#include "il/loops/treat/legalsetup.h"
#include "il/rows/treat/legalrows.h"

#include <vfil/treat.h>

using namespace vfil;

namespace {

bool IsLegalizable(const vfILFormatInfo& format)
{
    return RgbaFormats::Contains(format.id) || (format.subsampled && !format.alphaPlane);
}

} // namespace

const wchar_t* const vfILLegalizeImg::m_ClassName = L"vfILLegalizeImg";

vfILLegalizeImg::~vfILLegalizeImg() = default;

const wchar_t* vfILLegalizeImg::GetClassNameW() const
{
    return m_ClassName;
}

vfILStatus vfILLegalizeImg::Verify()
{
    if (vfILMonadicPixelProc::Verify() != VFIL_SUCCESS) return VFIL_FAILURE;
    const vfILFormatInfo* format = vfILFindFormat(OutputFormat());
    if (format == nullptr || !IsLegalizable(*format)) return Fail(0x1000D, GetClassNameW());
    if (!IsKnownMode()) return Fail(0x10063, GetClassNameW());
    if (!(m_luminanceAdjustFactor >= 0 && m_luminanceAdjustFactor <= 100))
        return Fail(0x10064, GetClassNameW());
    return VFIL_SUCCESS;
}

bool vfILLegalizeImg::IsKnownMode() const
{
    return m_mode >= VFIL_LEGALIZE_CLIP && m_mode <= VFIL_LEGALIZE_SHOW_ILLEGAL;
}

vfILStatus vfILLegalizeImg::ProcessData()
{
    // What shows RGBA is a whole processor. The frame's fills before it would reach an input in their place.
    if (m_mode == VFIL_LEGALIZE_SHOW_ILLEGAL && RgbaFormats::Contains(FormatOf(Run()))) return ShowRGBA();
    return vfILMonadicPixelProc::ProcessData();
}

vfILStatus vfILLegalizeImg::DoEffect()
{
    const vfILFormatInfo& format = *Run().picture.format;
    if (!IsLegalizable(format)) return Fail(0x1000D, GetClassNameW());
    if (!IsKnownMode()) return Fail(0x10063, GetClassNameW());
    if (!format.subsampled) return ProcessRGBA();
    return ProcessYCC422(format.model, format.chromaFirst ? 1 : 0);
}

vfILStatus vfILLegalizeImg::ProcessRGBA()
{
    const vfILPixelRun& run = Run();
    const auto width = static_cast<std::size_t>(run.processBox.GetSizeX());
    const std::size_t bytes = width * static_cast<std::size_t>(ImageView(run.picture).RowPixelBytes());
    // Whatever the mask and the mode's channels are: nothing is changed.
    ForEachRow(*this, run.rows, [&](long row) {
        MoveRow(m_simdAvailable != 0, RowOf<unsigned char>(InputWalk(), row),
                RowOf<unsigned char>(run.output, row), bytes, run.streaming);
    });
    return VFIL_SUCCESS;
}

vfILStatus vfILLegalizeImg::ShowRGBA()
{
    vfILColorCorrectionImg grey;
    grey.SetInputImg(GetInputImg());
    grey.SetOutputImg(GetOutputImg());
    grey.SetROI(GetROI());
    grey.SetOutputOffset(GetOutputOffset());
    IPXImage* mask = nullptr;
    PXImageChannel channel{};
    const vfILBbox2l& maskBox = GetMask(&mask, &channel);
    grey.SetMask(maskBox, mask, channel);
    grey.SetProcessingMode(GetProcessingMode());
    grey.SetDefaultColor(GetDefaultColor());
    grey.SetSaturation(0);
    grey.SetGain(50);
    const SharedInterruption interruption(*this, grey);
    const vfILStatus status = grey.Execute();
    if (status != VFIL_SUCCESS) SetLastError(grey.GetLastError());
    return status;
}

vfILStatus vfILLegalizeImg::ProcessYCC422(PXColorModel model, int alternate)
{
    const vfILPixelRun& run = Run();
    const LegalParams params = LegalParamsOf(model, m_luminanceAdjustFactor);
    const auto rule = static_cast<LegalRule>(m_mode - VFIL_LEGALIZE_CLIP);
    const LegalRow treat =
        FindLegalRow({rule, m_strictPairs != 0, alternate != 0, m_simdAvailable != 0, run.streaming});
    const auto pairs = static_cast<std::size_t>(run.processBox.GetSizeX() / 2);
    ForEachRow(*this, run.rows, [&](long row) {
        treat(RowOf<const unsigned char>(InputWalk(), row), RowOf<unsigned char>(run.output, row), pairs,
              params);
    });
    return VFIL_SUCCESS;
}

vfILLegalizeMode vfILLegalizeImg::GetMode() const
{
    return m_mode;
}

void vfILLegalizeImg::SetMode(vfILLegalizeMode mode)
{
    m_mode = mode;
}

double vfILLegalizeImg::GetLuminanceAdjustFactor() const
{
    return m_luminanceAdjustFactor;
}

void vfILLegalizeImg::SetLuminanceAdjustFactor(double factor)
{
    m_luminanceAdjustFactor = factor;
}

int vfILLegalizeImg::GetStrictPairs() const
{
    return m_strictPairs;
}

void vfILLegalizeImg::SetStrictPairs(int strict)
{
    m_strictPairs = strict;
}
