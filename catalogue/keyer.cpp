/// \file
/// The keyer family: pictures that get their alpha from what another one shows, or they themselves.
#include <catalogue/entryof.h>
#include <catalogue/families.h>
#include <catalogue/keyers.h>
#include <catalogue/parameters.h>
#include <catalogue/twoinputs.h>

#include <vfil/keyer.h>

#include <utility>

namespace vfil::catalogue {

namespace {

void ExpectDifferenceKey(vfILBlueGreenKeyer& keyer)
{
    keyer.SetKeyColor({0, 1, 0, 1});
    keyer.SetC0(4);
    keyer.SetC1(1);
    keyer.SetC2(0.25);
}

void ExpectLinearKey(vfILLinearKeyer& keyer)
{
    keyer.SetKeyColor({0, 1, 0, 1});
    keyer.SetSoftness(0.25);
    // Else the noise of white, whose ramp has no room below the full value, is keyed.
    keyer.SetThreshold(-0.02);
}

void ExpectLumaKey(vfILLumaKeyer& keyer)
{
    keyer.SetGain(1);
}

// P declares the accessors.
template <class P>
Parameter KeepOrigAlpha()
{
    return FlagParameter<&P::SetKeepOrigAlphaFlag, &P::GetKeepOrigAlphaFlag>(
        Value{0}, "let the result's alpha be no more than the picture's own");
}

template <class P>
Parameter ColorModel(const char* summary)
{
    return ChoiceParameter<&P::SetColorModel, &P::GetColorModel>(
        PXColorModel_YCC, summary,
        {{"601", PXColorModel_YCC, "BT.601"}, {"709", PXColorModel_YCC709, "BT.709"}}, 0x1006A);
}

/// A keyer of RGBA pictures.
template <class P, auto kExpect>
Entry RgbaKeyer(const char* className, const char* summary, std::vector<Parameter> parameters)
{
    Entry entry = EntryOf<SetUp<DominatedByB<P>, kExpect>>(className, "keyer", summary);
    entry.inputs = {
        {"plate", "input A, the picture that is looked at"},
        {.role = "picture",
         .summary = "input B, the picture whose pixels get the matte; the plate again when it is missing",
         .orFirst = true}};
    entry.formats = {PXFormat_RGBA32};
    entry.parameters = std::move(parameters);
    entry.parameters.push_back(InputOffset("position of the picture relative to the plate; x to the right, y "
                                           "up, between bottom-left pixels"));
    entry.parameters.push_back(DominantInput(kDominantB,
                                             "the picture that shows where the two do not overlap",
                                             "the plate", "the picture that gets the matte"));
    entry.fixedChannels = VFIL_MODE_RGBA;
    entry.mask = MaskUse::Ignored;
    return entry;
}

Entry ChromaKeyer()
{
    using P = vfILChromaKeyer;
    return RgbaKeyer<P, &ExpectSectorKey<&P::SetAngleTolerance, &P::SetLiftAndGain, P>>(
        "vfILChromaKeyer", "key by hue: a sector of the chroma plane around the key colour",
        {KeyColor(Green()),
         NumberParameter<&P::SetAngleTolerance, &P::GetAngleTolerance>({0, 360, kSectorTolerance, "degrees"},
                                                                       "how wide the sector opens", 0x10023),
         PartParameter<&P::SetLiftAndGain, &P::GetLiftAndGain, 0>(
             "lift", {0, 1, 0}, "how far from grey the sector begins, which saves pale colours", 0x10023),
         PartParameter<&P::SetLiftAndGain, &P::GetLiftAndGain, 1>("gain", {0, 1, 1},
                                                                  "how steep the matte's edge is", 0x10023),
         FlagParameter<&P::SetOutputChromaMap, &P::GetOutputChromaMap>(
             Value{0}, "paint the chroma plane with what is keyed of it"),
         KeepOrigAlpha<P>(), ColorModel<P>("the weights of the chroma")});
}

constexpr Range Coefficient(double fallback)
{
    return {-100, 100, fallback};
}

Entry BlueGreenKeyer()
{
    using P = vfILBlueGreenKeyer;
    return RgbaKeyer<P, &ExpectDifferenceKey>(
        "vfILBlueGreenKeyer", "key by how much more of green, or blue, there is than of the other channels",
        {KeyColor(Green()),
         NumberParameter<&P::SetC0, &P::GetC0>(Coefficient(4), "how strong the screen's channel keys", 0),
         NumberParameter<&P::SetC1, &P::GetC1>(Coefficient(1),
                                               "how much red, of a blue screen green, saves from the key", 0),
         NumberParameter<&P::SetC2, &P::GetC2>(Coefficient(0.25),
                                               "how much blue, of a blue screen red, saves from the key", 0),
         KeepOrigAlpha<P>()});
}

Entry LinearKeyer()
{
    using P = vfILLinearKeyer;
    return RgbaKeyer<P, &ExpectLinearKey>(
        "vfILLinearKeyer", "key by how far green, or blue, rises above the larger of the other channels",
        {KeyColor(Green()),
         NumberParameter<&P::SetThreshold, &P::GetThreshold>(
             {-1, 1, -0.02}, "what is taken off the other channels before; below 0 less is keyed", 0x20002),
         NumberParameter<&P::SetSoftness, &P::GetSoftness>({0, 1, 0.25}, "how wide the matte's edge is",
                                                           0x20002)});
}

Entry LumaKeyer()
{
    using P = vfILLumaKeyer;
    return RgbaKeyer<P, &ExpectLumaKey>(
        "vfILLumaKeyer", "key by brightness: bright is opaque, dark is clear",
        {NumberParameter<&P::SetBrightness, &P::GetBrightness>({-1, 1, 0}, "what is added to the luma",
                                                               0x20002),
         NumberParameter<&P::SetGain, &P::GetGain>({0, 2, 1}, "what the luma is multiplied by", 0x20002),
         FlagParameter<&P::SetReverseFlag, &P::GetReverseFlag>(Value{0}, "let dark be opaque"),
         KeepOrigAlpha<P>(), ColorModel<P>("the weights of the luma")});
}

} // namespace

std::vector<Entry> KeyerEntries()
{
    std::vector<Entry> entries;
    entries.push_back(ChromaKeyer());
    entries.push_back(BlueGreenKeyer());
    entries.push_back(LinearKeyer());
    entries.push_back(LumaKeyer());
    return entries;
}

} // namespace vfil::catalogue
