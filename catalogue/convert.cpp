/// \file
/// The convert family: one picture in, the same picture in another format out; and the luma as alpha.
#include <catalogue/entryof.h>
#include <catalogue/families.h>
#include <catalogue/parameters.h>

#include <vfil/models.h>

#include <algorithm>
#include <utility>

namespace vfil::catalogue {

namespace {

using Pairs = std::vector<FormatPair>;

constexpr const char* kTurnsOver =
    "this class alone leaves the picture upside down: convert and the conversions "
    "that are inserted put it upright";

std::vector<GUID> InputsOf(const Pairs& pairs)
{
    std::vector<GUID> formats;
    for (const FormatPair& pair : pairs) {
        if (std::find(formats.begin(), formats.end(), pair.from) == formats.end())
            formats.push_back(pair.from);
    }
    return formats;
}

template <class P>
Entry Converter(const char* className, const char* summary, const Pairs& pairs)
{
    Entry entry = WholePictureEntry<P>(className, "convert", summary);
    entry.inputs = {{"picture", "the picture to convert"}};
    entry.formats = InputsOf(pairs);
    entry.conversions = pairs;
    return entry;
}

Pairs BothWays(Pairs pairs)
{
    for (std::size_t i = 0, count = pairs.size(); i < count; ++i)
        pairs.push_back({pairs[i].to, pairs[i].from, pairs[i].turnsOver});
    return pairs;
}

// The pairs of a class with the RGB formats `full` (32 bits) and `opaque` (24 bits), as RGB and YCC. Alpha
// planes need the 32 bits. Full-rate YCC is top-down, yet its memory rows keep their order.
Pairs YccPairs(const GUID& full, const GUID& opaque)
{
    Pairs pairs;
    for (std::size_t i = 0; const vfILFormatInfo* info = vfILFormatAt(i); ++i) {
        if (!info->ycc || info->sampleBytes != 1) continue;
        pairs.push_back({full, info->id, !info->subsampled});
        if (!info->alphaPlane) pairs.push_back({opaque, info->id, !info->subsampled});
    }
    return pairs;
}

Pairs Reversed(Pairs pairs)
{
    for (FormatPair& pair : pairs)
        std::swap(pair.from, pair.to);
    return pairs;
}

Pairs With16Bits(Pairs pairs)
{
    pairs.push_back({PXFormat_RGBA64, PXFormat_YCCA64, true});
    return pairs;
}

// P is the class that declares the accessors: the frames of the two directions have each their own.
template <class P>
Parameter Filtering(Value fallback, const char* summary)
{
    Parameter parameter = FlagParameter<&P::SetDoFiltering, &P::GetDoFiltering>(fallback, summary);
    parameter.role = ParameterRole::ChromaFilter;
    return parameter;
}

Parameter Dithering()
{
    Parameter parameter = FlagParameter<&vfILRGB2YCCProc::SetDoDithering, &vfILRGB2YCCProc::GetDoDithering>(
        Value{0}, "carry the rounding error of 4:2:2 samples along the row");
    parameter.role = ParameterRole::Dither;
    return parameter;
}

template <class P>
Entry ToYcc(const char* className, const char* summary, const Pairs& pairs)
{
    Entry entry = Converter<P>(className, summary, pairs);
    entry.parameters = {
        Filtering<vfILRGB2YCCProc>(Value{1}, "average the chroma of a 4:2:2 pair; without, the left pixel's"),
        Dithering()};
    entry.spatialReach = 1;
    entry.note = "to full-rate YCC the picture comes out upside down: convert and the conversions that are "
                 "inserted put it upright";
    return entry;
}

template <class P>
Entry FromYcc(const char* className, const char* summary, const Pairs& pairs)
{
    Entry entry = Converter<P>(className, summary, pairs);
    entry.parameters = {Filtering<vfILYCC2RGBProc>(
        Value{0}, "interpolate the chroma of a 4:2:2 pair's right pixel; without, repeat the left one's")};
    entry.spatialReach = 3;
    entry.note = "from full-rate YCC the picture comes out upside down: convert and the conversions that are "
                 "inserted put it upright";
    return entry;
}

Entry SwapRedAndBlue()
{
    Entry entry = Converter<vfILRGBA2BGRA>("vfILRGBA2BGRA", "exchange red and blue",
                                           BothWays({{PXFormat_RGBA32, PXFormat_BGRA32, true}}));
    entry.note = kTurnsOver;
    return entry;
}

Entry LumaAsAlpha()
{
    Entry entry = Converter<vfILRGBA2Alpha>("vfILRGBA2Alpha", "put the luma of a picture into its alpha", {});
    entry.inputs = {{"picture", "the picture to work on"}};
    entry.formats = {PXFormat_RGBA32, PXFormat_RGBA64};
    entry.mask = MaskUse::Sampled;
    return entry;
}

} // namespace

std::vector<Entry> ConvertEntries()
{
    const Pairs rgba = YccPairs(PXFormat_RGBA32, PXFormat_RGB24);
    const Pairs bgra = YccPairs(PXFormat_BGRA32, PXFormat_BGR24);
    std::vector<Entry> entries;
    entries.push_back(ToYcc<vfILRGBA2YCCA>("vfILRGBA2YCCA", "RGB to YCC", With16Bits(rgba)));
    entries.push_back(ToYcc<vfILBGRA2YCCA>("vfILBGRA2YCCA", "BGR to YCC", bgra));
    entries.push_back(ToYcc<vfILDIB2YCCA>("vfILDIB2YCCA", "rows of a device-independent bitmap to YCC",
                                          YccPairs(PXFormat_Dib32, PXFormat_Dib24)));
    entries.push_back(FromYcc<vfILYCCA2RGBA>("vfILYCCA2RGBA", "YCC to RGB", Reversed(With16Bits(rgba))));
    entries.push_back(FromYcc<vfILYCCA2BGRA>("vfILYCCA2BGRA", "YCC to BGR", Reversed(bgra)));
    entries.push_back(
        Converter<vfIL16to8>("vfIL16to8", "16 bits to 8: the high byte",
                             {{PXFormat_RGBA64, PXFormat_RGBA32}, {PXFormat_Mono16, PXFormat_Mono8}}));
    entries.push_back(
        Converter<vfIL8to16>("vfIL8to16", "8 bits to 16: the byte twice",
                             {{PXFormat_RGBA32, PXFormat_RGBA64}, {PXFormat_Mono8, PXFormat_Mono16}}));
    const Pairs hls = {{PXFormat_RGBA32, PXFormat_HLSA32}, {PXFormat_RGBA64, PXFormat_HLSA64}};
    entries.push_back(Converter<vfILRGBA2HLSA>("vfILRGBA2HLSA", "RGB to hue, lightness and saturation", hls));
    entries.push_back(
        Converter<vfILHLSA2RGBA>("vfILHLSA2RGBA", "hue, lightness and saturation to RGB", Reversed(hls)));
    entries.push_back(Converter<vfILRGB2RGBA>("vfILRGB2RGBA", "add full alpha, or drop alpha",
                                              BothWays({{PXFormat_RGB24, PXFormat_RGBA32}})));
    entries.push_back(SwapRedAndBlue());
    entries.push_back(LumaAsAlpha());
    return entries;
}

} // namespace vfil::catalogue
