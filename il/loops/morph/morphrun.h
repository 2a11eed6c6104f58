/// \file
/// The loop of the operators with a structuring element.
#pragma once

#include "il/loops/frame/runfold.h"
#include "il/loops/frame/windowloop.h"
#include "il/loops/morph/morphrect.h"

#include <vfil/morphology.h>

namespace vfil {

/// How the extremes of a run are found.
struct ExtremeRule {
    bool largest;
    bool useVectors;
    bool streaming; ///< results may go around the cache where they go to the output
};

/// Runs over the treated rows: finish(row, results) gets the extremes below the element and may change them.
/// Below an empty element they are the input. False when memory is short.
template <class Format, class Finish>
bool RunExtremes(const vfILProcessor& processor, vfILWindowRun& run, const WindowShape& element,
                 const ExtremeRule& rule, Finish finish)
{
    using Sample = typename Format::Sample;
    const ExtremeKernels<Sample> kernels(rule.largest, rule.useVectors,
                                         rule.streaming && WritesToOutput<Format>(run));
    const auto runRows = [&](auto&& fold) {
        RunWindowRows<Format>(processor, run, [&](long row, Sample* results) {
            fold(row, results);
            finish(row, results);
        });
    };
    if (element.IsEmpty()) {
        const long samples = run.processBox.GetSizeX() * Format::kChannels;
        runRows([&run, samples](long row, Sample* results) {
            std::copy_n(RowOf<const Sample>(run.centres, row), samples, results);
        });
        return true;
    }
    const auto fold = [&runRows](auto rows) {
        if (!rows.Allocate()) return false;
        runRows(rows);
        return true;
    };
    if (element.IsWholeWindow()) return fold(RectangleFold<Format>(run, kernels));
    return fold(RunFold(SampleRows<Format>(run, kernels), element, run));
}

} // namespace vfil

/// Its shape.
class vfILMorphologicalProc::Element {
public:
    vfil::WindowShape shape;
};
