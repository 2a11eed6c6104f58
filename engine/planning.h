/// \file
/// The parts of CheckJob, and what they share. Private to the engine.
#pragma once

#include "engine/jobplan.h"
#include "engine/message.h"

namespace vfil::engine {

/// The record of a format of the library.
const vfILFormatInfo& InfoOf(const GUID& format);
bool IsMono(const GUID& format);
/// Whether samples have 16 bits.
bool IsDeep(const GUID& format);

/// Opens a source and adds its signal.
void PlanSource(JobPlan& plan, Source source);
/// Checks a step whose inputs are planned, and adds its results.
void PlanStep(JobPlan& plan, Step step);
/// The same of a step without inputs.
void PlanGenerator(JobPlan& plan, Step step);
/// Checks a sink.
void PlanSink(JobPlan& plan, Sink sink);

using Signals = std::vector<const Signal*>;

/// The format in which a step works on its inputs.
///
/// \throws RequestError when there is none
GUID WorkingFormat(const Step& step, const Signals& inputs);

/// Bits of the mode that choose one field.
inline constexpr unsigned long kFieldBits = VFIL_MODE_ODD_ROWS | VFIL_MODE_EVEN_ROWS;

/// The processor of a step, with the parameters that are given.
std::unique_ptr<catalogue::Operator> Prepared(const Step& step);
/// Refuses an output that would be larger than pictures are.
///
/// \param settings What makes it so large.
void CheckOutputSize(const GUID& format, const vfILVector2l& size, const Message& settings);
/// Adds a signal for each result that is wanted.
void AddResults(JobPlan& plan, StepPlan& planned, Signal result);

/// Lets luma weigh as in the first input, where nobody says how; of pictures as BT.709, whose primaries they
/// have.
void TakeColourModel(StepPlan& planned, const Signal& first);
/// Checks the file of a report on a step, and says when there is nothing to make legal.
void PlanLegality(JobPlan& plan, const StepPlan& planned, const Signal& input);

/// Settles which frames a step takes and makes that works on fields, and what order they have then; says once
/// that a step mixes the fields of a frame.
///
/// \param input The first one that is a clip, else the first one.
void PlanFields(JobPlan& plan, StepPlan& planned, const Signal& input);

/// Chooses the output of a step that moves its input: its region lies on the plane of the result.
///
/// \throws RequestError for parameters by which the input cannot be placed, and for frames of two fields
void PlanCanvas(StepPlan& planned, const Signal& input);

/// The signal of a name, or none.
std::optional<std::size_t> FindSignal(const JobPlan& plan, const std::string& name);
/// The conversion of a signal to a format, noted among the insertions. None when there is none.
std::optional<Conversion> Insert(JobPlan& plan, const Signal& signal, const GUID& to);

} // namespace vfil::engine
