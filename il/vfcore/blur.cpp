/// \file
/// Blurs: what each type is made of.

#include "il/loops/blur/boxrun.h"
#include "il/loops/blur/recursiverun.h"
#include "il/loops/frame/copyinstead.h"
#include "il/loops/frame/ellipse.h"
#include "il/loops/frame/imageview.h"
#include "il/loops/frame/runarray.h"

#include <vfil/blur.h>

#include <algorithm>
#include <cmath>
#include <numeric>

using namespace vfil;

namespace {

bool IsExponential(vfILBlurType type)
{
    return type == VFIL_BLUR_EXPONENTIAL || type == VFIL_BLUR_EXPONENTIAL_FLOAT;
}

bool IsFastGauss(vfILBlurType type)
{
    return type == VFIL_BLUR_FAST_GAUSS || type == VFIL_BLUR_FAST_GAUSS_FLOAT;
}

bool IsKnown(vfILBlurType type)
{
    return type == VFIL_BLUR_DISC || type == VFIL_BLUR_GAUSS || type == VFIL_BLUR_BOX ||
           IsExponential(type) || IsFastGauss(type);
}

/// On 8-bit formats the type filters in fixed point.
bool IsFixed(vfILBlurType type)
{
    return type == VFIL_BLUR_EXPONENTIAL || type == VFIL_BLUR_FAST_GAUSS;
}

/// A Gaussian from -radius to radius, of sum 1.
void FillGaussian(double* weights, long radius, double sigma)
{
    const double inverse = sigma == 0 ? 0 : 1 / sigma;
    double* weight = weights;
    for (long x = -radius; x <= radius; ++x) {
        const auto square = static_cast<double>(x) * static_cast<double>(x);
        *weight++ = std::exp(-0.5 * square * inverse * inverse);
    }
    const double sum = std::accumulate(weights, weight, 0.0);
    std::transform(weights, weight, weights, [sum](double w) { return w / sum; });
}

/// Copies weights that stand a step apart, scaled to a sum of 1.
void CopyScaled(const float* weights, long step, long count, float* to)
{
    double sum = 0;
    for (long i = 0; i < count; ++i)
        sum += weights[i * step];
    for (long i = 0; i < count; ++i)
        to[i] = static_cast<float>(weights[i * step] / sum);
}

} // namespace

const wchar_t* const vfILBlurImg::m_ClassName = L"vfILBlurImg";

const wchar_t* vfILBlurImg::GetClassNameW() const
{
    return m_ClassName;
}

vfILBlurImg::~vfILBlurImg() = default;

vfILStatus vfILBlurImg::Execute()
{
    const bool reaches = GetRadiusX() >= 1 || GetRadiusY() >= 1;
    return m_degree != 0 && reaches ? vfILImgProc::Execute() : CopyInstead(*this);
}

/// There is no kernel yet that vfILConvolveImg's could look at.
vfILStatus vfILBlurImg::Verify()
{
    if (IsRadiusValid() && CountWindow(KernelRadius(), sizeof(float)) == 0) return NoKernel();
    if (VerifyFrame(GetClassNameW()) != VFIL_SUCCESS) return VFIL_FAILURE;
    if (!IsKnown(m_type)) return UnknownType();
    if (m_type == VFIL_BLUR_BOX && !BoxFormats::Contains(OutputFormat())) {
        return Fail(0x1000D, GetClassNameW());
    }
    if (!(m_degree >= 0 && m_degree <= 1)) {
        return Fail(0x10026, "%s ERROR Verify: Degree of blurring is not in range [0..1]\n", GetClassNameW());
    }
    return VFIL_SUCCESS;
}

vfILStatus vfILBlurImg::PrepareData()
{
    FreeKernel();
    if (BuildKernel() != VFIL_SUCCESS) return VFIL_FAILURE;
    const bool isBox = m_type == VFIL_BLUR_BOX;
    ReadInputItself(isBox || IsRecursive());
    vfILVector2l radius = WholeRadius();
    if (isBox) { // beyond the size of the picture its windows see nothing new
        const vfILPictureView& input = ViewInput();
        radius[0] = static_cast<std::int32_t>(std::min<long>(radius[0], input.width));
        radius[1] = static_cast<std::int32_t>(std::min<long>(radius[1], input.height));
    }
    return PrepareWindows(radius);
}

vfILStatus vfILBlurImg::CleanData()
{
    FreeKernel();
    return vfILConvolveImg::CleanData();
}

void vfILBlurImg::FreeKernel()
{
    SetKernel(nullptr, GetRadius());
    m_kernelBuffer.Free();
}

/// A type without a kernel has one of a single weight, so that there is one.
vfILVector2l vfILBlurImg::KernelRadius() const
{
    return HasKernel() ? WholeRadius() : vfILVector2l(0, 0);
}

vfILStatus vfILBlurImg::BuildKernel()
{
    if (!IsRadiusValid()) return VFIL_SUCCESS; // the frame's check comes after, and says so
    const std::size_t weights = CountWindow(KernelRadius(), sizeof(float));
    if (weights == 0) return NoKernel();
    auto* const kernel = reinterpret_cast<float*>(m_kernelBuffer.Allocate(weights * sizeof(float)));
    if (kernel == nullptr) return NoKernel();
    if (m_type == VFIL_BLUR_DISC) {
        FillDisc(kernel, weights);
    } else if (!HasKernel()) {
        *kernel = 1;
    } else if (!FillGauss(kernel)) {
        return NoKernel();
    }
    SetKernel(kernel, GetRadius());
    return VFIL_SUCCESS;
}

vfILStatus vfILBlurImg::UnknownType()
{
    return Fail(0x10024, GetClassNameW());
}

vfILStatus vfILBlurImg::NoKernel()
{
    return Fail(0x10001, "%s ERROR BuildKernel: insufficient memory space\n", GetClassNameW());
}

/// False when memory is short.
bool vfILBlurImg::FillGauss(float* kernel) const
{
    const vfILVector2l radius = WholeRadius();
    const long width = 2 * long{radius[0]} + 1;
    const long height = 2 * long{radius[1]} + 1;
    RunArray<double> factors;
    if (!factors.Allocate(static_cast<std::size_t>(width + height))) return false;
    double* const x = factors.Data();
    double* const y = x + width;
    FillGaussian(x, radius[0], double{GetRadiusX()} * m_degree);
    FillGaussian(y, radius[1], double{GetRadiusY()} * m_degree);
    for (long row = 0; row < height; ++row)
        kernel = std::transform(
            x, y, kernel, [factor = y[row]](double weight) { return static_cast<float>(weight * factor); });
    return true;
}

void vfILBlurImg::FillDisc(float* kernel, std::size_t weights) const
{
    const Ellipse<float> disc(GetRadiusX(), GetRadiusY());
    const auto ones = static_cast<float>(FillEllipse(kernel, WholeRadius(), disc, 1));
    const float share = m_degree / ones;
    std::transform(kernel, kernel + weights, kernel, [share](float one) { return one * share; });
    kernel[weights / 2] = 1 - (ones - 1) * share;
}

/// Up to these radii the kernel is cheaper than the recursion.
bool vfILBlurImg::IsConvolutionFasterThanFastGauss() const
{
    const vfILVector2l radius = WholeRadius();
    return radius[0] <= 4 && radius[1] < 5;
}

/// The type convolves with a Gaussian.
bool vfILBlurImg::IsGauss() const
{
    return m_type == VFIL_BLUR_GAUSS ||
           (m_type == VFIL_BLUR_FAST_GAUSS && IsConvolutionFasterThanFastGauss());
}

int vfILBlurImg::IsKernelSeparable()
{
    if (IsGauss()) return 1;
    return m_type == VFIL_BLUR_DISC ? vfILConvolveImg::IsKernelSeparable() : 0;
}

vfILStatus vfILBlurImg::SeparateKernel(float* kx, float* ky)
{
    if (!IsGauss()) return vfILConvolveImg::SeparateKernel(kx, ky);
    const float* const kernel = GetKernel();
    if (kernel == nullptr) return Fail(0x10021, GetClassNameW());
    const vfILVector2l radius = WholeRadius();
    const long width = 2 * long{radius[0]} + 1;
    const long height = 2 * long{radius[1]} + 1;
    CopyScaled(kernel + radius[1] * width, 1, width, kx);
    CopyScaled(kernel + radius[0], width, height, ky);
    return VFIL_SUCCESS;
}

/// The type convolves.
bool vfILBlurImg::HasKernel() const
{
    return m_type == VFIL_BLUR_DISC || IsGauss();
}

/// The type filters by recursion.
bool vfILBlurImg::IsRecursive() const
{
    return IsExponential(m_type) || (IsFastGauss(m_type) && !IsGauss());
}

vfILStatus vfILBlurImg::DoEffect()
{
    if (HasKernel()) return vfILConvolveImg::DoEffect();
    if (!IsKnown(m_type)) return UnknownType();
    if (IsRecursive() ? BlurRecursively() : BlurBox()) return VFIL_SUCCESS;
    return Fail(0x10001, GetClassNameW());
}

/// False when memory is short.
bool vfILBlurImg::BlurBox()
{
    return RunBox(*this, Run(), WholeRadius(), FormatOf(Run()), m_simdAvailable != 0);
}

/// False when memory is short. What a row becomes depends on all rows, by the filter's roundings: bands would
/// not do, and the columns are read where the input has them.
bool vfILBlurImg::BlurRecursively()
{
    const auto design = IsFastGauss(m_type) ? DesignFastGauss : DesignExponential;
    const RecursiveBlur blur{design(double{GetRadiusX()} * m_degree, Run().radiusX),
                             design(double{GetRadiusY()} * m_degree, Run().radiusY), IsFixed(m_type)};
    return RunRecursiveBlur(*this, Run(), blur, FormatOf(Run()), m_simdAvailable != 0);
}

void vfILBlurImg::SetType(vfILBlurType type)
{
    m_type = type;
}

vfILBlurType vfILBlurImg::GetType() const
{
    return m_type;
}

void vfILBlurImg::SetDegree(float degree)
{
    m_degree = degree;
}

float vfILBlurImg::GetDegree() const
{
    return m_degree;
}

void vfILBlurImg::SetRadiusNormalizedForBlurType(float rx, float ry)
{
    const float scale = m_type == VFIL_BLUR_BOX ? 0.5F : 1.0F;
    SetRadius(rx * scale, ry * scale);
}
