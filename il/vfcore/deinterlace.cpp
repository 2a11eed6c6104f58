/// \file
/// Splitting a frame of two fields into two pictures.

#include "il/loops/field/deinterlacerun.h"
#include "il/loops/field/fieldrows.h"
#include "il/loops/field/fieldwalk.h"
#include "il/loops/frame/fills.h"
#include "il/loops/frame/regions.h"
#include "il/loops/frame/rowcopy.h"

#include "il/rows/levels.h"

#include <vfil/fields.h>

#include <algorithm>

using namespace vfil;

const wchar_t* const vfILDeinterlace::m_ClassName = L"vfILDeinterlace";

vfILDeinterlace::vfILDeinterlace() : m_roi(0, 0, -1, -1), m_defaultColor(0.0, 0.0, 0.0, 0.0)
{
    SetProcessingMode(VFIL_MODE_RGBA);
}

vfILDeinterlace::vfILDeinterlace(const vfILDeinterlace& other) : vfILDeinterlace()
{
    *this = other;
}

vfILDeinterlace& vfILDeinterlace::operator=(const vfILDeinterlace& other) = default;

vfILDeinterlace::~vfILDeinterlace() = default;

const wchar_t* vfILDeinterlace::GetClassNameW() const
{
    return m_ClassName;
}

IPXImage* vfILDeinterlace::GetInputImg() const
{
    return m_inputImg;
}

void vfILDeinterlace::SetInputImg(IPXImage* image)
{
    m_inputImg = image;
}

void vfILDeinterlace::TakeSizeOf(IPXImage* output)
{
    if (output == nullptr || m_roiSet != 0) return;
    long width = 0;
    long height = 0;
    output->GetDimensions(&width, &height);
    m_roi.SetSize(width, height);
}

IPXImage* vfILDeinterlace::GetOutputImgA() const
{
    return m_outputImgs[0];
}

void vfILDeinterlace::SetOutputImgA(IPXImage* image)
{
    m_outputImgs[0] = image;
    TakeSizeOf(image);
}

IPXImage* vfILDeinterlace::GetOutputImgB() const
{
    return m_outputImgs[1];
}

void vfILDeinterlace::SetOutputImgB(IPXImage* image)
{
    m_outputImgs[1] = image;
    TakeSizeOf(image);
}

IPXImage* vfILDeinterlace::GetCompImgA() const
{
    return m_compImgs[0];
}

void vfILDeinterlace::SetCompImgA(IPXImage* image)
{
    m_compImgs[0] = image;
}

IPXImage* vfILDeinterlace::GetCompImgB() const
{
    return m_compImgs[1];
}

void vfILDeinterlace::SetCompImgB(IPXImage* image)
{
    m_compImgs[1] = image;
}

void vfILDeinterlace::SetROI(const vfILBbox2l& roi)
{
    m_roi = roi;
    m_roiSet = 1;
}

const vfILBbox2l& vfILDeinterlace::GetROI() const
{
    return m_roi;
}

void vfILDeinterlace::SetOutputOffset(const vfILVector2l& offset)
{
    m_outputOffset = offset;
}

const vfILVector2l& vfILDeinterlace::GetOutputOffset() const
{
    return m_outputOffset;
}

void vfILDeinterlace::SetInterpolationType(vfILInterpolationType type)
{
    m_interpolationType = type;
}

vfILInterpolationType vfILDeinterlace::GetInterpolationType() const
{
    return m_interpolationType;
}

void vfILDeinterlace::SetMinThreshold(double threshold)
{
    m_minThreshold = threshold;
}

double vfILDeinterlace::GetMinThreshold() const
{
    return m_minThreshold;
}

void vfILDeinterlace::SetMaxThreshold(double threshold)
{
    m_maxThreshold = threshold;
}

double vfILDeinterlace::GetMaxThreshold() const
{
    return m_maxThreshold;
}

const vfILColor& vfILDeinterlace::GetDefaultColor() const
{
    return m_defaultColor;
}

void vfILDeinterlace::SetDefaultColor(const vfILColor& color)
{
    m_defaultColor = color;
}

void vfILDeinterlace::FillOutput(const vfILBbox2l& excluded, const vfILBbox2l& whole, const vfILColor& color)
{
    for (IPXImage* const output : m_outputImgs)
        FillAround(output, excluded, whole, color, {GetProcessingMode(), m_simdAvailable != 0});
}

bool vfILDeinterlace::IsAdaptive() const
{
    return m_interpolationType != VFIL_DEINTERLACE_DUPLICATE &&
           m_interpolationType != VFIL_DEINTERLACE_INTERPOLATE;
}

vfILStatus vfILDeinterlace::Execute()
{
    vfILStatus status = Verify();
    if (status == VFIL_SUCCESS) status = PrepareData();
    if (status == VFIL_SUCCESS) status = ProcessData();
    const vfILStatus cleaned = CleanData();
    return status == VFIL_SUCCESS ? cleaned : status;
}

namespace {

bool IsShare(double value)
{
    return value >= 0.0 && value <= 1.0; // false for NaN
}

bool ShareMemory(const ImageView& a, const ImageView& b)
{
    const auto first = [](const ImageView& view) { return reinterpret_cast<std::uintptr_t>(view.pixels); };
    const auto end = [&](const ImageView& view) {
        return first(view) + static_cast<std::uintptr_t>(view.RowBytes() * view.height);
    };
    return a.HasPixels() && b.HasPixels() && first(a) < end(b) && first(b) < end(a);
}

} // namespace

vfILStatus vfILDeinterlace::Verify()
{
    if (vfILProcessor::Verify() != VFIL_SUCCESS) return VFIL_FAILURE;
    if (IsAllChannelProcessed() == 0) return Fail(0x20002, GetClassNameW());
    if (m_inputImg == nullptr) return Fail(0x1000B, GetClassNameW());
    const ImageView input(m_inputImg);
    if (!input.HasPixels()) return Fail(0x1000C, GetClassNameW());
    if (m_outputImgs[0] == nullptr && m_outputImgs[1] == nullptr) return Fail(0x10002, GetClassNameW());
    if (!IsFieldFormat(*input.format)) return Fail(0x10034, GetClassNameW());
    if (VerifyOutputs() != VFIL_SUCCESS) return VFIL_FAILURE;
    if (IsAdaptive() && VerifyComparisons() != VFIL_SUCCESS) return VFIL_FAILURE;
    return VerifyParameters();
}

vfILStatus vfILDeinterlace::VerifyOutputs()
{
    const vfILBbox2l target = TargetBox(m_roi, m_outputOffset);
    for (IPXImage* const image : m_outputImgs) {
        if (image == nullptr) continue;
        const ImageView output(image);
        if (!output.HasPixels()) return Fail(0x10003, GetClassNameW());
        if (!(FormatOf(image) == FormatOf(m_inputImg))) return Fail(0x1000E, GetClassNameW());
        if (!((target & output.Box()) == target)) return Fail(0x1000A, GetClassNameW());
    }
    return VFIL_SUCCESS;
}

vfILStatus vfILDeinterlace::VerifyComparisons()
{
    for (int output = 0; output < 2; ++output) {
        if (m_outputImgs[output] == nullptr) continue;
        const ImageView compared(m_compImgs[output]);
        if (!compared.HasPixels())
            return Fail(0x1000C, "%s ERROR Verify: Comparison image pixel array is NULL\n", GetClassNameW());
        if (!(FormatOf(compared.image) == FormatOf(m_inputImg)))
            return Fail(0x1000E, "%s ERROR Verify: Input and comparison image formats do not match\n",
                        GetClassNameW());
        if (!(compared.Box() == ImageView(m_inputImg).Box())) return Fail(0x1003D, GetClassNameW());
    }
    return VFIL_SUCCESS;
}

vfILStatus vfILDeinterlace::VerifyParameters()
{
    if (m_defaultColor.Verify() != 1) return Fail(0x10004, GetClassNameW());
    if (IsAdaptive() && m_interpolationType != VFIL_DEINTERLACE_ADAPTIVE)
        return Fail(0x1000F, GetClassNameW());
    if (!IsShare(m_minThreshold) || !IsShare(m_maxThreshold) || m_minThreshold > m_maxThreshold)
        return Fail(0x10046, GetClassNameW());
    return VFIL_SUCCESS;
}

vfILStatus vfILDeinterlace::PrepareData()
{
    m_run = {};
    const ImageView input(m_inputImg);
    const vfILBbox2l valid = input.Box() & m_roi;
    if (valid.IsNull()) return VFIL_SUCCESS;

    m_run.placedBox = Moved(valid, std::int64_t{m_outputOffset[0]} - m_roi.GetOffsetX(),
                            std::int64_t{m_outputOffset[1]} - m_roi.GetOffsetY());
    m_run.rows = valid.GetSizeY();
    m_run.rowBytes = static_cast<std::size_t>(valid.GetSizeX() * input.RowPixelBytes());
    m_run.sampleBytes = input.format->sampleBytes;
    m_run.firstRowEven = (WalkedRow(input, FirstWalked(input, valid)) & 1) == 0;
    m_run.input = WalkOf(input, valid);
    const bool isMoved = PlaceOutputs(valid);
    return ReadInput(valid, isMoved);
}

/// True when an output is the input, but at another place.
bool vfILDeinterlace::PlaceOutputs(const vfILBbox2l& valid)
{
    const ImageView input(m_inputImg);
    const ImageView outputs[2] = {m_outputImgs[0], m_outputImgs[1]};
    bool isMoved = false;
    std::size_t written = 0;
    for (int i = 0; i < 2; ++i) {
        const ImageView& output = outputs[i];
        if (!output.HasPixels()) continue;
        m_run.outputs[i] = WalkOf(output, m_run.placedBox);
        written += m_run.rowBytes * static_cast<std::size_t>(m_run.rows);
        if (ShareMemory(output, input)) {
            const bool inPlace = output.pixels == input.pixels && output.Box() == input.Box() &&
                                 TargetBox(m_roi, m_outputOffset) == valid;
            isMoved = isMoved || !inPlace;
            m_run.apart = m_run.apart && !inPlace;
        }
        if (IsAdaptive()) {
            const ImageView compared(m_compImgs[i]);
            m_run.comparisons[i] = WalkOf(compared, valid);
            if (ShareMemory(compared, outputs[0]) || ShareMemory(compared, outputs[1])) m_run.apart = false;
        }
    }
    if (ShareMemory(outputs[0], outputs[1])) m_run.apart = false;
    m_run.streaming = m_run.apart && written >= kStreamingBytes;
    return isMoved;
}

/// Reads the rows beside the region, and all of it where it is going to be written elsewhere.
vfILStatus vfILDeinterlace::ReadInput(const vfILBbox2l& valid, bool copiesRegion)
{
    const std::size_t copied = copiesRegion ? static_cast<std::size_t>(m_run.rows) : 0;
    unsigned char* const rows = m_scratch.Allocate(m_run.rowBytes * (2 + copied));
    if (rows == nullptr) {
        return Fail(0x10001, "%s ERROR PrepareData: insufficient memory space\n", GetClassNameW());
    }
    const ImageView input(m_inputImg);
    const long first = FirstWalked(input, valid);
    const long next = first + m_run.rows;
    const long above = first == 0 ? std::min(1L, input.height - 1) : first - 1;
    const long below = next == input.height ? std::max(input.height - 2, 0L) : next;
    const auto read = [&](long walked, unsigned char* to) {
        return m_inputImg->ReadRegion(to, valid.GetOffsetX(), WalkedRow(input, walked), valid.GetSizeX(),
                                      1) >= 0;
    };
    if (!read(above, rows) || !read(below, rows + m_run.rowBytes)) {
        return Fail(0x1000C, "%s ERROR PrepareData: Input image cannot be read\n", GetClassNameW());
    }
    m_run.above = rows;
    m_run.below = rows + m_run.rowBytes;
    if (copiesRegion) {
        const vfILFieldWalk copy = WalkOf(rows + 2 * m_run.rowBytes, m_run.rowBytes);
        for (long row = 0; row < m_run.rows; ++row)
            MoveRow(m_simdAvailable != 0, RowAt(m_run.input, row), RowAt(copy, row), m_run.rowBytes);
        m_run.input = copy;
    }
    return VFIL_SUCCESS;
}

vfILStatus vfILDeinterlace::ProcessData()
{
    FillOutput(m_run.placedBox, TargetBox(m_roi, m_outputOffset), m_defaultColor);
    return m_run.rows == 0 ? VFIL_SUCCESS : DoEffect();
}

vfILStatus vfILDeinterlace::DoEffect()
{
    Deinterlace(*this, m_run, {m_interpolationType, m_minThreshold, m_maxThreshold, m_simdAvailable != 0});
    return VFIL_SUCCESS;
}

vfILStatus vfILDeinterlace::CleanData()
{
    m_scratch.Free();
    m_run = {};
    return VFIL_SUCCESS;
}

long vfILDeinterlaceFields(IPXImage* in, IPXImage* outA, IPXImage* outB, vfILInterpolationType type,
                           IPXImage* compA, IPXImage* compB, double minThreshold, double maxThreshold)
{
    vfILDeinterlace processor;
    processor.SetInputImg(in);
    processor.SetOutputImgA(outA);
    processor.SetOutputImgB(outB);
    processor.SetInterpolationType(type);
    if (type == VFIL_DEINTERLACE_ADAPTIVE) {
        processor.SetCompImgA(compA);
        processor.SetCompImgB(compB);
        processor.SetMinThreshold(minThreshold);
        processor.SetMaxThreshold(maxThreshold);
    }
    constexpr std::int32_t kFailure = -0x7FFFBFFB; // 0x80004005
    return processor.Execute() == VFIL_SUCCESS ? 0 : kFailure;
}
