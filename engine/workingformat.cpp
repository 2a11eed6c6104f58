/// \file
/// The part of CheckJob that finds the format in which a step works.
#include "catalogue/names.h"
#include "engine/failure.h"
#include "engine/planning.h"
#include "engine/words.h"
#include "host/pixelrows.h"

#include <algorithm>

namespace vfil::engine {

using catalogue::Entry;
using catalogue::FormatName;
using host::IsFileFormat;

namespace {

bool Takes(const Entry& entry, const GUID& format)
{
    return std::find(entry.formats.begin(), entry.formats.end(), format) != entry.formats.end();
}

// A remedy for a format that will not do, when conversion at reading is one.
Message FormatRemedy(const Entry& entry, const GUID& present, const GUID& wanted)
{
    if (!IsFileFormat(present) || !Takes(entry, wanted)) return {};
    return "; add " + Named("format") + " " + FormatName(wanted);
}

// Of two formats the one that holds both without loss: colour before grey, 16 bits before 8.
GUID CommonFormat(const GUID& a, const GUID& b)
{
    const bool deep = IsDeep(a) || IsDeep(b);
    if (IsMono(a) && IsMono(b)) return deep ? PXFormat_Mono16 : PXFormat_Mono8;
    return deep ? PXFormat_RGBA64 : PXFormat_RGBA32;
}

// Pictures of files are never converted behind the user's back: who mixes depths or grey and colour says how.
GUID FormatOfPictures(const Entry& entry, const Signals& inputs)
{
    const Signal& first = *inputs.front();
    for (const Signal* other : inputs) {
        if (other->format == first.format) continue;
        throw RequestError(first.label + " is " + FormatName(first.format) + " and " + other->label + " is " +
                           FormatName(other->format) + ", and they have to be the same" +
                           FormatRemedy(entry, first.format, CommonFormat(first.format, other->format)));
    }
    if (!Takes(entry, first.format)) {
        const GUID colour = IsDeep(first.format) ? PXFormat_RGBA64 : PXFormat_RGBA32;
        throw RequestError(first.label + " is " + FormatName(first.format) + ", and " + entry.name +
                           " takes " + FormatNames(entry.formats) +
                           FormatRemedy(entry, first.format, colour));
    }
    return first.format;
}

// Operators treat a top-down picture as a whole, and all its colour.
bool NeedsBottomUp(const Step& step)
{
    const auto moves = [](const auto& given) { return given.first->type == catalogue::ParameterType::Point; };
    return step.roi || step.outputOffset || step.outputSize || step.mask ||
           (step.mode & VFIL_MODE_RGB) != VFIL_MODE_RGB ||
           std::any_of(step.parameters.begin(), step.parameters.end(), moves);
}

// Whether the inputs can be worked on as they are.
bool IsNative(const Step& step, const Signals& inputs)
{
    const GUID& format = inputs.front()->format;
    const auto differs = [&](const Signal* input) { return input->format != format; };
    if (!Takes(*step.entry, format) || std::any_of(inputs.begin(), inputs.end(), differs)) return false;
    const auto isClip = [](const Signal* input) { return input->clip; };
    return !InfoOf(format).topDown || !NeedsBottomUp(step) ||
           std::none_of(inputs.begin(), inputs.end(), isClip);
}

// The formats in which a step might work on its inputs, best first.
std::vector<GUID> WorkingFormats(const Step& step, const Signals& inputs)
{
    GUID common = CommonFormat(inputs.front()->format, inputs.back()->format);
    std::vector<GUID> formats = {common, IsDeep(common) ? PXFormat_RGBA64 : PXFormat_RGBA32, PXFormat_RGBA32,
                                 PXFormat_RGBA64};
    formats.insert(formats.end(), step.entry->formats.begin(), step.entry->formats.end());
    std::erase_if(formats, [&](const GUID& format) { return !Takes(*step.entry, format); });
    // The weights of the inputs are kept where there is a choice.
    const PXColorModel model = InfoOf(inputs.front()->home).model;
    std::stable_partition(formats.begin(), formats.end(), [&](const GUID& format) {
        return InfoOf(format).model == PXColorModel_RGB || InfoOf(format).model == model;
    });
    return formats;
}

// Whether all that flows in is as picture files have it, and the operator works on such pictures.
bool ArePictures(const Entry& entry, const Signals& inputs)
{
    const auto isPicture = [](const Signal* input) { return !input->clip && IsFileFormat(input->format); };
    return std::all_of(inputs.begin(), inputs.end(), isPicture) &&
           std::any_of(entry.formats.begin(), entry.formats.end(), IsFileFormat);
}

// The format of the first clip of 4:2:2, when all inputs reach it: its own samples are worked on, and a
// picture beside it comes to it. Not that of clips with alpha, which is straight there.
std::optional<GUID> OwnSamples(const Step& step, const Signals& inputs)
{
    const auto isOwn = [&](const Signal* input) {
        const vfILFormatInfo& info = InfoOf(input->format);
        return input->clip && info.subsampled && !info.alpha && Takes(*step.entry, input->format);
    };
    const auto own = std::find_if(inputs.begin(), inputs.end(), isOwn);
    if (own == inputs.end() || NeedsBottomUp(step)) return std::nullopt;
    const auto reaches = [&](const Signal* input) {
        return FindConversion(input->format, (*own)->format).has_value();
    };
    if (!std::all_of(inputs.begin(), inputs.end(), reaches)) return std::nullopt;
    return (*own)->format;
}

// Video has to be judged as the samples that it is: RGB would limit it. What is RGB already was limited.
GUID VideoFormat(const Entry& entry, const Signal& input)
{
    const vfILFormatInfo& present = InfoOf(input.format);
    if (present.ycc && Takes(entry, input.format)) return input.format;
    const bool is709 = InfoOf(input.home).model == PXColorModel_YCC709;
    const GUID plain = is709 ? PXFormat_YUV422_709 : PXFormat_YUV422_601;
    const GUID wanted = Takes(entry, input.home) ? input.home : plain;
    if (!present.ycc && !input.alpha && FindConversion(input.format, wanted)) return wanted;
    throw RequestError(
        input.label + " is " + FormatName(input.format) + (input.alpha ? " and has alpha, and " : ", and ") +
        entry.name + " works on samples of 4:2:2 without alpha; " +
        (input.alpha ? Message("split-key takes the alpha off and leaves the samples as they are")
                     : "'vfil convert' with " + Named("to") + " " + FormatName(plain) +
                           " makes such, of colours that RGB has"));
}

} // namespace

GUID WorkingFormat(const Step& step, const Signals& inputs)
{
    if (step.entry->legality && InfoOf(inputs.front()->home).ycc)
        return VideoFormat(*step.entry, *inputs.front());
    if (IsNative(step, inputs)) return inputs.front()->format;
    if (const auto own = OwnSamples(step, inputs)) return *own;
    if (ArePictures(*step.entry, inputs)) return FormatOfPictures(*step.entry, inputs);
    for (const GUID& format : WorkingFormats(step, inputs)) {
        const auto reaches = [&](const Signal* input) {
            return FindConversion(input->format, format).has_value();
        };
        if (std::all_of(inputs.begin(), inputs.end(), reaches)) return format;
    }
    const Signal& first = *inputs.front();
    throw RequestError(first.label + " is " + FormatName(first.format) + ", and " + step.entry->name +
                       " takes " + FormatNames(step.entry->formats));
}

} // namespace vfil::engine
