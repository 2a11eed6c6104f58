/// \file
/// One step of a job with its processors and pictures, for one thread at a time.
#pragma once

#include "engine/execute.h"
#include "engine/jobplan.h"
#include "engine/keycolours.h"
#include "engine/stopwatch.h"

namespace vfil::engine {

class StepRunner {
public:
    /// \param plan, step, colours  Must outlive this object.
    StepRunner(const JobPlan& plan, const StepPlan& step, KeyColours& colours);

    /// Input \p index in the format of the step, multiplied by alpha where the step works so. Holds until the
    /// next call for this input.
    host::PicturePtr PrepareInput(std::size_t index, const host::PicturePtr& picture, Stopwatch& watch);
    /// The mask in the format in which it is read.
    host::PicturePtr PrepareMask(const host::PicturePtr& picture, Stopwatch& watch);
    /// Runs the operator.
    ///
    /// \param inputs Prepared.
    /// \param mask   Prepared; null without one.
    /// \return the results, which hold until the next call
    std::vector<host::PicturePtr> Run(const std::vector<host::PicturePtr>& inputs,
                                      const host::PicturePtr& mask, Stopwatch& watch);

private:
    struct Input {
        Converter converter;
        Buffer multiplied;
        Buffer padded;
    };

    bool IsOpaqueFrame(std::size_t input) const;
    vfILColor FillColor() const;
    bool Covers() const;
    bool IsAlone(const std::vector<host::PicturePtr>& inputs) const;
    void Multiply(std::size_t index, host::PicturePtr& picture);
    void Pad(std::size_t index, host::PicturePtr& picture);
    void Connect(const std::vector<host::PicturePtr>& inputs, const host::PicturePtr& mask);
    void PlaceRegion(vfILImgProc& processor, const host::PicturePtr& mask) const;
    host::PicturePtr Output(std::size_t index);
    void ShowOtherField(const host::PicturePtr& dominant);

    const JobPlan& m_plan;
    const StepPlan& m_step;
    KeyColours& m_colours;
    std::unique_ptr<catalogue::Operator> m_op;
    std::vector<Input> m_inputs;
    std::optional<Converter> m_mask;
    std::vector<Buffer> m_outputs;
};

} // namespace vfil::engine
