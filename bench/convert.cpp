/// \file
/// Our conversions, over whole pictures.
#include "frames.h"

#include <vfil/convert.h>
#include <vfil/models.h>

namespace bench {

namespace {

template <class Converter, class Tune>
void AddTuned(const std::string& operation, const GUID& from, const GUID& to, Tune tune)
{
    Add(operation, kOurs, [=](const Frame& frame) {
        Converter converter;
        converter.SetInputImg(&frame.In(from));
        converter.SetOutputImg(&frame.Out(to));
        tune(converter);
        Execute(converter);
    });
}

template <class Converter>
void AddConverter(const std::string& operation, const GUID& from, const GUID& to)
{
    AddTuned<Converter>(operation, from, to, [](Converter&) {});
}

void AddConversions()
{
    AddConverter<vfILRGBA2YCCA>(kToUyvy601, PXFormat_RGBA32, PXFormat_YUV422_601);
    AddConverter<vfILRGBA2YCCA>(kToUyvy709, PXFormat_RGBA32, PXFormat_YUV422_709);
    AddConverter<vfILRGBA2YCCA>(kToYuyv601, PXFormat_RGBA32, PXFormat_YCC422_601);
    AddTuned<vfILRGBA2YCCA>(std::string(kToUyvy601) + ", dithered", PXFormat_RGBA32, PXFormat_YUV422_601,
                            [](vfILRGBA2YCCA& converter) { converter.SetDoDithering(1); });
    AddConverter<vfILRGBA2YCCA>(kRgb24ToUyvy, PXFormat_RGB24, PXFormat_YUV422_601);
    AddConverter<vfILYCCA2RGBA>(kFromUyvy601, PXFormat_YUV422_601, PXFormat_RGBA32);
    AddConverter<vfILYCCA2RGBA>(kFromUyvy709, PXFormat_YUV422_709, PXFormat_RGBA32);
    AddConverter<vfILYCCA2RGBA>(kFromYuyv601, PXFormat_YCC422_601, PXFormat_RGBA32);
    AddTuned<vfILYCCA2RGBA>(std::string(kFromUyvy601) + ", filtered", PXFormat_YUV422_601, PXFormat_RGBA32,
                            [](vfILYCCA2RGBA& converter) { converter.SetDoFiltering(1); });
    AddConverter<vfILYCCA2RGBA>(kUyvyToRgb24, PXFormat_YUV422_601, PXFormat_RGB24);
    AddConverter<vfIL16to8>(k16To8, PXFormat_RGBA64, PXFormat_RGBA32);
    AddConverter<vfIL8to16>(k8To16, PXFormat_RGBA32, PXFormat_RGBA64);
    AddConverter<vfILRGBA2BGRA>(kSwap, PXFormat_RGBA32, PXFormat_BGRA32);
    AddConverter<vfILRGB2RGBA>(kExpand, PXFormat_RGB24, PXFormat_RGBA32);
    AddConverter<vfILRGB2RGBA>(kDrop, PXFormat_RGBA32, PXFormat_RGB24);
    AddConverter<vfILRGBA2HLSA>(kToHls, PXFormat_RGBA32, PXFormat_HLSA32);
    AddConverter<vfILHLSA2RGBA>(kFromHls, PXFormat_HLSA32, PXFormat_RGBA32);
    AddConverter<vfILRGBA2YCCA>(kToYcca, PXFormat_RGBA32, PXFormat_YCCA32);
    AddConverter<vfILYCCA2RGBA>(kFromYcca, PXFormat_YCCA32, PXFormat_RGBA32);
    AddConverter<vfILRGBA2YCCA>(kToYcca64, PXFormat_RGBA64, PXFormat_YCCA64);
}

const Source s_source(AddConversions);

} // namespace
} // namespace bench
