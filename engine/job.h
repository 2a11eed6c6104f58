/// \file
/// The plan of a run as a small graph: sources, steps and sinks, joined by names. A single command is a graph
/// of one step, a chain file one of many. The same graph runs on pictures and on clips.
#pragma once

#include "catalogue/catalogue.h"
#include <vfil/host/video.h>

#include <vfil/color.h>
#include <vfil/geometry.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vfil::engine {

/// A picture or clip that is read. Several names may stand for one file.
struct Source {
    std::string name;               ///< by which steps and sinks know it; its own among all names of the job
    std::string path;               ///< "-" for a clip on standard input
    std::optional<GUID> format;     ///< to which it is converted when it is read
    host::ReadOptions rawOptions;   ///< format and size of a .raw picture
    host::VideoOverrides overrides; ///< of a clip; `premultiplied` of a picture with alpha too
    std::string where;              ///< what messages about it begin with: "chain.toml:3: ", or nothing
};

/// A picture that bounds a step.
struct StepMask {
    std::string input;                     ///< the name of a source or result
    std::optional<PXImageChannel> channel; ///< absent: by the picture's kind
    vfILVector2l offset;
};

/// Where a picture has a colour: the mean of a disc, of what of it is in the picture.
struct ColourPlace {
    const catalogue::Parameter* parameter; ///< which takes the colour
    long x;                                ///< of the middle, y up
    long y;
    long radius;
};

/// The size of what an operator makes that moves its picture.
struct CanvasSize {
    enum class Kind {
        Usual, ///< what the parameters ask for, else that of the picture
        Same,  ///< that of the picture
        Fit,   ///< just large enough
        Given,
    };
    Kind kind = Kind::Usual;
    vfILVector2l size = {}; ///< when given
};

/// One operator of a job.
struct Step {
    const catalogue::Entry* entry = nullptr;
    std::vector<std::string> inputs; ///< names of sources or results, as many as the entry has inputs; "" for
                                     ///< an optional one that is missing
    std::vector<std::string> results; ///< names of what it makes, as many as the entry has outputs; "" for an
                                      ///< optional one that is not wanted
    std::vector<std::pair<const catalogue::Parameter*, catalogue::Value>> parameters; ///< those given
    std::optional<ColourPlace> keyColour; ///< where its first input has it, instead of a value
    std::optional<vfILBbox2l> roi;
    std::optional<vfILVector2l> outputOffset;
    std::optional<vfILVector2l> outputSize;
    CanvasSize canvas;
    std::optional<StepMask> mask;
    unsigned long mode = 0;                     ///< bits of vfILProcessingMode
    bool usualChannels = true;                  ///< nobody chose those in the mode
    bool fieldsTogether = false;                ///< frames of two fields are taken as they are
    bool sameRate = false;                      ///< of the two fields of a frame only the first becomes one
    std::optional<host::FieldOrder> fieldOrder; ///< of the frames that it weaves; absent: top first
    vfILColor defaultColor{0, 0, 0, 0};
    std::optional<GUID> to;  ///< format of the results, for an operator with conversions or without inputs
    std::string report;      ///< the file that tells how legal its frames are; empty for none
    bool meanChroma = false; ///< right pixels are judged there by the mean with the next pair's chroma
    std::string where;
};

/// How the converters treat chroma and rounding, when they have the choice. Absent: as each does by itself.
struct ConversionOptions {
    std::optional<bool> filter;
    std::optional<bool> dither;
};

/// A picture or clip that is written.
struct Sink {
    std::string path;       ///< "-" for a clip on standard output
    std::string result;     ///< the name of a step's result, or of a source
    std::optional<GUID> to; ///< format of the frames that are written; absent: the first input's, as far as
                            ///< the file takes it
    std::string codec;      ///< empty for the writer's choice, here and below
    std::string container;
    std::vector<std::pair<std::string, std::string>> codecOptions;
    std::string where;
};

/// What holds for a run as a whole.
struct RunSettings {
    long firstFrame = 0;
    std::optional<long> endFrame; ///< the first frame that is not read
    unsigned threads = 0;         ///< 0 for all cores
    ConversionOptions conversions;
    bool plain = false;                 ///< the plain arithmetic, whatever the machine has
    volatile long* interrupt = nullptr; ///< anything but 0 stops the run
};

/// Whether the name is that of a raw picture.
bool IsRaw(const std::string& path);

/// The name by which others know a step, or that of its operator when nobody does.
std::string NameOf(const Step& step);

/// What is to be run. Steps may stand in any order.
struct Job {
    std::vector<Source> sources;
    std::vector<Step> steps;
    std::vector<Sink> sinks;
    RunSettings settings;
};

} // namespace vfil::engine
