/// \file
/// The frame of the operators that make rows of rows.

#include "il/loops/field/fieldrows.h"
#include "il/loops/frame/fills.h"
#include "il/loops/frame/pixelrun.h"

#include "il/rows/levels.h"

using namespace vfil;

const wchar_t* const vfILFieldProc::m_ClassName = L"vfILFieldProc";

vfILFieldProc::vfILFieldProc()
{
    SetProcessingMode(VFIL_MODE_RGBA);
}

vfILFieldProc::vfILFieldProc(const vfILFieldProc& other)
    : vfILImgProc(other), m_inputImgA(other.m_inputImgA), m_inputImgB(other.m_inputImgB)
{
    SetProcessingMode(VFIL_MODE_RGBA);
}

// NOLINTNEXTLINE(bugprone-unhandled-self-assignment): nothing here is owned
vfILFieldProc& vfILFieldProc::operator=(const vfILFieldProc& other)
{
    // What a run knows stays with the processor that runs.
    vfILImgProc::operator=(other);
    m_inputImgA = other.m_inputImgA;
    m_inputImgB = other.m_inputImgB;
    return *this;
}

vfILFieldProc::~vfILFieldProc() = default;

const wchar_t* vfILFieldProc::GetClassNameW() const
{
    return m_ClassName;
}

vfILStatus vfILFieldProc::Execute()
{
    // The interrupt is not polled between the stages.
    vfILStatus status = Verify();
    if (status == VFIL_SUCCESS) status = PrepareData();
    if (status == VFIL_SUCCESS) status = ProcessData();
    const vfILStatus cleaned = CleanData();
    return status == VFIL_SUCCESS ? cleaned : status;
}

vfILStatus vfILFieldProc::VerifyMode(const wchar_t* className)
{
    // NOLINTNEXTLINE(bugprone-parent-virtual-call): the checks of vfILImgProc come in another order here
    if (vfILProcessor::Verify() != VFIL_SUCCESS) return VFIL_FAILURE;
    return IsAllChannelProcessed() != 0 ? VFIL_SUCCESS : Fail(0x20002, className);
}

vfILStatus vfILFieldProc::VerifyPixels(IPXImage* input, const wchar_t* className)
{
    if (input == nullptr) return Fail(0x1000B, className);
    return ImageView(input).HasPixels() ? VFIL_SUCCESS : Fail(0x1000C, className);
}

vfILStatus vfILFieldProc::VerifyOutput(const wchar_t* className)
{
    if (GetOutputImg() == nullptr) return Fail(0x10002, className);
    if (!ImageView(GetOutputImg()).HasPixels()) return Fail(0x10003, className);
    return OutputFormat() == FormatOf(m_inputImgA) ? VFIL_SUCCESS : Fail(0x1000E, className);
}

vfILStatus vfILFieldProc::VerifyRegion(const wchar_t* className)
{
    const vfILBbox2l target = TargetBox(GetROI(), GetOutputOffset());
    const bool fits = (target & ImageView(GetOutputImg()).Box()) == target;
    return fits ? VFIL_SUCCESS : Fail(0x1000A, className);
}

vfILStatus vfILFieldProc::VerifyOneInput(const wchar_t* className)
{
    if (VerifyMode(className) != VFIL_SUCCESS) return VFIL_FAILURE;
    if (VerifyPixels(m_inputImgA, className) != VFIL_SUCCESS) return VFIL_FAILURE;
    if (!IsFieldFormat(*ImageView(m_inputImgA).format)) return Fail(0x10034, className);
    if (VerifyOutput(className) != VFIL_SUCCESS) return VFIL_FAILURE;
    if (VerifyRegion(className) != VFIL_SUCCESS) return VFIL_FAILURE;
    return GetDefaultColor().Verify() == 1 ? VFIL_SUCCESS : Fail(0x10004, className);
}

vfILStatus vfILFieldProc::PrepareData()
{
    const ImageView output(GetOutputImg());
    const ImageView a = ViewOf(m_inputImgA, {output});
    const ImageView b = m_inputImgB == nullptr ? a : ViewOf(m_inputImgB, {output, a});
    if (!AreConnected(a, output)) return Fail(WhyUnconnected(a, output), GetClassNameW());
    if (!AreConnected(b, output)) return Fail(WhyUnconnected(b, output), GetClassNameW());
    m_run.validBox = a.Box() & b.Box() & GetROI();
    m_run.targetBox = TargetBox(GetROI(), GetOutputOffset());
    m_run.processBox = Moved(m_run.validBox, GetOutputOffset()[0] - std::int64_t{GetROI().GetOffsetX()},
                             GetOutputOffset()[1] - std::int64_t{GetROI().GetOffsetY()});
    if (!Covers(output.Box(), m_run.processBox)) return Fail(0x1000A, GetClassNameW());
    m_run.output = {output, m_run.processBox.GetOffsetX(), m_run.processBox.GetOffsetY()};
    m_run.a = {a, m_run.validBox.GetOffsetX(), m_run.validBox.GetOffsetY()};
    m_run.b = {b, m_run.validBox.GetOffsetX(), m_run.validBox.GetOffsetY()};
    m_firstRowEven = (m_run.output.y & 1) == 0 ? 1 : 0;
    if (m_run.validBox.IsNull() != 0) return VFIL_SUCCESS;
    m_run.rowBytes = static_cast<std::size_t>(m_run.validBox.GetSizeX() * output.RowPixelBytes());
    return PrepareInputs();
}

/// Sees to what a run would overwrite before it reads it.
vfILStatus vfILFieldProc::PrepareInputs()
{
    const auto rows = static_cast<std::size_t>(m_run.validBox.GetSizeY());
    const unsigned char* const out = m_run.output.picture.pixels;
    const bool isOutput[2] = {m_run.a.picture.pixels == out, m_run.b.picture.pixels == out};
    if (!isOutput[0] && !isOutput[1]) {
        m_run.streaming = rows * m_run.rowBytes >= kStreamingBytes;
        return VFIL_SUCCESS;
    }
    const bool moves = IsHazard(m_run.targetBox, GetROI()); // also where it takes the default colour
    unsigned char* const memory = m_buffer.Allocate((moves ? rows : 2) * m_run.rowBytes);
    if (memory == nullptr)
        return Fail(0x10001, "%s ERROR PrepareData: insufficient memory space\n", GetClassNameW());
    if (!moves) {
        m_run.held = memory;
        return VFIL_SUCCESS;
    }
    const RegionRows from(isOutput[0] ? m_run.a : m_run.b);
    for (std::size_t row = 0; row < rows; ++row)
        MoveRow(m_simdAvailable != 0, from[static_cast<long>(row)], memory + row * m_run.rowBytes,
                m_run.rowBytes);
    vfILFieldRows copy{m_run.output.picture};
    copy.picture.format = nullptr; // rows from the lowest up
    copy.picture.width = m_run.validBox.GetSizeX();
    copy.picture.height = m_run.validBox.GetSizeY();
    copy.picture.pixels = memory;
    if (isOutput[0]) m_run.a = copy;
    if (isOutput[1]) m_run.b = copy;
    return VFIL_SUCCESS;
}

vfILStatus vfILFieldProc::ProcessData()
{
    FillAround(m_run.output.picture, m_run.processBox, m_run.targetBox, GetDefaultColor(),
               {GetProcessingMode(), m_simdAvailable != 0});
    return m_run.processBox.IsNull() != 0 ? VFIL_SUCCESS : DoEffect();
}

vfILStatus vfILFieldProc::CleanData()
{
    if (m_run.streaming) FinishStreaming();
    m_buffer.Free();
    m_run = {};
    return VFIL_SUCCESS;
}
