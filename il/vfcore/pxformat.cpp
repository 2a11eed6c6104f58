/// \file
/// The table of the pixel formats, and the predicates that read it.

#include <vfil/pxformat.h>

#include <algorithm>
#include <array>

namespace {

constexpr auto kFormats = std::to_array<vfILFormatInfo>({
    // id, name, model, channels, sample and pixel bytes, then:
    // alpha, topDown, ycc, subsampled, alphaPlane, blueFirst, chromaFirst, splitField, evenFieldFirst
    // clang-format off
    {PXFormat_RGBA32, "RGBA32", PXColorModel_RGB, 4, 1, 4, true, false, false, false, false, false, false, false, false},
    {PXFormat_RGBA64, "RGBA64", PXColorModel_RGB, 4, 2, 8, true, false, false, false, false, false, false, false, false},
    {PXFormat_Mono8, "Mono8", PXColorModel_MONO, 1, 1, 1, false, false, false, false, false, false, false, false, false},
    {PXFormat_Mono16, "Mono16", PXColorModel_MONO, 1, 2, 2, false, false, false, false, false, false, false, false, false},
    {PXFormat_BGRA32, "BGRA32", PXColorModel_RGB, 4, 1, 4, false, false, false, false, false, true, false, false, false},
    {PXFormat_BGR24, "BGR24", PXColorModel_RGB, 3, 1, 3, false, false, false, false, false, true, false, false, false},
    {PXFormat_RGB24, "RGB24", PXColorModel_RGB, 3, 1, 3, false, false, false, false, false, false, false, false, false},
    {PXFormat_Dib24, "Dib24", PXColorModel_UNKNOWN, 3, 1, 3, false, false, false, false, false, true, false, false, false},
    {PXFormat_Dib32, "Dib32", PXColorModel_RGB, 4, 1, 4, true, false, false, false, false, true, false, false, false},
    {PXFormat_YCCA32, "YCCA32", PXColorModel_YCC, 4, 1, 4, true, true, true, false, false, false, false, false, false},
    {PXFormat_YCCA64, "YCCA64", PXColorModel_YCC, 4, 2, 8, true, true, true, false, false, false, false, false, false},
    {PXFormat_YCC422_601, "YCC422_601", PXColorModel_YCC, 3, 1, 2, false, true, true, true, false, false, false, false, false},
    {PXFormat_YCC422_601_SplitEven, "YCC422_601_SplitEven", PXColorModel_YCC, 3, 1, 2, false, true, true, true, false, false, false, true, true},
    {PXFormat_YCC422_601_SplitOdd, "YCC422_601_SplitOdd", PXColorModel_YCC, 3, 1, 2, false, true, true, true, false, false, false, true, false},
    {PXFormat_YCC422_709, "YCC422_709", PXColorModel_YCC709, 3, 1, 2, false, true, true, true, false, false, false, false, false},
    {PXFormat_YCC422_709_SplitEven, "YCC422_709_SplitEven", PXColorModel_YCC709, 3, 1, 2, false, true, true, true, false, false, false, true, true},
    {PXFormat_YCC422_709_SplitOdd, "YCC422_709_SplitOdd", PXColorModel_YCC709, 3, 1, 2, false, true, true, true, false, false, false, true, false},
    {PXFormat_YUV422_601, "YUV422_601", PXColorModel_YCC, 3, 1, 2, false, true, true, true, false, false, true, false, false},
    {PXFormat_YUV422_601_SplitEven, "YUV422_601_SplitEven", PXColorModel_YCC, 3, 1, 2, false, true, true, true, false, false, true, true, true},
    {PXFormat_YUV422_601_SplitOdd, "YUV422_601_SplitOdd", PXColorModel_YCC, 3, 1, 2, false, true, true, true, false, false, true, true, false},
    {PXFormat_YUV422_709, "YUV422_709", PXColorModel_YCC709, 3, 1, 2, false, true, true, true, false, false, true, false, false},
    {PXFormat_YUV422_709_SplitEven, "YUV422_709_SplitEven", PXColorModel_YCC709, 3, 1, 2, false, true, true, true, false, false, true, true, true},
    {PXFormat_YUV422_709_SplitOdd, "YUV422_709_SplitOdd", PXColorModel_YCC709, 3, 1, 2, false, true, true, true, false, false, true, true, false},
    {PXFormat_YCCA422_601, "YCCA422_601", PXColorModel_YCC, 4, 1, 3, true, true, true, true, true, false, true, false, false},
    {PXFormat_YCCA422_709, "YCCA422_709", PXColorModel_YCC709, 4, 1, 3, true, true, true, true, true, false, true, false, false},
    {PXFormat_HLSA32, "HLSA32", PXColorModel_HLS, 4, 1, 4, true, false, false, false, false, false, false, false, false},
    {PXFormat_HLSA64, "HLSA64", PXColorModel_HLS, 4, 2, 8, true, false, false, false, false, false, false, false, false},
    // clang-format on
});

/// Identifiers that have a model and nothing else: no operator takes them.
struct ModelOnly {
    GUID id;
    PXColorModel model;
};

constexpr auto kModelOnly = std::to_array<ModelOnly>({
    {{0x0CB91364, 0x5A29, 0x11CE, {0xBA, 0xBC, 0x00, 0xAA, 0x00, 0x62, 0x92, 0x84}}, PXColorModel_RGB},
    {{0x0CB91366, 0x5A29, 0x11CE, {0xBA, 0xBC, 0x00, 0xAA, 0x00, 0x62, 0x92, 0x84}}, PXColorModel_RGB},
    {{0x2CCF7DB3, 0x7C2F, 0x11CF, {0xB4, 0xC2, 0x00, 0xAA, 0x00, 0x62, 0x94, 0xA2}}, PXColorModel_RGB},
    {{0x0CB9136A, 0x5A29, 0x11CE, {0xBA, 0xBC, 0x00, 0xAA, 0x00, 0x62, 0x92, 0x84}}, PXColorModel_MONO},
    {{0x0CB91367, 0x5A29, 0x11CE, {0xBA, 0xBC, 0x00, 0xAA, 0x00, 0x62, 0x92, 0x84}}, PXColorModel_MONO},
    {{0x0CB91362, 0x5A29, 0x11CE, {0xBA, 0xBC, 0x00, 0xAA, 0x00, 0x62, 0x92, 0x84}}, PXColorModel_UNKNOWN},
});

int Is(const GUID& format, bool vfILFormatInfo::*property)
{
    const vfILFormatInfo* info = vfILFindFormat(format);
    return info != nullptr && info->*property ? 1 : 0;
}

int HasModel(const GUID& format, PXColorModel model)
{
    const vfILFormatInfo* info = vfILFindFormat(format);
    return info != nullptr && info->model == model ? 1 : 0;
}

} // namespace

const vfILFormatInfo* vfILFindFormat(const GUID& format)
{
    const auto* found = std::ranges::find(kFormats, format, &vfILFormatInfo::id);
    return found == kFormats.end() ? nullptr : found;
}

const vfILFormatInfo* vfILFormatAt(std::size_t index)
{
    return index < kFormats.size() ? &kFormats[index] : nullptr;
}

PXColorModel GetColorModelFromFormat(const GUID& format)
{
    if (const vfILFormatInfo* info = vfILFindFormat(format)) return info->model;
    const auto* found = std::ranges::find(kModelOnly, format, &ModelOnly::id);
    return found == kModelOnly.end() ? PXColorModel_UNKNOWN : found->model;
}

int IsFormat601(const GUID& format)
{
    return HasModel(format, PXColorModel_YCC);
}

int IsFormat709(const GUID& format)
{
    return HasModel(format, PXColorModel_YCC709);
}

int IsFormatAlternateYUV(const GUID& format)
{
    return Is(format, &vfILFormatInfo::chromaFirst);
}

int IsFormatSplitField(const GUID& format)
{
    return Is(format, &vfILFormatInfo::splitField);
}

int IsFormatSplitFieldEven(const GUID& format)
{
    return Is(format, &vfILFormatInfo::evenFieldFirst);
}

int IsFormatTopDown(const GUID& format)
{
    return Is(format, &vfILFormatInfo::topDown);
}

int IsFormatWithAlpha(const GUID& format)
{
    return Is(format, &vfILFormatInfo::alpha);
}

int IsFormatYCC(const GUID& format)
{
    return Is(format, &vfILFormatInfo::ycc);
}

int IsFormatYCCA(const GUID& format)
{
    return Is(format, &vfILFormatInfo::alphaPlane);
}
