/// \file
/// A job that has been checked: what flows from where to where, in which format, and what is done to it.
#pragma once

#include "engine/conversion.h"
#include "engine/job.h"
#include "engine/message.h"

#include <cstddef>

namespace vfil::engine {

/// Something that flows through a job: what a source gives or a step makes.
struct Signal {
    std::string name;
    std::string label; ///< in messages: the path of a source, the name of a result
    GUID format{};
    long width = 0;
    long height = 0;
    bool clip = false;                                           ///< changes from frame to frame
    host::FieldOrder fieldOrder = host::FieldOrder::Progressive; ///< as far as anybody says
    bool alpha = false;    ///< its first input had an alpha channel that counts
    bool mayClear = false; ///< an operator may have made pixels clear that have no alpha otherwise
    bool ofCanvas = false; ///< its size is that of a canvas
    GUID home{};           ///< the format in which it is written, as far as the file takes it
    std::optional<std::size_t> clipRoot; ///< the first source behind it that is a clip
    int doublings = 0;                   ///< how often its rate is twice that of the sources; negative: half
    long count = 1; ///< of its frames belong together at a time: they are the frames 0 .. count - 1
    long first = 0; ///< of those that are looked at then, also before and behind; none where a clip ends
    long end = 1;
};

/// A source with what its file says.
struct SourcePlan {
    Source source;
    host::PictureInfo picture;                 ///< of a picture
    std::shared_ptr<host::VideoReader> reader; ///< of a clip
    Conversion conversion;                     ///< of frames as they are read to the format of the signal
    std::size_t signal = 0;

    bool IsClip() const { return reader != nullptr; }
};

/// An input of a step: a signal on its way into the format in which the step works.
struct StepInput {
    std::optional<std::size_t> signal; ///< none for an optional input that is missing
    Conversion conversion;
    bool isFirst = false; ///< is the first input again, and prepared with it
    // A run takes frame run * stride + offset.
    long stride = 1;
    long offset = 0;
    std::optional<long> otherwise = {}; ///< the offset where there is no such frame; without any there the
                                        ///< step does without this input
};

/// A result of a step. Several may be frames of one signal.
struct StepOutput {
    std::optional<std::size_t> signal = {}; ///< none for what is not wanted
    // A run makes frame run * stride + offset.
    long stride = 1;
    long offset = 0;
};

/// The mask of a step.
struct MaskPlan {
    StepInput input;
    PXImageChannel channel = PXImageChannel_MONO;
    vfILBbox2l box; ///< in the first picture
};

/// A step whose pictures, regions and output have been checked, as far as this goes without reading pixels.
struct StepPlan {
    Step step;
    std::vector<StepInput> inputs;
    std::vector<StepOutput> outputs;
    GUID resultFormat{};
    GUID format{};            ///< of the inputs, converted
    std::size_t dominant = 0; ///< index of the input that shows where two do not overlap
    vfILBbox2l dominantBox;   ///< on the plane of the region
    vfILBbox2l roi;
    vfILVector2l outputOffset;
    vfILVector2l outputSize;
    std::optional<MaskPlan> mask;
    host::FieldOrder fieldOrder = host::FieldOrder::Progressive; ///< of the results
    int doubles = 0;                                             ///< 1 makes two frames of one, -1 one of two
    long firstRun = 0; ///< of the runs at a time: those that its results are needed of
    long endRun = 1;
    /// In place of what is given or usual, where an input that has an `otherwise` finds nothing.
    std::optional<std::pair<const catalogue::Parameter*, catalogue::Value>> alone;
    bool clip = false;     ///< runs once a frame
    bool multiply = false; ///< straight inputs are multiplied by their alpha first
    long padding = 0;      ///< pixels around the input that repeat its edges
    bool opaque = false;   ///< no pixel of the result can be clear, but for the rounding of alpha
};

/// A sink with what goes into its file.
struct SinkPlan {
    Sink sink;
    std::size_t signal = 0;
    Conversion conversion;
    bool clip = false;            ///< the file is a clip
    bool checkOpaque = false;     ///< the file shows no alpha, and the signal may have got some
    host::VideoSettings settings; ///< of a clip
};

/// A conversion that was inserted, for reports.
struct InsertedConversion {
    std::string label; ///< of what is converted
    GUID from{};
    Conversion conversion;
};

/// A checked job. Steps stand in the order in which they run.
struct JobPlan {
    RunSettings settings;
    std::vector<SourcePlan> sources;
    std::vector<StepPlan> steps;
    std::vector<SinkPlan> sinks;
    std::vector<Signal> signals;
    std::vector<InsertedConversion> insertions;
    std::vector<Message> remarks; ///< what the user should know before the run, a line each
    long sourceFrames = 1;        ///< that each clip gives at a time
    bool clip = false;            ///< anything changes from frame to frame
    bool loses16Bits = false;     ///< somewhere; said once
    bool mixesFields = false;     ///< likewise
};

} // namespace vfil::engine
