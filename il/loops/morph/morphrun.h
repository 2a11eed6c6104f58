/// \file
/// The loop of the operators with a structuring element.
#pragma once

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
/// Below an empty element they are the input.
template <class Format, class Finish>
void RunExtremes(const vfILProcessor& processor, vfILWindowRun& run, const ElementRuns& runs,
                 const ExtremeRule& rule, Finish finish)
{
    using Sample = typename Format::Sample;
    const ExtremeKernels<Sample> kernels(rule.largest, rule.useVectors,
                                         rule.streaming && WritesToOutput<Format>(run));
    const auto runRows = [&](auto fold) {
        RunWindowRows<Format>(processor, run, [&](long row, Sample* results) {
            fold(row, results);
            finish(row, results);
        });
    };
    if (runs.empty()) {
        const long samples = run.processBox.GetSizeX() * Format::kChannels;
        runRows([&run, samples](long row, Sample* results) {
            std::copy_n(RowOf<const Sample>(run.centres, row), samples, results);
        });
    } else if (IsWholeWindow(runs, run.kernelWidth, run.kernelHeight)) {
        runRows(RectangleFold<Format>(run, kernels));
    } else {
        runRows(RunFold(SampleRows<Format>(run, kernels), runs, run));
    }
}

} // namespace vfil

/// Its shape as runs of rows.
class vfILMorphologicalProc::Element {
public:
    vfil::ElementRuns runs;
};
