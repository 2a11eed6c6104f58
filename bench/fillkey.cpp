/// \file
/// Our splitting and joining of fill and key, over whole pictures.
#include "frames.h"

#include <vfil/fillkey.h>

namespace bench {

namespace {

void AddFill(const char* operation, const GUID& fill)
{
    Add(operation, kOurs, [=](const Frame& frame) {
        vfILYCCA2YCCYCC splitter;
        splitter.SetInputImg(&frame.In(PXFormat_YCCA422_601));
        splitter.SetOutputImgA(&frame.Out(fill));
        Execute(splitter);
    });
}

void AddFillAndKey()
{
    AddFill(kFillCopied, PXFormat_YUV422_601);
    AddFill(kFillSwapped, PXFormat_YCC422_601);
    Add(kKey, kOurs, [](const Frame& frame) {
        vfILYCCA2YCCYCC splitter;
        splitter.SetInputImg(&frame.In(PXFormat_YCCA422_601));
        splitter.SetOutputImgB(&frame.Out(PXFormat_YUV422_601));
        Execute(splitter);
    });
    Add(kJoin, kOurs, [](const Frame& frame) {
        vfILYCCYCC2YCCA joiner;
        joiner.SetInputImgA(&frame.In(PXFormat_YUV422_601));
        joiner.SetInputImgB(&frame.In(PXFormat_YCC422_601));
        joiner.SetOutputImg(&frame.Out(PXFormat_YCCA422_601));
        Execute(joiner);
    });
}

const Source s_source(AddFillAndKey);

} // namespace
} // namespace bench
