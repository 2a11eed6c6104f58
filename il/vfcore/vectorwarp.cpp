/// \file
/// The warp of a picture along a vector a pixel.

#include "il/loops/transform/sampling.h"
#include "il/loops/transform/warprun.h"

#include "il/loops/frame/rowloop.h"

#include <vfil/vectorwarp.h>

using namespace vfil;

namespace {

using WarpFormats = FormatList<Rgba8, Mono8>;

} // namespace

const wchar_t* const vfILVectorWarp::m_ClassName = L"vfILVectorWarp";

vfILVectorWarp::vfILVectorWarp() = default;

vfILVectorWarp::~vfILVectorWarp() = default;

const wchar_t* vfILVectorWarp::GetClassNameW() const
{
    return m_ClassName;
}

vfILStatus vfILVectorWarp::Verify()
{
    if (vfILMonadicTransformProc::Verify() != VFIL_SUCCESS) return VFIL_FAILURE;
    if (!WarpFormats::Contains(OutputFormat())) return Fail(0x10034, GetClassNameW());
    return VFIL_SUCCESS;
}

vfILStatus vfILVectorWarp::SetUpCoefficients()
{
    return VFIL_SUCCESS;
}

void vfILVectorWarp::TransformPointXY(float&, float&)
{}

void vfILVectorWarp::InvertTransformPointXY(float&, float&)
{}

void vfILVectorWarp::SetVectors(const double* x, const double* y)
{
    m_vectorsX = x;
    m_vectorsY = y;
}

void vfILVectorWarp::SetWarpFactor(double first, double second)
{
    m_firstFactor = first;
    m_secondFactor = second;
}

void vfILVectorWarp::SetWarpFactor(double factor)
{
    if (factor < 0)
        SetWarpFactor(1, factor + 1);
    else
        SetWarpFactor(0, factor);
}

void vfILVectorWarp::SetFastApproximation(int approximate)
{
    m_fastApproximation = approximate;
}

void vfILVectorWarp::GetWarpFactor(double* first, double* second) const
{
    if (first != nullptr) *first = m_firstFactor;
    if (second != nullptr) *second = m_secondFactor;
}

int vfILVectorWarp::GetFastApproximation() const
{
    return m_fastApproximation;
}

/// Calls warp with what it reads and writes.
template <class Warp>
void vfILVectorWarp::Process(Warp warp) const
{
    const vfILTransformRun& run = Run();
    const bool useVectors = m_simdAvailable != 0;
    warp(*this, WarpRun{.vectorsX = m_vectorsX,
                        .vectorsY = m_vectorsY,
                        .first = m_firstFactor,
                        .second = m_secondFactor,
                        .sourceWidth = run.input.width,
                        .sourceHeight = run.input.height,
                        .source = SourceOf(run),
                        .sample = FindSampleRow(useVectors, SampleForm::Bilinear, SamplePixelOf(run.output)),
                        .kernels = &FindWarpRows(useVectors),
                        .output = run.output.pixels,
                        .width = run.output.width,
                        .height = run.output.height});
}

vfILStatus vfILVectorWarp::DoEffect()
{
    const vfILPictureView& output = Run().output;
    if (!WarpFormats::Contains(output.format->id) || Run().input.format != output.format)
        return Fail(0x10034, GetClassNameW());
    if (m_vectorsX == nullptr || m_vectorsY == nullptr)
        return Fail(0x10010, "%s ERROR DoEffect: Vectors are NULL\n", GetClassNameW());
    const bool approximates = m_secondFactor == 0 || m_fastApproximation != 0;
    if (output.format->id == PXFormat_Mono8)
        approximates ? ProcessFastMono8() : ProcessMono8();
    else
        approximates ? ProcessFastRGBA8() : ProcessRGBA8();
    return VFIL_SUCCESS;
}

void vfILVectorWarp::ProcessMono8()
{
    Process(WarpByMesh<1>);
}

void vfILVectorWarp::ProcessRGBA8()
{
    Process(WarpByMesh<4>);
}

void vfILVectorWarp::ProcessFastMono8()
{
    Process(WarpByPixel<1>);
}

void vfILVectorWarp::ProcessFastRGBA8()
{
    Process(WarpByPixel<4>);
}
