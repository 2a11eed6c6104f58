/// \file
/// The two passes of the recursive blurs, for each format and arithmetic.

#include "il/loops/blur/recursiverun.h"

#include "il/loops/blur/columnpass.h"
#include "il/loops/blur/rowpass.h"

namespace vfil {

namespace {

template <class Form, class Format>
bool RunPasses(const vfILProcessor& processor, const PaddedInput& input, const RecursiveBlur& blur)
{
    ColumnPass<Form, typename Format::Sample> down(processor, input, Format::kChannels);
    RowPass<Form, Format> across(processor, input);
    if (!down.SetUp(blur.y) || !across.SetUp(blur.x, input, down.Groups())) return false;
    if (down.Run(across)) across.Finish();
    return true;
}

} // namespace

bool RunRecursiveBlur(const vfILMonadicSpatialProc& filter, const vfILWindowRun& run,
                      const RecursiveBlur& blur, const GUID& format, bool useVectors)
{
    if (run.rows == 0) return true;
    PaddedInput input(filter, run, useVectors);
    if (!input.Prepare()) return false;
    bool done = true;
    PointFormats::Visit(format, [&](auto tag) {
        using Format = decltype(tag);
        if constexpr (sizeof(typename Format::Sample) == 1) {
            if (blur.isFixed) {
                done = RunPasses<FixedRecursion, Format>(filter, input, blur);
                return;
            }
        }
        done = RunPasses<FloatRecursion, Format>(filter, input, blur);
    });
    return done;
}

} // namespace vfil
