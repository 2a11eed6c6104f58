/// \file
/// The run of one step: prepare, connect, check, execute.
#include "engine/steprunner.h"
#include "engine/failure.h"
#include "engine/interrupt.h"
#include "engine/planning.h"
#include "engine/settings.h"
#include "engine/words.h"
#include "host/pixelrows.h"

#include <algorithm>
#include <cstdint>
#include <new>

namespace vfil::engine {

namespace {

// RGBA.
constexpr std::size_t kAlphaChannel = 3;

// Rounding makes full alpha a code less here and there. Of opaque pictures straight colour is the same.
void MakeOpaque(host::Picture& picture)
{
    const vfILFormatInfo& info = picture.FormatInfo();
    if (!info.alpha) return;
    picture.SetPremultiplied(false);
    const auto pixel = static_cast<std::size_t>(info.pixelBytes);
    const auto sample = static_cast<std::size_t>(info.sampleBytes);
    for (long y = 0; y < picture.Height(); ++y) {
        std::uint8_t* alpha = picture.Row(y) + kAlphaChannel * sample;
        for (long x = 0; x < picture.Width(); ++x, alpha += pixel)
            std::fill_n(alpha, sample, std::uint8_t{255});
    }
}

} // namespace

StepRunner::StepRunner(const JobPlan& plan, const StepPlan& step, KeyColours& colours)
    : m_plan(plan), m_step(step), m_colours(colours), m_op(step.step.entry->make(!plan.settings.plain))
{
    for (const StepInput& input : step.inputs)
        m_inputs.push_back({Converter(input.conversion, plan.settings), {}, {}});
    if (step.padding > 0) m_op->Placing()->Pad(step.padding);
    if (step.mask) m_mask.emplace(step.mask->input.conversion, plan.settings);
    m_outputs.resize(step.outputs.size());
}

// Whether the picture has no clear pixel for sure, so that its colour is the same multiplied. Those that do
// not change, and frames that are looked at from beside, are shared among the threads of a clip, and
// multiplied like any other.
bool StepRunner::IsOpaqueFrame(std::size_t input) const
{
    const StepInput& plan = m_step.inputs[input];
    if (!plan.signal) return false;
    const Signal& signal = m_plan.signals[*plan.signal];
    const bool shared = signal.end - signal.first > signal.count;
    return (signal.clip || !m_plan.clip) && !shared && !signal.alpha && !signal.mayClear;
}

// What output pixels without a source take.
vfILColor StepRunner::FillColor() const
{
    const vfILColor& color = m_step.step.defaultColor;
    const double alpha = color.GetAlpha();
    if (!m_step.multiply) return color;
    return {color.GetRed() * alpha, color.GetGreen() * alpha, color.GetBlue() * alpha, alpha};
}

// Whether the operator writes every pixel of the output by itself.
bool StepRunner::Covers() const
{
    const bool whole = m_step.outputSize == m_step.roi.GetSize();
    return whole && (m_step.step.mode & kFieldBits) == 0;
}

host::PicturePtr StepRunner::PrepareInput(std::size_t index, const host::PicturePtr& picture,
                                          Stopwatch& watch)
{
    watch.Start();
    host::PicturePtr prepared = m_inputs[index].converter.Convert(picture);
    watch.Lap(Phase::Convert);
    if (m_step.multiply && !prepared->Premultiplied()) Multiply(index, prepared);
    if (m_step.padding > 0) Pad(index, prepared);
    watch.Lap(Phase::Prepare);
    return prepared;
}

void StepRunner::Multiply(std::size_t index, host::PicturePtr& picture)
{
    if (IsOpaqueFrame(index)) return;
    const host::PicturePtr made =
        m_inputs[index].multiplied.Get(picture->Format(), picture->Width(), picture->Height());
    for (long y = 0; y < picture->Height(); ++y) {
        StopIfInterrupted(m_plan.settings.interrupt);
        host::PremultiplyRow(picture->Row(y), picture->FormatInfo().sampleBytes, made->Row(y),
                             picture->Width());
    }
    made->SetPremultiplied(true);
    picture = made;
}

// The picture with its edges repeated around it.
void StepRunner::Pad(std::size_t index, host::PicturePtr& picture)
{
    const long padding = m_step.padding;
    const long width = picture->Width();
    const long height = picture->Height();
    const host::PicturePtr made =
        m_inputs[index].padded.Get(picture->Format(), width + 2 * padding, height + 2 * padding);
    const auto pixel = static_cast<std::size_t>(picture->PixelBytes());
    for (long y = 0; y < made->Height(); ++y) {
        const std::uint8_t* from = picture->Row(std::clamp(y - padding, 0L, height - 1));
        std::uint8_t* to = made->Row(y);
        const std::size_t bytes = static_cast<std::size_t>(width) * pixel;
        for (long x = 0; x < padding; ++x, to += pixel)
            std::copy_n(from, pixel, to);
        to = std::copy_n(from, bytes, to);
        for (long x = 0; x < padding; ++x, to += pixel)
            std::copy_n(from + bytes - pixel, pixel, to);
    }
    made->SetPremultiplied(picture->Premultiplied());
    picture = made;
}

host::PicturePtr StepRunner::PrepareMask(const host::PicturePtr& picture, Stopwatch& watch)
{
    watch.Start();
    host::PicturePtr prepared = m_mask->Convert(picture);
    watch.Lap(Phase::Convert);
    return prepared;
}

// Whether a frame is missing that the step looks at beside its own.
bool StepRunner::IsAlone(const std::vector<host::PicturePtr>& inputs) const
{
    for (std::size_t i = 0; i < inputs.size(); ++i)
        if (m_step.inputs[i].otherwise && !inputs[i]) return true;
    return false;
}

void StepRunner::Connect(const std::vector<host::PicturePtr>& inputs, const host::PicturePtr& mask)
{
    for (std::size_t i = 0; i < inputs.size(); ++i)
        m_op->SetInput(i, inputs[i].Get());
    for (std::size_t i = 0; i < m_outputs.size(); ++i) {
        const host::PicturePtr output = Output(i);
        // Operators that know better say so after the run.
        if (output && !inputs.empty() && inputs.front())
            output->SetPremultiplied(inputs.front()->Premultiplied());
        m_op->SetOutput(i, output.Get());
    }
    if (m_op->Frame()) PlaceRegion(*m_op->Frame(), mask);
    m_op->Processor().SetProcessingMode(m_step.step.mode);
    for (const auto& [parameter, value] : m_step.step.parameters)
        parameter->apply(m_op->Processor(), value);
    if (m_step.alone && IsAlone(inputs)) m_step.alone->first->apply(m_op->Processor(), m_step.alone->second);
    const std::optional<ColourPlace>& place = m_step.step.keyColour;
    if (place) place->parameter->apply(m_op->Processor(), m_colours.Of(m_step, inputs.front()));
}

void StepRunner::PlaceRegion(vfILImgProc& processor, const host::PicturePtr& mask) const
{
    processor.SetDefaultColor(FillColor());
    if (!Covers()) {
        // The whole output takes the default colour, also what lies outside the target.
        processor.SetROI(vfILBbox2l(0, 0, m_step.outputSize[0], m_step.outputSize[1]));
        processor.SetOutputOffset({});
        processor.SetProcessingMode(VFIL_MODE_RGBA);
        processor.FillOutputImage(FillColor());
    }
    processor.SetROI(m_step.roi);
    processor.SetOutputOffset(m_step.outputOffset);
    if (mask) processor.SetMask(m_step.mask->box, mask.Get(), m_step.mask->channel);
}

// Rows of the other field show the dominant picture, as they do for a host that works in place.
void StepRunner::ShowOtherField(const host::PicturePtr& dominant)
{
    if ((m_step.step.mode & kFieldBits) == 0) return;
    const catalogue::Entry& entry = catalogue::Copier();
    const std::unique_ptr<catalogue::Operator> copy = entry.make(!m_plan.settings.plain);
    copy->SetInput(0, dominant.Get());
    copy->SetOutput(0, Output(0).Get());
    vfILBbox2l region = m_step.roi;
    region.SetOffset(region.GetOffset() - m_step.dominantBox.GetOffset());
    copy->Frame()->SetROI(region);
    copy->Frame()->SetOutputOffset(m_step.outputOffset);
    copy->Frame()->SetDefaultColor(FillColor());
    Execute(entry, copy->Processor(), m_plan.settings.interrupt);
}

host::PicturePtr StepRunner::Output(std::size_t index)
{
    if (!m_step.outputs[index].signal) return {};
    const vfILVector2l& size = m_step.outputSize;
    try {
        return m_outputs[index].Get(m_step.resultFormat, size[0], size[1]);
    } catch (const std::bad_alloc&) {
        if (!m_step.step.entry->places) throw;
        throw RequestError("memory is short for an output of " + SizeText(size[0], size[1]) + "; see " +
                           Named(kCanvasSetting));
    }
}

std::vector<host::PicturePtr> StepRunner::Run(const std::vector<host::PicturePtr>& inputs,
                                              const host::PicturePtr& mask, Stopwatch& watch)
{
    watch.Start();
    // Opaque frames count as multiplied here; what other steps see of them stays.
    std::vector<host::PicturePtr> lent;
    for (std::size_t i = 0; m_step.multiply && i < inputs.size(); ++i) {
        if (!IsOpaqueFrame(i) || inputs[i]->Premultiplied()) continue;
        inputs[i]->SetPremultiplied(true);
        lent.push_back(inputs[i]);
    }
    Connect(inputs, mask);
    if (!inputs.empty()) ShowOtherField(inputs[m_step.dominant]);
    watch.Lap(Phase::Prepare);
    Concerning(m_step.step.where, NameOf(m_step.step),
               [&] { Execute(*m_step.step.entry, m_op->Processor(), m_plan.settings.interrupt); });
    for (const host::PicturePtr& picture : lent)
        picture->SetPremultiplied(false);
    std::vector<host::PicturePtr> results;
    for (std::size_t i = 0; i < m_outputs.size(); ++i) {
        results.push_back(Output(i));
        if (m_step.opaque && results.back()) MakeOpaque(*results.back());
    }
    watch.Lap(Phase::Run);
    return results;
}

} // namespace vfil::engine
