/// \file
/// The recursive smoothing of rows and columns.

#include "il/loops/frame/imageview.h"
#include "il/loops/frame/rowloop.h"

#include <vfil/fields.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <new>

using namespace vfil;

const wchar_t* const vfIL2TapIIR::m_ClassName = L"vfIL2TapIIR";

vfIL2TapIIR::~vfIL2TapIIR() = default;

const wchar_t* vfIL2TapIIR::GetClassNameW() const
{
    return m_ClassName;
}

void vfIL2TapIIR::SetAlphas(double horizontal, double vertical)
{
    m_horizontalAlpha = horizontal;
    m_verticalAlpha = vertical;
}

void vfIL2TapIIR::GetAlphas(double* horizontal, double* vertical) const
{
    if (horizontal != nullptr) *horizontal = m_horizontalAlpha;
    if (vertical != nullptr) *vertical = m_verticalAlpha;
}

void vfIL2TapIIR::SetInputImg(IPXImage* image)
{
    m_inputImg = image;
}

IPXImage* vfIL2TapIIR::GetInputImg() const
{
    return m_inputImg;
}

void vfIL2TapIIR::SetOutputImg(IPXImage* image)
{
    m_outputImg = image;
}

IPXImage* vfIL2TapIIR::GetOutputImg() const
{
    return m_outputImg;
}

vfILStatus vfIL2TapIIR::Verify()
{
    if (vfILProcessor::Verify() != VFIL_SUCCESS) return VFIL_FAILURE;
    if (m_inputImg == nullptr) return Fail(0x1000B, GetClassNameW());
    if (m_outputImg == nullptr) return Fail(0x10002, GetClassNameW());
    const ImageView input(m_inputImg);
    const ImageView output(m_outputImg);
    if (!input.HasPixels()) return Fail(0x1000C, GetClassNameW());
    if (!(FormatOf(m_inputImg) == PXFormat_RGBA32)) return Fail(0x10034, GetClassNameW());
    if (!(FormatOf(m_outputImg) == PXFormat_RGBA32)) return Fail(0x1000D, GetClassNameW());
    if (!output.HasPixels() || !(input.Box() == output.Box())) return Fail(0x10003, GetClassNameW());
    return VFIL_SUCCESS;
}

vfILStatus vfIL2TapIIR::Execute()
{
    constexpr long kPixelBytes = 4;
    const ImageView input(m_inputImg);
    const ImageView output(m_outputImg);
    if (!input.HasPixels()) return Fail(m_inputImg == nullptr ? 0x1000B : 0x1000C, GetClassNameW());
    if (m_outputImg == nullptr) return Fail(0x10002, GetClassNameW());
    if (!output.HasPixels() || !(input.Box() == output.Box())) return Fail(0x10003, GetClassNameW());
    if (input.pixelBytes != kPixelBytes) return Fail(0x10034, GetClassNameW());
    if (output.pixelBytes != kPixelBytes) return Fail(0x1000D, GetClassNameW());
    return input.Box().IsNull() ? VFIL_SUCCESS : ProcessTestAlgorithmUsingDoubles();
}

namespace {

constexpr long kChannels = 4;

/// What the samples of one group become by those of the group that the filter was at before.
void Step(double* samples, const double* previous, long count, double alpha)
{
    for (long i = 0; i < count; ++i)
        samples[i] = (samples[i] - previous[i]) * alpha + previous[i];
}

/// Runs over groups of samples that lie side by side, forward and then back.
void SmoothGroups(double* samples, long groups, long groupSamples, double alpha)
{
    const auto group = [&](long i) { return samples + i * groupSamples; };
    for (long i = 1; i < groups; ++i)
        Step(group(i), group(i - 1), groupSamples, alpha);
    for (long i = groups - 2; i >= 0; --i)
        Step(group(i), group(i + 1), groupSamples, alpha);
}

/// NaN becomes 0.
unsigned char ToSample(double value)
{
    return static_cast<unsigned char>(std::nearbyint(value > 0.0 ? std::min(value, 255.0) : 0.0));
}

} // namespace

vfILStatus vfIL2TapIIR::ProcessTestAlgorithmUsingDoubles()
{
    const ImageView input(m_inputImg);
    const ImageView output(m_outputImg);
    const long rowSamples = input.width * kChannels;
    const long count = rowSamples * input.height;
    const std::unique_ptr<double[]> samples(new (std::nothrow) double[static_cast<std::size_t>(count)]);
    if (!samples) return Fail(0x10001, "%s ERROR Execute: insufficient memory space\n", GetClassNameW());

    std::copy_n(input.pixels, count, samples.get());
    ForEachRow(*this, input.height, [&](long row) {
        SmoothGroups(samples.get() + row * rowSamples, input.width, kChannels, m_horizontalAlpha);
    });
    // All columns at once, a row being a group: the numbers are those of column by column.
    SmoothGroups(samples.get(), input.height, rowSamples, m_verticalAlpha);
    std::transform(samples.get(), samples.get() + count, output.pixels, ToSample);
    return VFIL_SUCCESS;
}
