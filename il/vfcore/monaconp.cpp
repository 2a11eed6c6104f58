/// \file
/// The frame of the converters.

#include "il/loops/frame/imageview.h"
#include "il/loops/frame/regions.h"

#include "il/rows/levels.h"

#include <vfil/convert.h>

using namespace vfil;

const wchar_t* const vfILMonadicConvertProc::m_ClassName = L"vfILMonadicConvertProc";

vfILMonadicConvertProc::vfILMonadicConvertProc()
{
    Init();
}

vfILMonadicConvertProc::vfILMonadicConvertProc(const vfILMonadicConvertProc& other)
    : vfILMonadicImgProc(other)
{
    Init();
}

vfILMonadicConvertProc& vfILMonadicConvertProc::operator=(const vfILMonadicConvertProc& other)
{
    // Results of a run and of GetConvertedColor stay where they were made.
    vfILMonadicImgProc::operator=(other);
    return *this;
}

vfILMonadicConvertProc::~vfILMonadicConvertProc() = default;

void vfILMonadicConvertProc::Init()
{
    SetProcessingMode(VFIL_MODE_RGBA);
}

const wchar_t* vfILMonadicConvertProc::GetClassNameW() const
{
    return m_ClassName;
}

vfILStatus vfILMonadicConvertProc::Verify()
{
    if (vfILMonadicImgProc::Verify() != VFIL_SUCCESS) return VFIL_FAILURE;
    if (GetInputImg() == GetOutputImg()) {
        return Fail(0x10033, "%s ERROR Verify: Input and output images must be different\n", GetClassNameW());
    }
    if (IsAllChannelProcessed() == 0) {
        return Fail(0x20002, "%s WARNING Verify: Specified channels cannot be processed\n", GetClassNameW());
    }
    const vfILBbox2l whole = ImageView(GetInputImg()).Box();
    if (GetMaskImg() != nullptr || whole.IsNull() || !((GetROI() & whole) == whole)) {
        return Fail(0x20001, "%s WARNING Verify: Mask are not allowed\n", GetClassNameW());
    }
    return VFIL_SUCCESS;
}

namespace {

/// The rows of a box in a picture. Rows of a top-down format change their order, so that its box can only be
/// the whole.
bool FindRows(const ImageView& image, const vfILBbox2l& box, vfILRowWalk& walk)
{
    if (!image.HasPixels() || !Covers(image.Box(), box)) return false;
    if (image.format->topDown && !(image.Box() == box)) return false;
    walk = image.Walk(box.GetOffsetX(), box.GetOffsetY());
    return true;
}

} // namespace

vfILStatus vfILMonadicConvertProc::PrepareData()
{
    const ImageView from(GetInputImg());
    const ImageView to(GetOutputImg());
    if (GetInputImg() == nullptr || GetInputImg() == GetOutputImg()) return VFIL_FAILURE;
    m_run.inputBox = GetROI() & from.Box();
    m_run.outputBox = Moved(m_run.inputBox, GetOutputOffset()[0] - std::int64_t{GetROI().GetOffsetX()},
                            GetOutputOffset()[1] - std::int64_t{GetROI().GetOffsetY()});
    if (m_run.inputBox.IsNull()) return VFIL_SUCCESS;
    if (!FindRows(from, m_run.inputBox, m_run.input)) return VFIL_FAILURE;
    if (!FindRows(to, m_run.outputBox, m_run.output)) return VFIL_FAILURE;
    m_run.width = m_run.inputBox.GetSizeX();
    m_run.rows = m_run.inputBox.GetSizeY();
    m_run.streaming = std::int64_t{to.RowPixelBytes()} * m_run.width * m_run.rows >=
                      static_cast<std::int64_t>(kStreamingBytes);
    return VFIL_SUCCESS;
}

vfILStatus vfILMonadicConvertProc::ProcessData()
{
    return m_run.rows == 0 ? VFIL_SUCCESS : DoEffect();
}

vfILStatus vfILMonadicConvertProc::CleanData()
{
    if (m_run.streaming) FinishStreaming();
    m_run = {};
    return VFIL_SUCCESS;
}

GUID vfILMonadicConvertProc::InputFormat() const
{
    return FormatOf(GetInputImg());
}
