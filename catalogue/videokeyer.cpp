/// \file
/// The keyer family: the keyers of 4:2:2 video, which put a plate over a back.
#include <catalogue/entryof.h>
#include <catalogue/families.h>
#include <catalogue/keyers.h>
#include <catalogue/parameters.h>
#include <catalogue/twoinputs.h>

#include <vfil/videokeyer.h>

namespace vfil::catalogue {

namespace {

constexpr double kOne255th = 1.0 / 255;

void ExpectSectorAndSpill(vfILChromaKeyerYUV& keyer)
{
    using P = vfILChromaKeyerYUV;
    ExpectSectorKey<&P::SetKeyAngleTolerance, &P::SetKeyLiftAndGain>(keyer);
    keyer.SetSpillAngleTolerance(150);
    keyer.SetSpillLiftAndGain(0, 1);
}

void ExpectDifferenceKey(vfILYUVKeyer& keyer)
{
    keyer.SetKeyColor({0, 1, 0, 1});
    keyer.SetCoefficients(4, 1, 0.25);
    // The luma of whole RGB foreground is multiplied by the term, as 255ths: 1 of them keeps it.
    keyer.SetSpillLuminanceOffsetAndGain(1, kOne255th);
}

void ExpectLumaKey(vfIL2InputLumaKeyer& keyer)
{
    keyer.SetGain(1);
}

/// The model of video is that of its format, whatever the parameter says, which is of RGB pictures.
struct DifferenceKeyer : DominatedByB<vfILYUVKeyer> {
    vfILStatus Verify() override
    {
        if (IsFormatYCC(OutputFormat()) != 0) SetColorModel(PXColorModel_UNKNOWN);
        return vfILYUVKeyer::Verify();
    }
};

std::vector<GUID> VideoFormats()
{
    std::vector<GUID> formats;
    for (std::size_t i = 0; const vfILFormatInfo* info = vfILFormatAt(i); ++i)
        if (info->subsampled && !info->alphaPlane) formats.push_back(info->id);
    return formats;
}

void SetPictures(Entry& entry)
{
    entry.inputs = {{"plate", "input A, the foreground before a screen"},
                    {.role = "back",
                     .summary =
                         "input B, what takes the screen's place; the plate again when it is missing, of use "
                         "with --output-matte",
                     .orFirst = true}};
    entry.note = "a 4:2:2 clip is keyed on its own samples; --output-matte shows what is kept of the plate";
}

template <class P>
Entry VideoKeyer(const char* className, const char* summary)
{
    Entry entry = WholePictureEntry<P>(className, "keyer", summary);
    SetPictures(entry);
    entry.formats = VideoFormats();
    return entry;
}

constexpr const char* kMatteSummary = "write the matte instead of the composite";
constexpr const char* kSpillSummary = "take the screen's colour out of what is kept";

// Verify holds a map's ends against each other, and looks at the spill when that is corrected: no range of
// theirs is refused by itself.
std::vector<Parameter> SpillParameters()
{
    using P = vfILChromaKeyerYUV;
    return {
        FlagParameter<&P::SetApplySpill, &P::GetApplySpill>(Value{0}, kSpillSummary),
        NumberParameter<&P::SetSpillAngleTolerance, &P::GetSpillAngleTolerance>(
            {0, 360, 150, "degrees"}, "how wide the sector of spill opens", 0),
        PartParameter<&P::SetSpillLiftAndGain, &P::GetSpillLiftAndGain, 0>(
            "spill-lift", {0, 1, 0}, "how far from grey the sector of spill begins", 0),
        PartParameter<&P::SetSpillLiftAndGain, &P::GetSpillLiftAndGain, 1>(
            "spill-gain", {0, 1, 1}, "how steep the edge of that sector is", 0),
        PartParameter<&P::SetSpillMatteMap, &P::GetSpillMatteMap, 0>("spill-matte-low", {0, 100, 0, "%"},
                                                                     "what counts as all spill", 0),
        PartParameter<&P::SetSpillMatteMap, &P::GetSpillMatteMap, 1>("spill-matte-high", {0, 100, 100, "%"},
                                                                     "what counts as no spill", 0),
        PartParameter<&P::SetSpillLumaGainAndOffset, &P::GetSpillLumaGainAndOffset, 0>(
            "spill-luma-gain", {0, 100, 1}, "what the luma of spill is multiplied by", 0),
        PartParameter<&P::SetSpillLumaGainAndOffset, &P::GetSpillLumaGainAndOffset, 1>(
            "spill-luma-offset", {-1, 1, 0}, "what is added to it then", 0),
        ColourParameter<&P::SetSpillReplaceColor, &P::GetSpillReplaceColor>(
            {0, 0, 0, 1}, "whose chroma takes the place of the spill's"),
    };
}

Entry SectorKeyer()
{
    using P = vfILChromaKeyerYUV;
    Entry entry = VideoKeyer<SetUp<DominatedByB<P>, &ExpectSectorAndSpill>>(
        "vfILChromaKeyerYUV", "put 4:2:2 video over a back by hue, with spill correction");
    entry.parameters = {
        KeyColor(Green()),
        NumberParameter<&P::SetKeyAngleTolerance, &P::GetKeyAngleTolerance>(
            {0, 360, kSectorTolerance, "degrees"}, "how wide the sector opens", 0x10023),
        PartParameter<&P::SetKeyLiftAndGain, &P::GetKeyLiftAndGain, 0>(
            "key-lift", {0, 1, 0}, "how far from grey the sector begins, which saves pale colours", 0x10023),
        PartParameter<&P::SetKeyLiftAndGain, &P::GetKeyLiftAndGain, 1>(
            "key-gain", {0, 1, 1}, "how steep the matte's edge is", 0x10023),
        PartParameter<&P::SetKeyMatteMap, &P::GetKeyMatteMap, 0>("key-matte-low", {0, 100, 0, "%"},
                                                                 "what of the matte becomes clear", 0),
        PartParameter<&P::SetKeyMatteMap, &P::GetKeyMatteMap, 1>("key-matte-high", {0, 100, 100, "%"},
                                                                 "what of the matte becomes full", 0),
        FlagParameter<&P::SetOutputMatte, &P::GetOutputMatte>(Value{0}, kMatteSummary),
        CropBox(),
    };
    for (const Parameter& parameter : SpillParameters())
        entry.parameters.push_back(parameter);
    entry.joint = {{0x10023, {"key-matte-low", "key-matte-high", "spill-matte-low", "spill-matte-high"}}};
    return entry;
}

constexpr Range Coefficient(double fallback)
{
    return {-100, 100, fallback};
}

std::vector<Parameter> DifferenceParameters()
{
    using P = vfILYUVKeyer;
    return {
        KeyColor(Green()),
        PartParameter<&P::SetCoefficients, &P::GetCoefficients, 0>("c0", Coefficient(4),
                                                                   "how strong the screen's channel keys", 0),
        PartParameter<&P::SetCoefficients, &P::GetCoefficients, 1>(
            "c1", Coefficient(1), "how much red, of a blue screen green, saves from the key", 0),
        PartParameter<&P::SetCoefficients, &P::GetCoefficients, 2>(
            "c2", Coefficient(0.25), "how much blue, of a blue screen red, saves from the key", 0),
        PartParameter<&P::SetClipValues, &P::GetClipValues, 0>(
            "clip-low", {-1, 2, 0}, "what of the key, and below, becomes clear", 0),
        PartParameter<&P::SetClipValues, &P::GetClipValues, 1>("clip-high", {-1, 2, 1},
                                                               "what of the key, and above, becomes full", 0),
        FlagParameter<&P::SetOutputMatteFlag, &P::GetOutputMatteFlag>(Value{0}, kMatteSummary),
        FlagParameter<&P::SetApplySpillCorrectionFlag, &P::GetApplySpillCorrectionFlag>(Value{1},
                                                                                        kSpillSummary),
        ColourParameter<&P::SetSpillColor, &P::GetSpillColor>({0, 0, 0, 0},
                                                              "whose chroma takes the place of the spill's"),
        PartParameter<&P::SetSpillThresholdAndSoftness, &P::GetSpillThresholdAndSoftness, 0>(
            "spill-threshold", {-1, 1, 0}, "what is taken off the other channels before spill is looked for",
            0),
        PartParameter<&P::SetSpillThresholdAndSoftness, &P::GetSpillThresholdAndSoftness, 1>(
            "spill-softness", {0, 1, 20.0 / 255}, "how far above them the screen's channel is all spill", 0),
        PartParameter<&P::SetSpillLuminanceOffsetAndGain, &P::GetSpillLuminanceOffsetAndGain, 0>(
            "spill-luma-gain", {0, 100, 1}, "what the luma of spill is multiplied by, in video", 0),
        PartParameter<&P::SetSpillLuminanceOffsetAndGain, &P::GetSpillLuminanceOffsetAndGain, 1>(
            "spill-luma-offset", {-1, 1, kOne255th},
            "what is added to it then; in RGB whole foreground is multiplied by its 255ths instead", 0),
        ChoiceParameter<&P::SetColorModel, &P::GetColorModel>(
            PXColorModel_YCC, "the weights of an RGB picture's chroma; video has its own",
            {{"601", PXColorModel_YCC, "BT.601"}, {"709", PXColorModel_YCC709, "BT.709"}}, 0x1006A),
    };
}

Entry DifferenceKeyerEntry()
{
    Entry entry = EntryOf<SetUp<DifferenceKeyer, &ExpectDifferenceKey>>(
        "vfILYUVKeyer", "keyer",
        "put video over a back by how much more of green, or blue, there is, with spill correction");
    SetPictures(entry);
    entry.formats = VideoFormats();
    entry.formats.insert(entry.formats.begin(), PXFormat_RGBA32);
    entry.parameters = DifferenceParameters();
    entry.parameters.push_back(CropBox());
    entry.parameters.push_back(InputOffset(
        "position of the back relative to the plate; x to the right, y up, between bottom-left pixels"));
    entry.parameters.push_back(DominantInput(
        kDominantB, "the picture that shows where the two do not overlap", "the plate", "the back"));
    entry.fixedChannels = VFIL_MODE_RGBA;
    entry.mask = MaskUse::Ignored;
    return entry;
}

Entry LumaKeyer()
{
    using P = vfIL2InputLumaKeyer;
    Entry entry = VideoKeyer<SetUp<DominatedByB<P>, &ExpectLumaKey>>(
        "vfIL2InputLumaKeyer", "put what is bright in 4:2:2 video over a back");
    entry.parameters = {
        NumberParameter<&P::SetLumaClip, &P::GetLumaClip>(
            {0, 1, 0}, "the luma that is clear, as is all below; not above luma-gain", 0x20002),
        NumberParameter<&P::SetLumaGain, &P::GetLumaGain>({0, 1, 1}, "the luma that is full, as is all above",
                                                          0x20002),
        NumberParameter<&P::SetBrightness, &P::GetBrightness>(
            {-1, 1, 0}, "what is added to the luma that is looked at", 0x20002),
        NumberParameter<&P::SetGain, &P::GetGain>({0, 2, 1}, "what that is multiplied by before", 0x20002),
        FlagParameter<&P::SetOutputMatteFlag, &P::GetOutputMatteFlag>(Value{0}, kMatteSummary),
        FlagParameter<&P::SetReverseFlag, &P::GetReverseFlag>(Value{0}, "keep what is dark"),
        CropBox(),
    };
    entry.joint = {{0x20002, {"luma-clip", "luma-gain"}}};
    return entry;
}

} // namespace

std::vector<Entry> VideoKeyerEntries()
{
    std::vector<Entry> entries;
    entries.push_back(SectorKeyer());
    entries.push_back(DifferenceKeyerEntry());
    entries.push_back(LumaKeyer());
    return entries;
}

} // namespace vfil::catalogue
