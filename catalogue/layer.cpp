/// \file
/// The layer family: two pictures, a front and a back.
#include <catalogue/entryof.h>
#include <catalogue/families.h>
#include <catalogue/parameters.h>
#include <catalogue/twoinputs.h>

#include <vfil/composite.h>

#include <utility>

namespace vfil::catalogue {

namespace {

// P is the class that declares the accessors: the layer frame and the masked mix each have their own.
template <class P>
Parameter AlphaMode()
{
    return ChoiceParameter<&P::SetAlphaMode, &P::GetAlphaMode>(
        VFIL_ALPHA_COMPUTED, "what becomes of the output's alpha",
        {{"zero", VFIL_ALPHA_ZERO, "clear"},
         {"full", VFIL_ALPHA_FULL, "opaque"},
         {"computed", VFIL_ALPHA_COMPUTED, "by the operator's rule"}},
        0x1005A);
}

Parameter ExtraTransparency()
{
    return ShareParameter<&vfILCompImg::SetExtraTransparency, &vfILCompImg::GetExtraTransparency>(
        1, "strength of the front; 1 is full strength, 0 leaves nothing of it", 0x10012);
}

Parameter MixAmount()
{
    return ShareParameter<&vfILCompositeImg::SetAlpha, &vfILCompositeImg::GetAlpha>(
        1, "amount of the mix, multiplied with the mask; 0 leaves the back's colour", 0x10012);
}

// How the colour of an input is taken, whatever the picture says.
template <auto kSet, auto kGet>
Parameter Premultiplication(const std::optional<Value>& fallback, const char* summary)
{
    Parameter parameter = FlagParameter<kSet, kGet>(fallback, summary);
    parameter.role = ParameterRole::Premultiplication;
    return parameter;
}

Parameter ImgAPremultiplied()
{
    return Premultiplication<&vfILCompImg::SetImgAPremultiplied, &vfILCompImg::GetImgAPremultiplied>(
        std::nullopt, "take the back's colour as already multiplied by its alpha");
}

Parameter ImgBPremultiplied()
{
    return Premultiplication<&vfILCompImg::SetImgBPremultiplied, &vfILCompImg::GetImgBPremultiplied>(
        std::nullopt, "take the front's colour as already multiplied by its alpha");
}

Parameter NeverPremultiplyBackImage()
{
    return Premultiplication<&vfILCompImg::NeverPremultiplyBackImage,
                             &vfILCompImg::IsNeverPremultiplyBackImage>(
        Value{0}, "take the back's colour as it stands, whatever its alpha");
}

// The rules of 8 bits are what people expect of 16, too.
void UseFullScale16(vfILCompImg& layer)
{
    layer.SetFullScale16(1);
}

Parameter Legacy16()
{
    Parameter parameter = FlagParameter<&vfILCompImg::SetFullScale16, &vfILCompImg::GetFullScale16>(
        Value{0}, "at 16 bits divide a sum of products once, with its lone terms as 65535ths, instead of "
                  "following the rules of 8 bits");
    parameter.name = "legacy-16";
    parameter.apply = [](vfILProcessor& p, const Value& v) {
        As<vfILCompImg>(p).SetFullScale16(v.x == 0 ? 1 : 0);
    };
    parameter.read = [](const vfILProcessor& p) {
        return Value{As<vfILCompImg>(p).GetFullScale16() != 0 ? 0.0 : 1.0};
    };
    return parameter;
}

Parameter FrontOffset()
{
    return InputOffset(
        "position of the front relative to the back; x to the right, y up, between bottom-left pixels");
}

std::vector<Parameter> LayerParameters()
{
    return {ExtraTransparency(),
            AlphaMode<vfILCompImg>(),
            FrontOffset(),
            DominantInput(kDominantA,
                          "the picture that shows where the two do not overlap and in channels that are not "
                          "selected",
                          "the back", "the front"),
            ImgAPremultiplied(),
            ImgBPremultiplied()};
}

template <class P>
Entry Layer(const char* className, const char* summary)
{
    Entry entry = EntryOf<P>(className, "layer", summary);
    entry.inputs = {{"back", "input A, the lower picture"}, {"front", "input B, the upper picture"}};
    entry.formats = {PXFormat_RGBA32, PXFormat_RGBA64};
    entry.parameters = LayerParameters();
    entry.mask = MaskUse::BoxOnly;
    return entry;
}

// Has two arithmetics at 16 bits.
template <class P>
Entry FullScaleLayer(const char* className, const char* summary)
{
    Entry entry = Layer<SetUp<P, UseFullScale16>>(className, summary);
    entry.parameters.push_back(Legacy16());
    return entry;
}

// Weighs colour by coverage.
Entry Weighing(Entry entry)
{
    entry.multiplied = true;
    return entry;
}

// Writes whole colours: only alpha can be left out.
template <class P>
Entry WholeColourLayer(const char* className, const char* summary)
{
    Entry entry = Layer<P>(className, summary);
    entry.fixedChannels = VFIL_MODE_RGB;
    return entry;
}

Entry Over()
{
    Entry entry = Weighing(FullScaleLayer<vfILOverImage>("vfILOverImage", "put the front over the back"));
    entry.formats.push_back(PXFormat_YCCA422_601);
    entry.formats.push_back(PXFormat_YCCA422_709);
    entry.parameters.push_back(NeverPremultiplyBackImage());
    return entry;
}

// A is always dominant in the masked mix, and all channels are always written.
Entry Composite()
{
    Entry entry = Layer<vfILCompositeImg>("vfILCompositeImg", "mix the front over the back by a mask");
    entry.parameters = {MixAmount(), AlphaMode<vfILCompositeImg>(), FrontOffset()};
    entry.fixedChannels = VFIL_MODE_RGBA;
    entry.mask = MaskUse::Required;
    return entry;
}

} // namespace

std::vector<Entry> LayerEntries()
{
    std::vector<Entry> entries;
    entries.push_back(Over());
    entries.push_back(Weighing(Layer<vfILInImage>("vfILInImage", "keep the front where the back is")));
    entries.push_back(Weighing(Layer<vfILOutImage>("vfILOutImage", "keep the front where the back is not")));
    entries.push_back(Weighing(
        FullScaleLayer<vfILAtopImage>("vfILAtopImage", "put the front, where the back is, over the back")));
    entries.push_back(
        Weighing(FullScaleLayer<vfILXorImage>("vfILXorImage", "keep either picture where the other is not")));
    entries.push_back(Layer<vfILAddImage>("vfILAddImage", "add the pictures, clipped at full"));
    entries.push_back(FullScaleLayer<vfILAddNoClipImage>("vfILAddNoClipImage",
                                                         "add the pictures softly, so that nothing clips"));
    entries.push_back(
        FullScaleLayer<vfILDiffImage>("vfILDiffImage", "take the distance between the pictures"));
    entries.push_back(Layer<vfILMultImage>("vfILMultImage", "multiply the pictures"));
    entries.push_back(Layer<vfILLighterImage>("vfILLighterImage", "take the larger value of each channel"));
    entries.push_back(Layer<vfILDarkerImage>("vfILDarkerImage", "take the smaller value of each channel"));
    entries.push_back(
        WholeColourLayer<vfILLumImage>("vfILLumImage", "lightness of the front, colour of the back"));
    entries.push_back(
        WholeColourLayer<vfILColImage>("vfILColImage", "colour of the front, lightness of the back"));
    entries.push_back(
        WholeColourLayer<vfILNonAddImage>("vfILNonAddImage", "take the brighter pixel as a whole"));
    entries.push_back(
        WholeColourLayer<vfILInvNonAddImage>("vfILInvNonAddImage", "take the darker pixel as a whole"));
    entries.push_back(Composite());
    return entries;
}

} // namespace vfil::catalogue
