/// \file
/// Our operators that make rows of rows, over whole pictures.
#include "frames.h"

#include <vfil/fields.h>

namespace bench {

namespace {

struct FieldLayout {
    const char* name;
    const GUID& format;
};

/// Runs it from back and front, or from the only input of the format, to an output.
template <class Processor>
void AddField(const std::string& operation, const FieldLayout& layout, int swapLines = 0)
{
    Add(operation + layout.name, kOurs, [=, &format = layout.format](const Frame& frame) {
        Processor processor;
        if constexpr (std::is_same_v<Processor, vfILInterlace>) {
            // Half of the rows of each are read.
            const bool isVideo = !(format == PXFormat_RGBA32 || format == PXFormat_RGBA64);
            processor.SetInputImgA(&frame.In(format));
            processor.SetInputImgB(isVideo                     ? frame.videoPlate.Get()
                                   : format == PXFormat_RGBA32 ? frame.front.Get()
                                                               : frame.front16.Get());
        } else {
            processor.SetInputImg(&frame.In(format));
        }
        if constexpr (std::is_same_v<Processor, vfILFieldSwap>) processor.SetSwapLines(swapLines);
        processor.SetOutputImg(&frame.Out(format));
        Execute(processor);
    });
}

void AddFields()
{
    static constexpr FieldLayout kLayouts[] = {
        {kFields422, PXFormat_YCC422_601}, {kFieldsRgba, PXFormat_RGBA32}, {kFieldsRgba16, PXFormat_RGBA64}};
    for (const FieldLayout& layout : kLayouts) {
        AddField<vfILInterlace>(kWeave, layout);
        AddField<vfILFieldSwap>(kFieldSwap, layout);
        AddField<vfILFieldSwap>(std::string(kFieldSwap) + "pairs, ", layout, 1);
        AddField<vfILFieldMerge>(kFieldMerge, layout);
    }
}

const Source s_source(AddFields);

} // namespace
} // namespace bench
