/// \file
/// The pixel family: one picture, one pixel for one pixel.
#include <catalogue/entryof.h>
#include <catalogue/families.h>

#include <vfil/pixel.h>

namespace vfil::catalogue {

namespace {

template <class P>
Entry Pixel(const char* className, const char* summary, const std::vector<GUID>& formats)
{
    Entry entry = EntryOf<P>(className, "pixel", summary);
    entry.inputs = {{"picture", "the picture to work on"}};
    entry.formats = formats;
    entry.channels = VFIL_MODE_RGB;
    return entry;
}

std::vector<GUID> AllFormats()
{
    std::vector<GUID> formats;
    for (std::size_t i = 0; const vfILFormatInfo* info = vfILFormatAt(i); ++i)
        formats.push_back(info->id);
    return formats;
}

Entry Copy()
{
    Entry entry = Pixel<vfILCopyImg>("vfILCopyImg", "copy whole pixels", AllFormats());
    entry.channels = VFIL_MODE_RGBA;
    entry.fixedChannels = VFIL_MODE_RGBA;
    entry.mask = MaskUse::BoxOnly;
    entry.copies = true;
    return entry;
}

Entry Grayscale()
{
    Entry entry = Pixel<vfILGrayscaleImg>("vfILGrayscaleImg", "make colour grey, keeping alpha",
                                          {PXFormat_RGBA32, PXFormat_RGBA64});
    entry.fixedChannels = VFIL_MODE_RGB;
    return entry;
}

} // namespace

std::vector<Entry> PixelEntries()
{
    std::vector<Entry> entries;
    entries.push_back(
        Pixel<vfILInvertImg>("vfILInvertImg", "replace each channel by its complement",
                             {PXFormat_RGBA32, PXFormat_RGBA64, PXFormat_Mono8, PXFormat_Mono16}));
    entries.push_back(Copy());
    entries.push_back(Grayscale());
    return entries;
}

} // namespace vfil::catalogue
