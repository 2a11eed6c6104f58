/// \file
/// What the register tells of a processor: how it is called, what it takes and does.
#pragma once

#include <catalogue/operator.h>
#include <vfil/frame.h>

#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vfil::catalogue {

enum class ParameterType {
    Number,
    Integer,
    Choice,
    Set, ///< any of the choices, one at least
    Flag,
    Point,
    Pair,    ///< two numbers, of x and y; one stands for both
    Colour,  ///< red, green, blue and alpha
    Table,   ///< numbers of the pixels of a window
    Curve,   ///< a whole number for each of 0 .. kCurvePoints - 1
    Box,     ///< x and y of its lowest corner, width and height
    Numbers, ///< as many as the list has
    Size,    ///< width and height
    Vectors, ///< a vector for each pixel of the input, from a file
    Stops,   ///< colours at weights of 0 .. kLastWeight
    Lut,     ///< kCurvePoints rows of kLutColumns whole numbers, from a file
};

/// How the numbers of a list are given.
struct List {
    enum class Missing { Refused, Zero, Same, Kept };

    long count = 0;
    Missing missing = Missing::Refused; ///< where one is given alone: the others are 0, or the same, or it
                                        ///< means something else
    bool whole = false;
};

/// Numbers by rows, the top one first; those of the pixels of a window have an odd count of rows and of
/// columns.
struct Table {
    std::vector<double> numbers;
    long columns = 0;
    std::string path = {}; ///< of the file that it is from; empty for none

    long Rows() const { return columns == 0 ? 0 : static_cast<long>(numbers.size()) / columns; }

    friend bool operator==(const Table&, const Table&) = default;
};

/// The numbers of a curve, in a table of one row.
inline constexpr long kCurvePoints = 256;

/// Stops are a table of rows of weight, red, green, blue and alpha, by ascending weight.
inline constexpr long kStopColumns = 5;
inline constexpr long kLastWeight = 99;

/// What the file of a Lut may be. The value has four columns in any case.
struct LutForm {
    bool fewer = false; ///< a column may stand for red, green and blue, or three for these; alpha stays
    bool cube = false;  ///< a 1D table of red, green and blue of 0 .. 1, of any length (.cube)
};
inline constexpr long kLutColumns = 4;

/// Vectors in pixels, y up, a pair for each pixel in rows from the lowest.
struct VectorField {
    long width = 0;
    long height = 0;
    std::vector<double> x;
    std::vector<double> y;
    std::string path; ///< of the file
};

/// The curve that has the same number everywhere.
Table ConstantCurve(double number);

/// The value of a parameter of any type: a number, a choice's value, the bits of a set or a flag (0 or 1) in
/// x; a point, a pair or a size in x and y; red, green, blue and alpha of a colour, or the numbers of a box,
/// in x, y, z and w; a list in a table of one row.
struct Value {
    double x = 0;
    double y = 0;
    double z = 0;
    double w = 0;
    Table table = {};
    std::shared_ptr<const VectorField> vectors = {};

    friend bool operator==(const Value&, const Value&) = default;
};

/// One of the values that a choice or a set takes.
struct Choice {
    const char* name;
    double value; ///< of a set: a bit, or several
    const char* summary;
};

/// What a parameter means to programs that arrange pictures around a processor.
enum class ParameterRole {
    None,
    DominantInput,     ///< a choice: 0 for the first input, 1 for the second
    InputOffset,       ///< the position of the second input relative to the first
    Premultiplication, ///< how the colour of an input is taken, whatever the picture says of itself
    Radius,            ///< how far a window reaches, and with it how much memory a run takes
    ChromaFilter,      ///< of a conversion that halves or doubles chroma
    Dither,            ///< of a conversion
    KeyColour,         ///< the colour that a key removes from its first input
    MissingRows,       ///< how the rows are made that a field lacks: a vfILInterpolationType
    ColourModel,       ///< the weights of luma; where nobody says, those of the first input
};

/// A parameter of a processor.
struct Parameter {
    std::string name; ///< of the option, without the dashes
    ParameterType type;
    const char* unit; ///< "" without one
    double minimum;   ///< of each component; of a set, of the sum of its bits
    double maximum;
    std::optional<Value> fallback; ///< the default; without one the pictures decide, unless it is required
    const char* summary;
    std::vector<Choice> choices;
    unsigned long
        refusal; ///< the code with which Verify refuses a value outside the range; 0 when it takes any
    void (*apply)(vfILProcessor& processor, const Value& value);
    Value (*read)(const vfILProcessor& processor);
    bool required = false; ///< the processor does not run without it
    ParameterRole role = ParameterRole::None;
    List list = {};   ///< of Numbers
    LutForm lut = {}; ///< of a Lut
};

/// What a mask picture does to a processor.
enum class MaskUse {
    None,     ///< refused
    Ignored,  ///< taken, and of no use but that its box bounds the region: better refused by who offers masks
    BoxOnly,  ///< only the box of the mask counts: it bounds the region
    Sampled,  ///< mixes the result with the input
    Required, ///< the processor does not run without one
};

/// A picture that a processor reads.
struct Input {
    const char* role; ///< "back", "front", "picture"
    const char* summary;
    bool optional = false; ///< may be missing, when the parameters say what takes its place
    bool orFirst = false;  ///< when it is missing, the first one is this one, too
};

/// A picture that a processor writes.
struct Output {
    const char* role; ///< "result", "fill", "key"
    const char* summary;
    bool optional = false; ///< need not be connected
};

/// What a processor makes of what.
struct FormatPair {
    GUID from{};
    GUID to{};
    bool turnsOver = false; ///< keeps the order of memory rows where the formats differ in it, or the other
                            ///< way round: the picture comes out upside down
};

/// Parameters that Verify holds against each other: each within its range, they may be refused together.
struct JointRefusal {
    unsigned long code;
    std::vector<const char*> parameters; ///< their names
};

/// Parameters that say the same in two ways: one group or the other is given.
struct Alternatives {
    std::vector<const char*> one;
    std::vector<const char*> other;
    bool required = false; ///< the processor does not run without either
};

/// What a processor does to frames of two fields.
enum class FieldUse {
    None,
    Splits, ///< makes two pictures of a frame, of its even rows and of its odd ones; inputs behind the first
            ///< are frames to compare it with, one for each result
    Weaves, ///< makes a frame of two pictures: its even rows are those of the first
    Swaps,  ///< brings the rows of each field to the other one
    Merges, ///< mixes both fields in each row alike
};

/// The spatial reach of a processor whose every output pixel depends on all of the input.
inline constexpr int kWholePicture = std::numeric_limits<int>::max();

/// A processor.
struct Entry {
    std::string name; ///< of the command
    const char* className = "";
    const char* family = ""; ///< "layer", "pixel", "filter", "edge", "rank", "morphology", "convert" ...
    const char* summary = "";
    std::vector<Input> inputs = {}; ///< none for what makes a picture of a given size
    std::vector<Output> outputs = {};
    std::vector<GUID> formats = {}; ///< of the inputs; all have the same one, and the output too, unless
                                    ///< there are conversions; of the output where there are no inputs
    std::vector<FormatPair> conversions = {}; ///< the formats that each input and each output may have
    std::vector<Parameter> parameters = {};
    std::vector<JointRefusal> joint = {};
    std::vector<Alternatives> alternatives = {};
    unsigned long channels = VFIL_MODE_RGBA; ///< channel bits of the processing mode that give what a user
                                             ///< expects of the name
    unsigned long fixedChannels = 0;         ///< channel bits that cannot be left out
    MaskUse mask = MaskUse::Sampled;
    bool multiplied = false; ///< weighs colour by alpha, as it is when colour is multiplied by it; so is the
                             ///< result's
    bool whole = false;      ///< works on whole pictures: region, offset and single fields are refused
    FieldUse fields = FieldUse::None;
    bool movesRows = false; ///< mixes rows of a picture, so that frames of two fields come to harm
    bool places = false;    ///< moves its input over a canvas of any size: the operator has a Placement, and
                            ///< region and offset of the output are not the user's
    bool copies = false;    ///< its result is its input, pixel by pixel
    bool legality = false;  ///< makes 4:2:2 video legal: it works on the samples of a clip as they are, and
                            ///< what it takes and makes can be judged
    int spatialReach = 0;   ///< input pixels that an output pixel depends on, in each direction, or
                            ///< kWholePicture
    int radiusReach = 0;    ///< how many times its radius, or half its kernel, it depends on beside these
    int temporalReach = 0;  ///< frames, before and after
    bool bands = true;      ///< rows may be processed in bands, in any order
    std::unique_ptr<Operator> (*make)(bool simd) = nullptr;
    /// What is wrong with parameters that Verify takes, if anything; null when nothing can be.
    std::optional<Objection> (*object)(const vfILProcessor& processor) = nullptr;
    const char* note = "";  ///< what may surprise in its results
    std::string alias = {}; ///< the name by rule, when `name` is a more telling one
};

/// The parameter of a role, or null.
const Parameter* FindRole(const Entry& entry, ParameterRole role);

/// Whether Verify takes an input of one format with an output of the other.
bool Takes(const Entry& entry, const GUID& from, const GUID& to);

/// Whether the processor makes nothing but another format of a picture.
bool IsConverter(const Entry& entry);

/// Whether the processor makes a picture of nothing.
bool IsGenerator(const Entry& entry);

/// The type in words: "number", "integer", "choice", "set", "flag", "point", "pair", "colour", "table",
/// "curve", "box", "numbers", "size", "vectors", "stops", "lut".
const char* TypeName(ParameterType type);

} // namespace vfil::catalogue
