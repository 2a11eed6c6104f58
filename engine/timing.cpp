/// \file
/// Times: the smallest count of frames of each source for which all signals have whole frames.
#include "engine/timing.h"

#include <algorithm>

namespace vfil::engine {

namespace {

// The least run whose result lies at `from` or behind it.
long FirstRunFor(long from, const StepOutput& output)
{
    const long past = from - output.offset + output.stride - 1;
    return past >= 0 ? past / output.stride : -((-past + output.stride - 1) / output.stride);
}

void Widen(Signal& signal, long first, long end)
{
    signal.first = std::min(signal.first, first);
    signal.end = std::max(signal.end, end);
}

// The runs that make what of the results is looked at.
void SettleRuns(const JobPlan& plan, StepPlan& step)
{
    bool any = false;
    for (const StepOutput& output : step.outputs) {
        if (!output.signal) continue;
        const Signal& signal = plan.signals[*output.signal];
        const long first = FirstRunFor(signal.first, output);
        const long end = FirstRunFor(signal.end, output);
        step.firstRun = any ? std::min(step.firstRun, first) : first;
        step.endRun = any ? std::max(step.endRun, end) : end;
        any = true;
    }
}

void WidenAround(JobPlan& plan, const StepPlan& step, const std::optional<std::size_t>& signal, long stride,
                 long offset)
{
    if (!signal || !plan.signals[*signal].clip) return;
    Widen(plan.signals[*signal], step.firstRun * stride + offset, (step.endRun - 1) * stride + offset + 1);
}

} // namespace

void PlanTimes(JobPlan& plan)
{
    int least = 0;
    for (const Signal& signal : plan.signals)
        least = std::min(least, signal.doublings);
    plan.sourceFrames = 1L << -least;
    for (Signal& signal : plan.signals) {
        if (signal.clip) signal.count = signal.end = 1L << (signal.doublings - least);
    }
    for (auto step = plan.steps.rbegin(); step != plan.steps.rend(); ++step) {
        if (!step->clip) continue;
        SettleRuns(plan, *step);
        for (const StepOutput& output : step->outputs)
            WidenAround(plan, *step, output.signal, output.stride, output.offset);
        for (const StepInput& input : step->inputs) {
            WidenAround(plan, *step, input.signal, input.stride, input.offset);
            if (input.otherwise) WidenAround(plan, *step, input.signal, input.stride, *input.otherwise);
        }
        if (step->mask) WidenAround(plan, *step, step->mask->input.signal, 1, 0);
    }
}

} // namespace vfil::engine
