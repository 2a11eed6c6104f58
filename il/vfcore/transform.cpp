/// \file
/// The frame of the transforms of one input: what is common to all runs.

#include "il/loops/frame/colourpixel.h"
#include "il/loops/frame/fills.h"
#include "il/loops/frame/pixelrun.h"
#include "il/loops/frame/rowloop.h"
#include "il/loops/transform/effectbox.h"
#include "il/loops/transform/sampling.h"

#include <vfil/transform.h>

#include <algorithm>
#include <cstring>
#include <utility>

using namespace vfil;

const wchar_t* const vfILMonadicTransformProc::m_ClassName = L"vfILMonadicTransformProc";

vfILMonadicTransformProc::vfILMonadicTransformProc()
{
    Init();
}

vfILMonadicTransformProc::vfILMonadicTransformProc(const vfILMonadicTransformProc& other)
    : vfILMonadicImgProc(other), vfILTransformBase(other)
{
    Init();
    *this = other;
}

// What belongs to a run stays with its object.
vfILMonadicTransformProc& vfILMonadicTransformProc::operator=(const vfILMonadicTransformProc& other)
{
    if (this == &other) return *this;
    vfILMonadicImgProc::operator=(other);
    vfILTransformBase::operator=(other);
    m_keepsLines = other.m_keepsLines;
    m_coefficientCount = other.m_coefficientCount;
    std::copy(std::begin(other.m_coefficients), std::end(other.m_coefficients), m_coefficients);
    m_interpolationType = other.m_interpolationType;
    m_filteringLevel = other.m_filteringLevel;
    return *this;
}

vfILMonadicTransformProc::~vfILMonadicTransformProc()
{
    if (m_factory != nullptr) m_factory->Release();
}

void vfILMonadicTransformProc::Init()
{
    SetProcessingMode(VFIL_MODE_RGBA);
    void* factory = nullptr;
    CoGetClassObject(CLSID_PXImage, CLSCTX_INPROC_SERVER, nullptr, IID_IClassFactory, &factory);
    m_factory = static_cast<IPXImageFactory*>(factory);
    if (m_factory == nullptr) Fail(0x10001, "%s ERROR Init: Cannot get the image factory\n", GetClassNameW());
}

const wchar_t* vfILMonadicTransformProc::GetClassNameW() const
{
    return m_ClassName;
}

vfILStatus vfILMonadicTransformProc::Execute()
{
    return vfILMonadicImgProc::Execute();
}

vfILStatus vfILMonadicTransformProc::Verify()
{
    if (vfILMonadicImgProc::Verify() != VFIL_SUCCESS) return VFIL_FAILURE;
    const ImageView input(GetInputImg());
    long code = 0;
    if (OnVerify(input.width, input.height, code) != VFIL_SUCCESS)
        return Fail(static_cast<unsigned long>(code), GetClassNameW());
    if (!(FormatOf(GetInputImg()) == OutputFormat())) return Fail(0x1000E, GetClassNameW());
    if (IsAllChannelProcessed() == 0) return Fail(0x20002, GetClassNameW());
    if (GetMaskImg() != nullptr || !Covers(GetMask(nullptr, nullptr), input.Box()))
        return Fail(0x20001, "%s ERROR Verify: Mask are not allowed\n", GetClassNameW());
    if (!(m_filteringLevel >= 0))
        return Fail(0x1000F, "%s ERROR Verify: Filtering level invalid\n", GetClassNameW());
    if (SetUpCoefficients() != VFIL_SUCCESS || !LeadsBack(input.width, input.height))
        return Fail(0x10010, "%s ERROR Verify: Inconsistency in the mapping funcions\n", GetClassNameW());
    return VFIL_SUCCESS;
}

vfILStatus vfILMonadicTransformProc::VerifyTransform(vfILInterpolationType lastType, const wchar_t* className)
{
    if (vfILMonadicTransformProc::Verify() != VFIL_SUCCESS) return VFIL_FAILURE;
    if (m_interpolationType < VFIL_INTERP_NEAREST || m_interpolationType > lastType)
        return Fail(0x1000F, "%s ERROR Verify: Interpolation type not supported\n", className);
    if (!PointFormats::Contains(OutputFormat())) return Fail(0x1000D, className);
    return VFIL_SUCCESS;
}

/// Whether the picture's corners come back from where the mapping puts them. The mapping is set up.
bool vfILMonadicTransformProc::LeadsBack(long width, long height)
{
    for (int corner = 0; corner < 4; ++corner) {
        const long x = (corner & 1) != 0 ? width - 1 : 0;
        const long y = (corner & 2) != 0 ? height - 1 : 0;
        vfILVector2f point(static_cast<float>(x), static_cast<float>(y));
        if (TransformPoint(point) != VFIL_SUCCESS || InvertTransformPoint(point) != VFIL_SUCCESS)
            return false;
        // NaN is no place, although it rounds to 0.
        if (point[0] != point[0] || point[1] != point[1]) return false;
        if (RoundHalfAway(point[0]) != x || RoundHalfAway(point[1]) != y) return false;
    }
    return true;
}

vfILStatus vfILMonadicTransformProc::TransformPoint(vfILVector2f& point)
{
    TransformPointXY(point[0], point[1]);
    return VFIL_SUCCESS;
}

vfILStatus vfILMonadicTransformProc::InvertTransformPoint(vfILVector2f& point)
{
    float w = 1;
    InvertTransformPointXYZ(point[0], point[1], w);
    if (w == 0) return VFIL_FAILURE;
    point[0] /= w;
    point[1] /= w;
    return VFIL_SUCCESS;
}

vfILStatus vfILMonadicTransformProc::PrepareData()
{
    m_levels.Release();
    if (PreparePictures() != VFIL_SUCCESS) return VFIL_FAILURE;
    const vfILStatus status = SetUpCoefficients();
    if (status != VFIL_SUCCESS) {
        Fail(0x10010, GetClassNameW());
        return status;
    }
    PrepareBoxes();
    if (PrepareInput() != VFIL_SUCCESS) return VFIL_FAILURE;
    const ImageView output(m_run.output);
    const vfILBbox2l& box = m_run.effectAtOutput;
    m_run.rows = {};
    if (box.IsNull() == 0) m_run.rows = output.Walk(box.GetOffsetX(), output.MemoryRow(box.GetOffsetY()));
    m_firstRowEven = (box.GetOffsetY() & 1) == 0 ? 1 : 0;
    if (m_interpolationType != VFIL_INTERP_BILINEAR_PREFILTERED || box.IsNull() != 0) return VFIL_SUCCESS;
    return BuildPyramid();
}

/// Views the pictures, and refuses what Verify would have.
vfILStatus vfILMonadicTransformProc::PreparePictures()
{
    const ImageView input(GetInputImg());
    const ImageView output = ViewOf(GetOutputImg(), {input});
    m_run = {};
    m_run.input = input;
    m_run.output = output;
    if (!AreConnected(input, output)) return Fail(WhyUnconnected(input, output), GetClassNameW());
    if (input.format != output.format) return Fail(0x1000E, GetClassNameW());
    m_run.outputBox = TargetBox(GetROI(), GetOutputOffset());
    if (!Covers(output.Box(), m_run.outputBox)) return Fail(0x1000A, GetClassNameW());
    ColourPixel pixel;
    if (!pixel.Set(*output.format, GetDefaultColor())) return Fail(0x1000D, GetClassNameW());
    std::memcpy(m_run.defaultPixel, pixel.bytes, sizeof m_run.defaultPixel);
    return VFIL_SUCCESS;
}

void vfILMonadicTransformProc::PrepareBoxes()
{
    Crop crop{};
    GetCropping(crop.left, crop.right, crop.top, crop.bottom);
    m_run.sourceBox = SourceBox(m_run.input.width, m_run.input.height, crop);
    if (m_run.sourceBox.IsNull() != 0) return;
    const bool ycc = m_run.input.format->ycc;
    vfILVector2f corners[4];
    SourceCorners(m_run.sourceBox, MarginsOf(m_run.sourceBox, ReachOf(m_interpolationType), ycc), corners);
    for (vfILVector2f& corner : corners)
        TransformPoint(corner);
    m_run.effectBox = EffectBox(corners, GetROI());
    if (m_run.effectBox.IsNull() != 0) return;
    m_run.effectAtOutput =
        Moved(m_run.effectBox, std::int64_t{m_run.outputBox.GetOffsetX()} - GetROI().GetOffsetX(),
              std::int64_t{m_run.outputBox.GetOffsetY()} - GetROI().GetOffsetY());
    if (ycc) AlignToPairs(m_run.effectBox, m_run.effectAtOutput, m_run.outputBox);
}

/// The input is read after rows of the output are written, and so has to be another picture.
vfILStatus vfILMonadicTransformProc::PrepareInput()
{
    if (m_run.effectBox.IsNull() != 0 || m_run.input.pixels != m_run.output.pixels) return VFIL_SUCCESS;
    const auto bytes = static_cast<std::size_t>(m_run.input.width) *
                       static_cast<std::size_t>(m_run.input.height) *
                       static_cast<std::size_t>(m_run.input.pixelBytes);
    unsigned char* const copy = m_inputCopy.Allocate(bytes);
    if (copy == nullptr) {
        return Fail(0x10001, "%s ERROR PrepareData: insufficient memory space\n", GetClassNameW());
    }
    std::memcpy(copy, m_run.input.pixels, bytes);
    m_run.input.pixels = copy;
    return VFIL_SUCCESS;
}

vfILStatus vfILMonadicTransformProc::ProcessData()
{
    SetOutputImgPremultiplied(GetInputImgPremultiplied());
    FillAround(m_run.output, m_run.effectAtOutput, m_run.outputBox, GetDefaultColor(),
               {GetProcessingMode(), m_simdAvailable != 0});
    return m_run.effectBox.IsNull() != 0 ? VFIL_SUCCESS : DoEffect();
}

vfILStatus vfILMonadicTransformProc::CleanData()
{
    m_inputCopy.Free();
    m_levels.Release();
    m_run = {};
    return VFIL_SUCCESS;
}

vfILStatus vfILMonadicTransformProc::DoEffect()
{
    using Line = void (vfILMonadicTransformProc::*)(const vfILVector2f&, long, unsigned char*);
    using Self = vfILMonadicTransformProc;
    static constexpr Line kLines[] = {
        &Self::TransformLineWithNearestNeighborInterpolation,
        &Self::TransformLineWithBilinearInterpolation,
        &Self::TransformLineWithBicubicInterpolation,
        &Self::TransformLineWithBilinearPrefilteredInterpolation,
        &Self::TransformLineWithPixelSumming,
        &Self::TransformLineWithPixelSumming,
        &Self::TransformLineWithPixelSumming,
    };
    if (m_interpolationType < VFIL_INTERP_NEAREST || m_interpolationType > VFIL_INTERP_SUM_NEAREST)
        return Fail(0x1000F, GetClassNameW());
    if (!PointFormats::Contains(m_run.output.format->id)) return Fail(0x1000D, GetClassNameW());
    const Line line = kLines[m_interpolationType - VFIL_INTERP_NEAREST];
    const vfILBbox2l& box = m_run.effectBox;
    const RowSelection rows =
        SelectField(GetProcessingMode(), m_run.effectAtOutput.GetOffsetY(), box.GetSizeY());
    ForEachRow(*this, rows.count, [&](long i) {
        const long row = rows.skip + i * rows.step;
        const vfILVector2f start(static_cast<float>(box.GetOffsetX()),
                                 static_cast<float>(box.GetOffsetY() + row));
        (this->*line)(start, box.GetSizeX(), m_run.rows.first + row * m_run.rows.step);
    });
    return VFIL_SUCCESS;
}

void vfILMonadicTransformProc::SetCoefficientCount(long count)
{
    m_coefficientCount = std::clamp(count, 0L, kMostCoefficients);
    std::fill(std::begin(m_coefficients), std::end(m_coefficients), 0.0F);
}

void vfILMonadicTransformProc::SetCoefficients(const float* coefficients)
{
    if (coefficients != nullptr) std::copy(coefficients, coefficients + m_coefficientCount, m_coefficients);
}

const float* vfILMonadicTransformProc::GetCoefficients() const
{
    return m_coefficients;
}

void vfILMonadicTransformProc::SetInterpolationType(vfILInterpolationType type)
{
    m_interpolationType = type;
}

vfILInterpolationType vfILMonadicTransformProc::GetInterpolationType() const
{
    return m_interpolationType;
}

void vfILMonadicTransformProc::SetFilteringLevel(double level)
{
    m_filteringLevel = level;
}

double vfILMonadicTransformProc::GetFilteringLevel() const
{
    return m_filteringLevel;
}

vfILStatus vfILMonadicTransformProc::Transform(vfILVector2f& point)
{
    const vfILStatus status = SetUpCoefficients();
    if (status == VFIL_SUCCESS) {
        TransformPointXY(point[0], point[1]);
    } else {
        Fail(0x10010, GetClassNameW());
    }
    return status;
}

vfILStatus vfILMonadicTransformProc::InvertTransform(vfILVector2f& point)
{
    const vfILStatus status = SetUpCoefficients();
    if (status == VFIL_SUCCESS) {
        InvertTransformPointXY(point[0], point[1]);
    } else {
        Fail(0x10010, GetClassNameW());
    }
    return status;
}
