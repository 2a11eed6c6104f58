/// \file
/// Our one-input point operators over whole pictures, and their row kernels by themselves.
#include "frames.h"

#include "il/rows/pixel/pointrows.h"

#include <vfil/pixel.h>

namespace bench {

namespace {

template <class Processor>
void AddOneInput(const std::string& operation)
{
    Add(operation, kOurs, [](const Frame& frame) {
        Processor processor;
        processor.SetInputImg(frame.back.Get());
        processor.SetOutputImg(frame.out.Get());
        processor.SetProcessingMode(15);
        Execute(processor);
    });
}

void AddRows()
{
    for (const bool streaming : {true, false}) {
        Add("invert", RowsName(streaming),
            [kernel = vfil::FindInvertRow<std::uint8_t>(true, streaming)](const Frame& frame) {
                for (std::size_t y = 0; y < kHeight; ++y)
                    kernel(Row<std::uint8_t>(frame.back, y), Row<std::uint8_t>(frame.out, y), kWidth,
                           0xFFFFFFFF);
                vfil::FinishStreaming();
            });
        Add("copy", RowsName(streaming), [streaming](const Frame& frame) {
            for (std::size_t y = 0; y < kHeight; ++y)
                vfil::CopyBytes(true, Row<std::uint8_t>(frame.back, y), Row<std::uint8_t>(frame.out, y),
                                kWidth * 4, streaming);
            vfil::FinishStreaming();
        });
    }
}

void AddPixels()
{
    AddOneInput<vfILInvertImg>("invert");
    AddOneInput<vfILCopyImg>("copy");
    AddRows();
}

const Source s_source(AddPixels);

} // namespace
} // namespace bench
