/// \file
/// The keyer family: keys of one picture by tables, and what corrects the colour beside a key.
#include <catalogue/entryof.h>
#include <catalogue/families.h>
#include <catalogue/keyers.h>
#include <catalogue/parameters.h>
#include <catalogue/twoinputs.h>

#include <vfil/tablekeyer.h>

#include <algorithm>
#include <array>
#include <utility>

namespace vfil::catalogue {

namespace {

// A table of bytes that a processor is given the address of.
class Lut {
public:
    Lut() = default;
    explicit Lut(double number) { Set(ConstantCurve(number)); }

    void* Set(const Table& curve)
    {
        m_curve = curve;
        std::transform(curve.numbers.begin(), curve.numbers.end(), m_bytes.begin(),
                       [](double number) { return static_cast<unsigned char>(number); });
        return Bytes();
    }
    const Table& Get() const { return m_curve; }
    void* Bytes() { return m_curve.numbers.empty() ? nullptr : m_bytes.data(); }

private:
    Table m_curve;
    std::array<unsigned char, kCurvePoints> m_bytes{};
};

// Holds the tables that the class reads. No lightness and no saturation is left out by itself.
class ChromaKey : public vfILChromaKeyImg {
public:
    ChromaKey()
    {
        vfILChromaKeyImg::SetLightnessMapLUT(m_lightness.Bytes());
        vfILChromaKeyImg::SetSaturationMapLUT(m_saturation.Bytes());
    }
    void SetHueMapLUT(const Table& curve) { vfILChromaKeyImg::SetHueMapLUT(m_hue.Set(curve)); }
    const Table& GetHueMapLUT() const { return m_hue.Get(); }
    void SetLightnessMapLUT(const Table& curve)
    {
        vfILChromaKeyImg::SetLightnessMapLUT(m_lightness.Set(curve));
    }
    const Table& GetLightnessMapLUT() const { return m_lightness.Get(); }
    void SetSaturationMapLUT(const Table& curve)
    {
        vfILChromaKeyImg::SetSaturationMapLUT(m_saturation.Set(curve));
    }
    const Table& GetSaturationMapLUT() const { return m_saturation.Get(); }
    void SetMatteMapLUT(const Table& curve) { vfILChromaKeyImg::SetMatteMapLUT(m_matte.Set(curve)); }
    const Table& GetMatteMapLUT() const { return m_matte.Get(); }

private:
    Lut m_hue;
    Lut m_lightness{0};
    Lut m_saturation{0};
    Lut m_matte;
};

class LumKey : public vfILLumKeyImg {
public:
    void SetLuminanceMapLUT(const Table& curve) { vfILLumKeyImg::SetLuminanceMapLUT(m_luminance.Set(curve)); }
    const Table& GetLuminanceMapLUT() const { return m_luminance.Get(); }
    void SetMatteMapLUT(const Table& curve) { vfILLumKeyImg::SetMatteMapLUT(m_matte.Set(curve)); }
    const Table& GetMatteMapLUT() const { return m_matte.Get(); }

private:
    Lut m_luminance;
    Lut m_matte;
};

// Refuses what the class would let through untreated.
class Surpress : public vfILFGSurpress {
public:
    vfILStatus Verify() override
    {
        if (vfILFGSurpress::Verify() != VFIL_SUCCESS) return VFIL_FAILURE;
        return OutputFormat() == PXFormat_RGBA32 ? VFIL_SUCCESS : Fail(0x1000D, L"vfILFGSurpress");
    }
};

template <auto kSet, auto kGet>
Parameter RequiredCurve(const char* summary)
{
    Parameter parameter = CurveParameter<kSet, kGet>({}, summary);
    parameter.fallback.reset();
    parameter.required = true;
    return parameter;
}

template <class P>
Parameter MatteMap()
{
    return CurveParameter<&P::SetMatteMapLUT, &P::GetMatteMapLUT>({}, "alpha by alpha, the last step");
}

template <class P>
Parameter KeepAlpha()
{
    return FlagParameter<&P::KeepOriginalAlpha, &P::IsKeepOriginalAlpha>(
        Value{0}, "leave no alpha above that of the picture");
}

// Writes what the operator writes, whatever the channels, and treats all or nothing of a masked pixel.
template <class P>
Entry OnePictureEntry(const char* className, const char* summary, std::vector<Parameter> parameters)
{
    Entry entry = EntryOf<P>(className, "keyer", summary);
    entry.inputs = {{"picture", "the picture to work on"}};
    entry.formats = {PXFormat_RGBA32};
    entry.parameters = std::move(parameters);
    entry.fixedChannels = VFIL_MODE_RGBA;
    entry.note = "of a mask all but 0 is full";
    return entry;
}

Entry ChromaKeyImg()
{
    Entry entry = OnePictureEntry<ChromaKey>(
        "vfILChromaKeyImg", "make alpha by hue, where lightness and saturation allow it",
        {RequiredCurve<&ChromaKey::SetHueMapLUT, &ChromaKey::GetHueMapLUT>(
             "alpha by hue: red 0, yellow 43, green 85, cyan 128, blue 170, magenta 213"),
         CurveParameter<&ChromaKey::SetLightnessMapLUT, &ChromaKey::GetLightnessMapLUT>(
             {.table = ConstantCurve(0)},
             "255 for each lightness that is left as it is, by its alpha of 255"),
         CurveParameter<&ChromaKey::SetSaturationMapLUT, &ChromaKey::GetSaturationMapLUT>(
             {.table = ConstantCurve(0)}, "255 for each saturation that is left so"),
         MatteMap<ChromaKey>(), KeepAlpha<vfILChromaKeyImg>()});
    entry.note =
        "a grey has the hue of red: give low saturations 255 to keep greys; of a mask all but 0 is full";
    return entry;
}

Entry LumKeyImg()
{
    return OnePictureEntry<LumKey>(
        "vfILLumKeyImg", "make alpha by luminance",
        {RequiredCurve<&LumKey::SetLuminanceMapLUT, &LumKey::GetLuminanceMapLUT>(
             "alpha by luminance, the middle of the largest and the smallest of red, green and blue"),
         MatteMap<LumKey>(), KeepAlpha<vfILLumKeyImg>()});
}

Entry FgSurpress()
{
    using P = vfILFGSurpress;
    Parameter type =
        ChoiceParameter<&P::SetKeyType, &P::GetKeyType>(VFIL_MODE_GREEN, "the colour of the screen",
                                                        {{"green", VFIL_MODE_GREEN, "green is at most red"},
                                                         {"blue", VFIL_MODE_BLUE, "blue is at most green"}},
                                                        0);
    return OnePictureEntry<Surpress>("vfILFGSurpress", "limit the light of a screen on the foreground",
                                     {std::move(type)});
}

Entry ChromaReplace()
{
    using P = vfILChromaReplace;
    Entry entry = EntryOf<DominatedByB<P>>("vfILChromaReplace", "keyer",
                                           "give clear pixels the chroma of a colour, and another luma");
    entry.inputs = {{"picture", "input A, the picture whose alpha says where"},
                    {.role = "alpha",
                     .summary = "input B, the picture whose alpha is kept; the first one when it is missing",
                     .orFirst = true}};
    entry.formats = {PXFormat_RGBA32};
    Parameter color = KeyColor({});
    color.summary = "the colour whose chroma takes the place of that of clear pixels";
    entry.parameters = {
        color,
        PartParameter<&P::SetLuma, &P::GetLuma, 0>("luma-offset", {-1, 1, 0},
                                                   "what is added to the luma of clear pixels", 0),
        PartParameter<&P::SetLuma, &P::GetLuma, 1>("luma-gain", {0, 2, 1}, "what it is multiplied by before",
                                                   0),
        ChoiceParameter<&P::SetColorModel, &P::GetColorModel>(
            PXColorModel_YCC, "the weights of luma and chroma",
            {{"601", PXColorModel_YCC, "BT.601"}, {"709", PXColorModel_YCC709, "BT.709"}}, 0x1006A),
        InputOffset("position of the second picture relative to the first; x to the right, y up, between "
                    "bottom-left pixels"),
        DominantInput(kDominantB, "the picture that shows where the two do not overlap", "the first",
                      "the one whose alpha is kept")};
    entry.fixedChannels = VFIL_MODE_RGBA;
    entry.mask = MaskUse::BoxOnly;
    return entry;
}

} // namespace

std::vector<Entry> TableKeyerEntries()
{
    std::vector<Entry> entries;
    entries.push_back(ChromaKeyImg());
    entries.push_back(LumKeyImg());
    entries.push_back(FgSurpress());
    entries.push_back(ChromaReplace());
    return entries;
}

} // namespace vfil::catalogue
