/// \file
/// The frame of the transforms of one input: its line functions for any mapping, point by point, and the
/// pyramid that one of them reads.

#include "il/loops/frame/fills.h"
#include "il/loops/frame/innerrun.h"
#include "il/loops/frame/rowloop.h"
#include "il/loops/transform/pyramid.h"
#include "il/loops/transform/sampling.h"

#include <vfil/blur.h>
#include <vfil/pixel.h>

#include <algorithm>
#include <limits>

using namespace vfil;

int vfILMonadicTransformProc::InvertTransformPointXYZ(float& x, float& y, float& w)
{
    w = 1;
    InvertTransformPointXY(x, y);
    return 1;
}

void vfILMonadicTransformProc::GetNumClipPlanes(unsigned long& first, unsigned long& second)
{
    first = 4;
    second = 0;
}

void vfILMonadicTransformProc::GetClipPlaneCoefficients(unsigned long i, long width, long height, double& a,
                                                        double& b, double& c, double& d)
{
    const double sign = (i & 1) == 0 ? 1 : -1;
    a = i < 2 ? sign : 0;
    b = i < 2 ? 0 : sign;
    c = 0;
    d = (i & 1) == 0 ? 0.5 : static_cast<double>(i < 2 ? width : height) - 0.5;
}

/// False, and NaN, for a point without a source.
bool vfILMonadicTransformProc::MapBack(float x, float y, double& u, double& v)
{
    float w = 1;
    if (InvertTransformPointXYZ(x, y, w) == 0 || w == 0) {
        u = v = std::numeric_limits<double>::quiet_NaN();
        return false;
    }
    u = double{x} / double{w};
    v = double{y} / double{w};
    return true;
}

void vfILMonadicTransformProc::MapRow(float x, float y, long count, double* u, double* v)
{
    for (long i = 0; i < count; ++i, x += 1.0F)
        MapBack(x, y, u[i], v[i]);
}

void vfILMonadicTransformProc::SampleLine(const vfILVector2f& start, long width, unsigned char* output)
{
    const SampleRow sample =
        FindSampleRow(m_simdAvailable != 0, SampleFormOf(m_interpolationType), SamplePixelOf(m_run.output));
    const SampleSource source = SourceOf(m_run);
    double u[kSampleBlock];
    double v[kSampleBlock];
    for (long at = 0; at < width; at += kSampleBlock) {
        const long count = std::min(kSampleBlock, width - at);
        MapRow(start[0] + static_cast<float>(at), start[1], count, u, v);
        sample(source, u, v, static_cast<std::size_t>(count), output + at * m_run.output.pixelBytes);
    }
}

void vfILMonadicTransformProc::TransformLineWithNearestNeighborInterpolation(const vfILVector2f& start,
                                                                             long width,
                                                                             unsigned char* output)
{
    SampleLine(start, width, output);
}

void vfILMonadicTransformProc::TransformLineWithBilinearInterpolation(const vfILVector2f& start, long width,
                                                                      unsigned char* output)
{
    SampleLine(start, width, output);
}

void vfILMonadicTransformProc::TransformLineWithBicubicInterpolation(const vfILVector2f& start, long width,
                                                                     unsigned char* output)
{
    SampleLine(start, width, output);
}

double vfILMonadicTransformProc::FootprintSizeAt(float x, float y)
{
    const auto square = [this](float x0, float y0, float x1, float y1) {
        InvertTransformPointXY(x0, y0);
        InvertTransformPointXY(x1, y1);
        const double dx = double{x1} - double{x0};
        const double dy = double{y1} - double{y0};
        return dx * dx + dy * dy;
    };
    return FootprintSize(square(x - 0.5F, y - 0.5F, x + 0.5F, y + 0.5F),
                         square(x + 0.5F, y - 0.5F, x - 0.5F, y + 0.5F));
}

void vfILMonadicTransformProc::TransformLineWithBilinearPrefilteredInterpolation(const vfILVector2f& start,
                                                                                 long width,
                                                                                 unsigned char* output)
{
    const long pixelBytes = m_run.output.pixelBytes;
    float x = start[0];
    for (long i = 0; i < width; ++i, x += 1.0F, output += pixelBytes) {
        double u = 0;
        double v = 0;
        MapBack(x, start[1], u, v);
        const LevelChoice choice = ChooseLevel(FootprintSizeAt(x, start[1]), m_levels.GetCount());
        SampleLevels(m_levels, m_run, m_simdAvailable != 0, choice, &u, &v, 1, output);
    }
}

vfILStatus vfILMonadicTransformProc::BuildPyramid()
{
    const long count = CountLevels(m_run.input.width, m_run.input.height);
    for (long level = 0; level < count; ++level) {
        IPXImage* picture = nullptr;
        const long size = 1L << (count - 1 - level);
        if (CreatePicture(size, size, picture) != VFIL_SUCCESS) return VFIL_FAILURE;
        if (!m_levels.Add(picture)) {
            picture->Release();
            return Fail(0x10001, GetClassNameW());
        }
        if (level != 0) {
            DownScale(m_levels[level - 1], m_levels[level]);
        } else if (FillFirstLevel(picture) != VFIL_SUCCESS) {
            return VFIL_FAILURE;
        }
    }
    return VFIL_SUCCESS;
}

/// A new picture of the input's format, whose one reference is the caller's.
vfILStatus vfILMonadicTransformProc::CreatePicture(long width, long height, IPXImage*& picture)
{
    void* made = nullptr;
    if (m_factory != nullptr) m_factory->CreateInstance(nullptr, IID_IPXImage, &made);
    picture = static_cast<IPXImage*>(made);
    const long most = std::numeric_limits<std::int32_t>::max();
    if (picture != nullptr && width <= most && height <= most &&
        !FAILED(picture->SetFormat(&m_run.input.format->id)) &&
        !FAILED(picture->SetDimensions(width, height)) && ImageView(picture).HasPixels()) {
        return VFIL_SUCCESS;
    }
    if (picture != nullptr) picture->Release();
    picture = nullptr;
    return Fail(0x10001, "%s ERROR PrepareData: insufficient memory space\n", GetClassNameW());
}

/// Puts the input into the first level. What is cropped, and what lies beside it, has the default colour.
vfILStatus vfILMonadicTransformProc::FillFirstLevel(IPXImage* level)
{
    const ImageView view(level);
    const FillRule all{VFIL_MODE_RGBA, m_simdAvailable != 0};
    // The box filter is of 8 bits.
    const bool blurs = m_filteringLevel > 0 && view.format->sampleBytes == 1;
    const vfILBbox2l inputBox = ImageView(m_run.input).Box();
    const bool cropped = !(m_run.sourceBox == inputBox);
    if (!blurs) {
        if (CopyInput(level) != VFIL_SUCCESS) return VFIL_FAILURE;
        FillAround(view, m_run.sourceBox, view.Box(), GetDefaultColor(), all);
        return VFIL_SUCCESS;
    }
    IPXImage* uncropped = nullptr;
    if (cropped) {
        if (CreatePicture(m_run.input.width, m_run.input.height, uncropped) != VFIL_SUCCESS)
            return VFIL_FAILURE;
        if (CopyInput(uncropped) != VFIL_SUCCESS) {
            uncropped->Release();
            return VFIL_FAILURE;
        }
        FillAround(uncropped, m_run.sourceBox, inputBox, GetDefaultColor(), all);
    }
    const vfILStatus status = BlurInto(level, cropped ? uncropped : GetInputImg());
    if (uncropped != nullptr) uncropped->Release();
    FillAround(view, inputBox, view.Box(), GetDefaultColor(), all);
    return status;
}

vfILStatus vfILMonadicTransformProc::CopyInput(IPXImage* to)
{
    vfILCopyImg copy;
    copy.SetInputImg(GetInputImg());
    copy.SetOutputImg(to);
    copy.SetProcessingMode(VFIL_MODE_RGBA);
    copy.SetDefaultColor(GetDefaultColor());
    const SharedInterruption interruption(*this, copy);
    const vfILStatus status = copy.Execute();
    if (status != VFIL_SUCCESS) {
        Fail(copy.GetLastError().GetErrorCode(), "%s ERROR PrepareData: Copying failed\n", GetClassNameW());
    }
    return status;
}

vfILStatus vfILMonadicTransformProc::BlurInto(IPXImage* level, IPXImage* input)
{
    constexpr double kMostRadius = 1073741824.0;
    vfILBlurImg blur;
    blur.SetInputImg(input);
    blur.SetOutputImg(level);
    blur.SetProcessingMode(VFIL_MODE_RGBA);
    blur.SetDefaultColor(GetDefaultColor());
    blur.SetType(VFIL_BLUR_BOX);
    blur.SetEdgeMode(VFIL_EDGE_MIRROR);
    blur.SetRadius(static_cast<float>(std::min(m_filteringLevel, kMostRadius)));
    const SharedInterruption interruption(*this, blur);
    const vfILStatus status = blur.Execute();
    if (status != VFIL_SUCCESS) {
        Fail(blur.GetLastError().GetErrorCode(), "%s ERROR PrepareData: Blurring failed\n", GetClassNameW());
    }
    return status;
}
