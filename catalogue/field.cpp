/// \file
/// The field family: filters for the fields of video.
#include <catalogue/entryof.h>
#include <catalogue/families.h>
#include <catalogue/parameters.h>

#include <vfil/fields.h>

#include <concepts>

namespace vfil::catalogue {

namespace {

Parameter Alpha(const char* name, const char* summary, void (*apply)(vfILProcessor&, const Value&),
                Value (*read)(const vfILProcessor&))
{
    return {.name = name,
            .type = ParameterType::Number,
            .unit = "",
            .minimum = 0,
            .maximum = 1,
            .fallback = Value{0.5},
            .summary = summary,
            .choices = {},
            .refusal = 0,
            .apply = apply,
            .read = read};
}

Value AlphasOf(const vfILProcessor& processor)
{
    Value alphas;
    As<vfIL2TapIIR>(processor).GetAlphas(&alphas.x, &alphas.y);
    return alphas;
}

// Both alphas have one setter: each parameter keeps the other.
std::vector<Parameter> Alphas()
{
    return {Alpha(
                "horizontal-alpha", "weight of a new sample along rows; 1 leaves them sharp",
                [](vfILProcessor& p, const Value& v) { As<vfIL2TapIIR>(p).SetAlphas(v.x, AlphasOf(p).y); },
                [](const vfILProcessor& p) { return Value{AlphasOf(p).x}; }),
            Alpha(
                "vertical-alpha", "the same along columns",
                [](vfILProcessor& p, const Value& v) { As<vfIL2TapIIR>(p).SetAlphas(AlphasOf(p).x, v.x); },
                [](const vfILProcessor& p) { return Value{AlphasOf(p).y}; })};
}

Entry TwoTapIir()
{
    Entry entry = WholePictureEntry<vfIL2TapIIR>("vfIL2TapIIR", "field", "smooth along rows and columns");
    entry.inputs = {{"picture", "the picture to smooth"}};
    entry.formats = {PXFormat_RGBA32};
    entry.parameters = Alphas();
    entry.spatialReach = kWholePicture;
    entry.movesRows = true;
    return entry;
}

// RGBA, mono, and 4:2:2 without alpha, in all row orders.
std::vector<GUID> FieldFormats()
{
    std::vector<GUID> formats = {PXFormat_RGBA32, PXFormat_RGBA64, PXFormat_Mono8, PXFormat_Mono16};
    for (std::size_t i = 0; const vfILFormatInfo* info = vfILFormatAt(i); ++i)
        if (info->subsampled && !info->alphaPlane) formats.push_back(info->id);
    return formats;
}

template <class P>
Entry FieldEntry(const char* className, const char* summary, FieldUse use)
{
    Entry entry = WholePictureEntry<P>(className, "field", summary);
    entry.formats = FieldFormats();
    entry.fields = use;
    if (!std::derived_from<P, vfILImgProc>) return entry;
    entry.whole = false;
    entry.mask = MaskUse::Ignored;
    return entry;
}

void Compare(vfILDeinterlace& processor)
{
    processor.SetInterpolationType(VFIL_DEINTERLACE_ADAPTIVE);
}

std::vector<Parameter> DeinterlaceParameters()
{
    using P = vfILDeinterlace;
    Parameter type = ChoiceParameter<&P::SetInterpolationType, &P::GetInterpolationType>(
        VFIL_DEINTERLACE_ADAPTIVE, "how the rows are made that a field lacks",
        {{"duplicate", VFIL_DEINTERLACE_DUPLICATE, "a row of the field again"},
         {"interpolate", VFIL_DEINTERLACE_INTERPOLATE, "the mean of the two around it"},
         {"adaptive", VFIL_DEINTERLACE_ADAPTIVE,
          "the other field's where the frames before and behind agree, else that mean; a picture without "
          "others to compare it with is interpolated"}},
        0x1000F);
    type.name = "type";
    type.role = ParameterRole::MissingRows;
    // Neither can be set below or above the other: Verify refuses them together.
    return {type,
            ShareParameter<&P::SetMinThreshold, &P::GetMinThreshold>(
                0,
                "difference of frames, as a share of full scale, up to which adaptive takes a sample for "
                "still",
                0),
            ShareParameter<&P::SetMaxThreshold, &P::GetMaxThreshold>(
                0.15, "difference from which it is taken to move; between the two both ways are mixed", 0)};
}

Entry Deinterlace()
{
    Entry entry = FieldEntry<SetUp<vfILDeinterlace, &Compare>>(
        "vfILDeinterlace", "make two pictures of the two fields of a frame, or a clip of twice the rate",
        FieldUse::Splits);
    entry.inputs = {{"picture", "the frame of two fields"},
                    {"compare-even",
                     "what the odd rows are compared with, for the picture of the even ones; "
                     "for a clip its own frames by default",
                     true},
                    {"compare-odd", "what the even rows are compared with, for that of the odd ones", true}};
    entry.outputs = {{"even", "the picture of the even rows", true},
                     {"odd",
                      "write the picture of the odd rows, counted from the bottom row, which is 0; for "
                      "a clip, write the two fields to two clips of its rate",
                      true}};
    entry.parameters = DeinterlaceParameters();
    entry.joint = {{0x10046, {"min-threshold", "max-threshold"}}};
    entry.spatialReach = 1;
    entry.temporalReach = 1;
    return entry;
}

Entry Interlace()
{
    Entry entry = FieldEntry<vfILInterlace>(
        "vfILInterlace", "weave two pictures, or each two frames of a clip, into a frame of two fields",
        FieldUse::Weaves);
    entry.inputs = {{"even", "the picture that has the even rows, counted from the bottom row, which is 0; "
                             "alone, a clip of all fields in their order"},
                    {"odd", "the picture that has the odd rows", true}};
    entry.temporalReach = 1;
    return entry;
}

Entry FieldSwap()
{
    using P = vfILFieldSwap;
    Entry entry =
        FieldEntry<P>("vfILFieldSwap", "bring the rows of each field to the other one", FieldUse::Swaps);
    entry.inputs = {{"picture", "the frame of two fields"}};
    entry.parameters = {FlagParameter<&P::SetSwapLines, &P::GetSwapLines>(
        Value{0}, "let the two rows of each pair trade places; without, the picture moves up by a row")};
    entry.spatialReach = 1;
    return entry;
}

Entry FieldMerge()
{
    Entry entry = FieldEntry<vfILFieldMerge>(
        "vfILFieldMerge", "melt the two fields of a frame into each other", FieldUse::Merges);
    entry.inputs = {{"picture", "the frame of two fields"}};
    entry.spatialReach = 1;
    entry.note = "each row becomes a mean of both moments: moving edges show twice, and detail down the "
                 "picture is halved";
    return entry;
}

} // namespace

std::vector<Entry> FieldEntries()
{
    std::vector<Entry> entries;
    entries.push_back(Deinterlace());
    entries.push_back(Interlace());
    entries.push_back(FieldSwap());
    entries.push_back(FieldMerge());
    entries.push_back(TwoTapIir());
    return entries;
}

} // namespace vfil::catalogue
