/// \file
/// The register of processors: what each is called, takes and does. The command, its help and its completion
/// are made from it.
#pragma once

#include <catalogue/operator.h>
#include <vfil/frame.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vfil::catalogue {

enum class ParameterType {
    Number,
    Integer,
    Choice,
    Flag,
    Point,
};

/// The value of a parameter of any type: a number, a choice's value or a flag (0 or 1) in x; a point in x and
/// y.
struct Value {
    double x = 0;
    double y = 0;

    friend bool operator==(const Value&, const Value&) = default;
};

/// One of the values that a choice takes.
struct Choice {
    const char* name;
    double value;
    const char* summary;
};

/// A parameter of a processor.
struct Parameter {
    std::string name; ///< of the option, without the dashes
    ParameterType type;
    const char* unit; ///< "" without one
    double minimum;   ///< of each component
    double maximum;
    std::optional<Value> fallback; ///< the default; without one the pictures decide
    const char* summary;
    std::vector<Choice> choices;
    unsigned long
        refusal; ///< the code with which Verify refuses a value outside the range; 0 when it takes any
    void (*apply)(vfILImgProc& processor, const Value& value);
    Value (*read)(const vfILImgProc& processor);
};

/// What a mask picture does to a processor.
enum class MaskUse {
    BoxOnly,  ///< only the box of the mask counts: it bounds the region
    Sampled,  ///< mixes the result with the input
    Required, ///< the processor does not run without one
};

/// A picture that a processor reads.
struct Input {
    const char* role; ///< "back", "front", "picture"
    const char* summary;
};

/// A processor.
struct Entry {
    std::string name; ///< of the command
    const char* className;
    const char* family; ///< "layer" or "pixel"
    const char* summary;
    std::vector<Input> inputs;
    std::vector<GUID> formats; ///< inputs and output have the same one
    std::vector<Parameter> parameters;
    unsigned long channels; ///< channel bits of the processing mode that give what a user expects of the name
    unsigned long fixedChannels; ///< channel bits that cannot be left out
    MaskUse mask;
    bool multiplied;   ///< the result's colour is multiplied by alpha, whatever the inputs' state
    int spatialReach;  ///< input pixels that an output pixel depends on, in each direction
    int temporalReach; ///< frames, before and after
    bool bands;        ///< rows may be processed in bands, in any order
    std::unique_ptr<Operator> (*make)(bool simd);
    const char* note = ""; ///< what may surprise in its results
};

/// All processors, by family.
const std::vector<Entry>& Entries();

/// The processor of a command name, or null.
const Entry* Find(std::string_view name);

/// The type in words: "number", "integer", "choice", "flag", "point".
const char* TypeName(ParameterType type);

} // namespace vfil::catalogue
