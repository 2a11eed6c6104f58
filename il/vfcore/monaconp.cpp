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
    if (GetInputImg() == GetOutputImg()) return Fail(0x10033, GetClassNameW());
    if (IsAllChannelProcessed() == 0) return Fail(0x20002, GetClassNameW());
    const vfILBbox2l whole = ImageView(GetInputImg()).Box();
    if (GetMaskImg() != nullptr || whole.IsNull() || !((GetROI() & whole) == whole)) {
        return Fail(0x20001, GetClassNameW());
    }
    return VFIL_SUCCESS;
}

namespace {

/// The rows of a box in a picture. Rows of a top-down format change their order, so that its box can only be
/// the whole. \return 0, or the code of what is wrong; \p noPixels is that of a picture without pixels.
unsigned long FindRows(const ImageView& image, const vfILBbox2l& box, unsigned long noPixels,
                       vfILRowWalk& walk)
{
    if (!image.HasPixels()) return noPixels;
    if (!Covers(image.Box(), box)) return 0x1000A;
    if (image.format->topDown && !(image.Box() == box)) return 0x10060;
    walk = image.Walk(box.GetOffsetX(), box.GetOffsetY());
    return 0;
}

} // namespace

vfILStatus vfILMonadicConvertProc::PrepareData()
{
    const ImageView from(GetInputImg());
    const ImageView to = ViewOf(GetOutputImg(), {from});
    if (GetInputImg() == nullptr) return Fail(0x1000B, GetClassNameW());
    if (GetInputImg() == GetOutputImg()) return Fail(0x10033, GetClassNameW());
    m_run.from = from;
    m_run.to = to;
    m_run.inputBox = GetROI() & from.Box();
    m_run.outputBox = Moved(m_run.inputBox, GetOutputOffset()[0] - std::int64_t{GetROI().GetOffsetX()},
                            GetOutputOffset()[1] - std::int64_t{GetROI().GetOffsetY()});
    if (m_run.inputBox.IsNull()) return VFIL_SUCCESS;
    unsigned long code = FindRows(from, m_run.inputBox, 0x1000C, m_run.input);
    if (code == 0) {
        const unsigned long noPixels = GetOutputImg() == nullptr ? 0x10002 : 0x10003;
        code = FindRows(to, m_run.outputBox, noPixels, m_run.output);
    }
    if (code != 0) return Fail(code, GetClassNameW());
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
    return m_run.from.format != nullptr ? m_run.from.format->id : FormatOf(GetInputImg());
}

GUID vfILMonadicConvertProc::OutputFormat() const
{
    return m_run.to.format != nullptr ? m_run.to.format->id : vfILMonadicImgProc::OutputFormat();
}
