/// \file
/// The frame of the operators that read a neighbourhood.

#include "il/loops/frame/fills.h"
#include "il/loops/frame/padding.h"
#include "il/loops/frame/pixelrun.h"
#include "il/loops/frame/rowloop.h"
#include "il/loops/frame/saturate.h"

#include "il/rows/levels.h"

#include <vfil/spatial.h>

#include <algorithm>
#include <limits>
#include <utility>

using namespace vfil;

namespace {

/// What the scratch of a band should not exceed, so that it stays in the cache.
constexpr std::int64_t kBandBytes = std::int64_t{256} << 10;
/// What is read between two questions for the interruption.
constexpr long kReadBytes = 1L << 22;
/// A band has at least so many times the kernel's rows: what neighbouring bands both read stays small.
constexpr std::int64_t kKernelsInBand = 8;

std::int64_t BandRows(std::int64_t rowBytes, std::int64_t kernelHeight)
{
    return std::max({kBandBytes / rowBytes, kKernelsInBand * kernelHeight, std::int64_t{1}});
}

/// True when writing to one picture may change the other.
bool ShareMemory(const ImageView& a, const ImageView& b)
{
    const auto first = [](const ImageView& view) { return reinterpret_cast<std::uintptr_t>(view.pixels); };
    const auto last = [first](const ImageView& view) {
        return first(view) + static_cast<std::uintptr_t>(view.RowBytes() * view.height);
    };
    return first(a) < last(b) && first(b) < last(a);
}

/// The run of the rows from \p first on, of a run whose scratch holds just them.
vfILWindowRun BandOf(const vfILWindowRun& whole, long first, long rows)
{
    vfILWindowRun band = whole;
    const vfILBbox2l& box = whole.processBox;
    band.processBox = {box.GetOffsetX(), box.GetOffsetY() + first, box.GetSizeX(), rows};
    band.output.first += first * whole.output.step;
    if (whole.mask.first != nullptr) band.mask.first += first * whole.mask.step;
    return band;
}

bool IsEdgeMode(vfILEdgeMode mode)
{
    return mode == VFIL_EDGE_COLOR || mode == VFIL_EDGE_WRAP || mode == VFIL_EDGE_CLAMP ||
           mode == VFIL_EDGE_MIRROR;
}

} // namespace

const wchar_t* const vfILMonadicSpatialProc::m_ClassName = L"vfILMonadicSpatialProc";

vfILMonadicSpatialProc::vfILMonadicSpatialProc() : m_edgeColor(GetDefaultColor())
{}

vfILMonadicSpatialProc::~vfILMonadicSpatialProc() = default;

const wchar_t* vfILMonadicSpatialProc::GetClassNameW() const
{
    return m_ClassName;
}

vfILStatus vfILMonadicSpatialProc::Verify()
{
    if (vfILMonadicImgProc::Verify() != VFIL_SUCCESS) return VFIL_FAILURE;
    if (!(FormatOf(GetInputImg()) == OutputFormat())) {
        return Fail(0x1000E, "%s ERROR: Verify: Input and Output image formats do not match\n",
                    GetClassNameW());
    }
    if (!IsRadiusValid()) {
        return Fail(0x10023, "%s ERROR Verify: Kernel radius is not in valid range\n", GetClassNameW());
    }
    if (!IsEdgeMode(m_edgeMode)) {
        return Fail(0x10020, GetClassNameW());
    }
    if (m_edgeMode == VFIL_EDGE_COLOR && m_edgeColor.Verify() != 1) {
        return Fail(0x10048, "%s ERROR Verify: Edge padding color is invalid\n", GetClassNameW());
    }
    return VFIL_SUCCESS;
}

vfILStatus vfILMonadicSpatialProc::VerifyFrame(const wchar_t* className)
{
    if (vfILMonadicSpatialProc::Verify() != VFIL_SUCCESS) return VFIL_FAILURE;
    if (PointFormats::Contains(OutputFormat())) return VFIL_SUCCESS;
    return Fail(0x1000D, className);
}

bool vfILMonadicSpatialProc::IsRadiusValid() const
{
    const auto isValid = [](double radius) { return radius >= 0 && radius <= 1073741824.9; };
    return isValid(m_radius[0]) && isValid(m_radius[1]);
}

vfILStatus vfILMonadicSpatialProc::PrepareData()
{
    return PrepareWindows(WholeRadius());
}

vfILStatus vfILMonadicSpatialProc::PrepareWindows(const vfILVector2l& radius)
{
    const ImageView input(ViewInput());
    const ImageView output = ViewOf(GetOutputImg(), {input});
    if (!AreConnected(input, output)) return Fail(WhyUnconnected(input, output), GetClassNameW());
    if (radius[0] < 0 || radius[1] < 0) return Fail(0x10023, GetClassNameW());
    const long pixelBytes = output.RowPixelBytes();
    if (pixelBytes < 1 || pixelBytes > long{sizeof ColourPixel::bytes}) return Fail(0x1000D, GetClassNameW());
    PXImageChannel channel{};
    const vfILBbox2l& maskBox = GetMask(nullptr, &channel);
    const ImageView mask = ViewOf(GetMaskImg(), {input, output});
    ComputeRegions(m_run, input.Box(), GetROI(), maskBox, GetOutputOffset());
    if (!PrepareMaskAndOutput(m_run, output, mask, maskBox, channel))
        return Fail(WhyUnprepared(m_run, mask), GetClassNameW());

    m_validBox = m_run.shiftedValidBox;
    m_outputBox = m_run.targetBox;
    m_maskedBox = m_run.processBox;
    m_validOutBox = m_run.shiftedValidBox;
    m_effectBox = m_run.maskedBox.IsNull() ? m_run.maskedBox : m_run.processBox;
    m_run.channels = GetProcessingMode() & VFIL_MODE_RGBA;
    if (PreparePassThrough() != VFIL_SUCCESS) return VFIL_FAILURE;
    if (!PrepareScratch(radius)) {
        return Fail(0x10001, "%s ERROR PrepareData: insufficient memory space\n", GetClassNameW());
    }
    SelectFieldRows();
    return VFIL_SUCCESS;
}

const vfILPictureView& vfILMonadicSpatialProc::ViewInput()
{
    m_run.inputPicture = ViewOf(GetInputImg(), {m_run.inputPicture});
    return m_run.inputPicture;
}

/// Keeps the pixels that are shown outside the mask's box, which a shifted run in place would overwrite.
vfILStatus vfILMonadicSpatialProc::PreparePassThrough()
{
    const bool isOutput = m_run.inputPicture.image == m_run.picture.image;
    const bool showsOutside = !(m_run.maskedBox == m_run.validBox);
    const bool hazard = isOutput && showsOutside && IsHazard(m_run.targetBox, GetROI());
    vfILRowWalk unpadded;
    switch (
        PrepareInput({m_run.inputPicture, m_run.validBox, m_run.maskedBox, isOutput, hazard, showsOutside},
                     m_run, unpadded, m_passThrough)) {
    case InputState::OutOfMemory:
        return Fail(0x10001, "%s ERROR PrepareData: insufficient memory space\n", GetClassNameW());
    case InputState::Unreadable:
        return Fail(0x1000C, "%s ERROR PrepareData: Input image cannot be read\n", GetClassNameW());
    case InputState::Ready:
        break;
    }
    return VFIL_SUCCESS;
}

bool vfILMonadicSpatialProc::PrepareScratch(const vfILVector2l& radius)
{
    const vfILBbox2l& effect = m_run.maskedBox;
    if (effect.IsNull()) return true;
    const std::int64_t kernelHeight = 2 * std::int64_t{radius[1]} + 1;
    const std::int64_t width = effect.GetSizeX() + 2 * std::int64_t{radius[0]};
    const std::int64_t height = effect.GetSizeY() + kernelHeight - 1;
    if (std::max(width, height) > std::numeric_limits<std::int32_t>::max()) return false;
    m_run.windowBox = {effect.GetOffsetX() - radius[0], effect.GetOffsetY() - radius[1],
                       static_cast<long>(width), static_cast<long>(height)};
    m_run.radiusX = radius[0];
    m_run.radiusY = radius[1];
    m_run.kernelWidth = 2 * m_run.radiusX + 1;
    m_run.kernelHeight = static_cast<long>(kernelHeight);

    const ImageView input(m_run.inputPicture);
    const bool shared = ShareMemory(input, m_run.picture);
    m_bandRows = effect.GetSizeY();
    if (m_readsInput) return PrepareInputRows(shared);
    const bool unpadded = !shared && Covers(input.Box(), m_run.windowBox);
    const std::int64_t rowBytes = width * input.RowPixelBytes();
    if (m_bandsAllowed && !shared && !unpadded)
        m_bandRows = static_cast<long>(std::min<std::int64_t>(m_bandRows, BandRows(rowBytes, kernelHeight)));
    const std::int64_t resultBytes = std::int64_t{effect.GetSizeX()} * input.RowPixelBytes();
    if (!AllocateScratch(rowBytes, unpadded ? 0 : m_bandRows + kernelHeight - 1, resultBytes)) return false;

    if (unpadded) {
        m_run.windows = input.Walk(m_run.windowBox.GetOffsetX(), m_run.windowBox.GetOffsetY());
    } else if (m_bandRows == effect.GetSizeY()) {
        FillScratch(0, m_bandRows);
    }
    m_run.centres = m_run.windows;
    m_run.centres.first += m_run.radiusY * m_run.centres.step + m_run.radiusX * input.RowPixelBytes();
    return true;
}

/// Gives the leaf the input, or a copy of what it may read of it.
bool vfILMonadicSpatialProc::PrepareInputRows(bool shared)
{
    const ImageView input(m_run.inputPicture);
    const vfILBbox2l read = shared && Covers(input.Box(), m_run.windowBox) ? m_run.windowBox : input.Box();
    const std::int64_t pixelBytes = input.RowPixelBytes();
    const std::int64_t rowBytes = read.GetSizeX() * pixelBytes;
    if (!AllocateScratch(rowBytes, shared ? read.GetSizeY() : 0, m_run.maskedBox.GetSizeX() * pixelBytes))
        return false;
    m_run.input = std::exchange(m_run.windows, {});
    m_run.inputSize = vfILVector2l(read.GetSizeX(), read.GetSizeY());
    if (shared) {
        Read(read, m_run.input.first);
    } else {
        m_run.input = input.Walk(0, 0);
    }
    m_run.windowBox =
        Moved(m_run.windowBox, -std::int64_t{read.GetOffsetX()}, -std::int64_t{read.GetOffsetY()});
    m_run.centres = m_run.input;
    m_run.centres.first += (m_run.windowBox.GetOffsetY() + m_run.radiusY) * m_run.input.step +
                           (m_run.windowBox.GetOffsetX() + m_run.radiusX) * pixelBytes;
    return true;
}

/// Makes room for rows of the padded input and one row of results, by one allocation.
bool vfILMonadicSpatialProc::AllocateScratch(std::int64_t rowBytes, std::int64_t rows,
                                             std::int64_t resultBytes)
{
    // Everything that lies in the scratch has to be within reach of a pointer difference.
    constexpr std::int64_t kMost = std::numeric_limits<std::ptrdiff_t>::max();
    if (resultBytes > kMost || rows > (kMost - resultBytes) / rowBytes) return false;
    unsigned char* scratch = m_scratch.Allocate(static_cast<std::size_t>(rows * rowBytes + resultBytes));
    if (scratch == nullptr) return false;
    m_run.windows = {scratch, static_cast<std::ptrdiff_t>(rowBytes), nullptr, 0};
    m_run.resultRow = scratch + rows * rowBytes;
    return true;
}

/// Reads what the windows of some effect rows cover to the scratch.
void vfILMonadicSpatialProc::FillScratch(long firstRow, long rows)
{
    const vfILBbox2l& whole = m_run.windowBox;
    const vfILBbox2l window(whole.GetOffsetX(), whole.GetOffsetY() + firstRow, whole.GetSizeX(),
                            rows + m_run.kernelHeight - 1);
    Read(window, m_run.windows.first);
}

/// Reads a window, in parts between which an interruption stops the run.
void vfILMonadicSpatialProc::Read(const vfILBbox2l& window, unsigned char* to)
{
    const ImageView input(m_run.inputPicture);
    const EdgeRule edge = EdgeRuleOf(*this, m_run);
    const long rowBytes = window.GetSizeX() * input.RowPixelBytes();
    const long rows = std::max(kReadBytes / rowBytes, 1L);
    for (long first = 0; first < window.GetSizeY() && !m_run.stopped; first += rows) {
        if (first != 0) m_run.stopped = MustInterrupt() != 0;
        const long count = std::min(rows, window.GetSizeY() - first);
        ReadWindow(input, {window.GetOffsetX(), window.GetOffsetY() + first, window.GetSizeX(), count}, edge,
                   m_simdAvailable != 0, to + std::ptrdiff_t{first} * rowBytes);
    }
}

/// Selects the treated rows of the process box.
void vfILMonadicSpatialProc::SelectFieldRows()
{
    const vfILBbox2l& box = m_run.processBox;
    const RowSelection rows = SelectField(GetProcessingMode(), box.GetOffsetY(), box.GetSizeY());
    m_run.firstRow = rows.skip;
    m_run.rowStep = rows.step;
    m_run.rows = rows.count;
    m_firstRowEven = (box.GetOffsetY() & 1) == 0 ? 1 : 0;
}

vfILStatus vfILMonadicSpatialProc::ProcessData()
{
    const FillRule rule{GetProcessingMode(), m_simdAvailable != 0};
    FillAround(m_run.picture, m_validBox, m_outputBox, GetDefaultColor(), rule);
    FillAround(m_run.picture, m_maskedBox, m_validOutBox, m_run.source, m_run.sourceStride, rule);
    if (m_effectBox.IsNull() || m_run.stopped) return VFIL_SUCCESS;
    return m_bandRows == m_effectBox.GetSizeY() ? DoEffect() : DoEffectInBands();
}

vfILStatus vfILMonadicSpatialProc::DoEffectInBands()
{
    const vfILWindowRun whole = m_run;
    const long height = whole.processBox.GetSizeY();
    vfILStatus status = VFIL_SUCCESS;
    for (long row = 0; row < height && status == VFIL_SUCCESS && !m_run.stopped; row += m_bandRows) {
        m_run = BandOf(whole, row, std::min(m_bandRows, height - row));
        SelectFieldRows();
        FillScratch(row, m_run.processBox.GetSizeY());
        if (!m_run.stopped) status = DoEffect();
    }
    return status;
}

vfILStatus vfILMonadicSpatialProc::CleanData()
{
    if (m_run.streaming) FinishStreaming();
    m_passThrough.Free();
    m_scratch.Free();
    m_run = {};
    return VFIL_SUCCESS;
}

void vfILMonadicSpatialProc::SetRadius(float r)
{
    SetRadius(r, r);
}

void vfILMonadicSpatialProc::SetRadius(float rx, float ry)
{
    m_radius = vfILVector2f(rx, ry);
}

void vfILMonadicSpatialProc::SetRadius(const vfILVector2f& radius)
{
    m_radius = radius;
}

const vfILVector2f& vfILMonadicSpatialProc::GetRadius() const
{
    return m_radius;
}

float vfILMonadicSpatialProc::GetRadiusX() const
{
    return m_radius[0];
}

float vfILMonadicSpatialProc::GetRadiusY() const
{
    return m_radius[1];
}

vfILVector2l vfILMonadicSpatialProc::WholeRadius() const
{
    return {TruncateToInt32(m_radius[0]), TruncateToInt32(m_radius[1])};
}

void vfILMonadicSpatialProc::SetEdgeMode(vfILEdgeMode mode)
{
    m_edgeMode = mode;
}

vfILEdgeMode vfILMonadicSpatialProc::GetEdgeMode() const
{
    return m_edgeMode;
}

void vfILMonadicSpatialProc::SetEdgeColor(const vfILColor& color)
{
    m_edgeColor = color;
}

const vfILColor& vfILMonadicSpatialProc::GetEdgeColor() const
{
    return m_edgeColor;
}

int vfILMonadicSpatialProc::SkipLine(int& parity, void** out, void** in, void** mask)
{
    const bool even = parity != 0;
    parity = even ? 0 : 1;
    if ((GetProcessingMode() & (even ? VFIL_MODE_ODD_ROWS : VFIL_MODE_EVEN_ROWS)) == 0) return 0;
    const auto moveOn = [](void** place, std::ptrdiff_t step) {
        *place = static_cast<unsigned char*>(*place) + step;
    };
    moveOn(out, m_run.output.step);
    moveOn(in, m_run.windows.step);
    if (mask != nullptr && m_run.mask.first != nullptr) moveOn(mask, m_run.mask.step);
    return 1;
}
