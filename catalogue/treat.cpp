/// \file
/// The treat family: colour correction, ramps and broadcast legality.
#include <catalogue/entryof.h>
#include <catalogue/families.h>
#include <catalogue/parameters.h>

#include <vfil/colorgrade.h>
#include <vfil/pixel.h>
#include <vfil/treat.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>

namespace vfil::catalogue {

namespace {

constexpr double kMostDegrees = 36000;
constexpr double kMostPercent = 10000;

// Holds the tables that the class reads.
class Correction : public vfILColorCorrectionImg {
public:
    vfILStatus Verify() override
    {
        vfILColorCorrectionImg::SetColorModel(m_model == PXColorModel_UNKNOWN ? UsualModel() : m_model);
        return vfILColorCorrectionImg::Verify();
    }

    void SetLut(const Table& table)
    {
        m_lut = table;
        vfILColorCorrectionImg::SetLut(Take(table, m_increments));
    }
    const Table& GetLut() const { return m_lut; }
    void SetRGBALut(const Table& table)
    {
        m_rgbaLut = table;
        vfILColorCorrectionImg::SetRGBALut(Take(ByChannel(table), m_bytes));
    }
    const Table& GetRGBALut() const { return m_rgbaLut; }
    void SetColorModel(PXColorModel model) { m_model = model; }
    PXColorModel GetColorModel() const { return m_model; }

private:
    template <class Number, std::size_t kCount>
    static void* Take(const Table& table, std::array<Number, kCount>& numbers)
    {
        if (table.numbers.size() != kCount) return nullptr;
        std::transform(table.numbers.begin(), table.numbers.end(), numbers.begin(),
                       [](double number) { return static_cast<Number>(number); });
        return numbers.data();
    }
    // Columns one behind the other.
    static Table ByChannel(const Table& table)
    {
        Table turned;
        for (long column = 0; column < table.columns; ++column)
            for (long row = 0; row < table.Rows(); ++row)
                turned.numbers.push_back(
                    table.numbers[static_cast<std::size_t>(row * table.columns + column)]);
        return turned;
    }
    // Video has its own; the primaries of pictures are those of BT.709.
    PXColorModel UsualModel() const
    {
        const vfILFormatInfo* info = vfILFindFormat(OutputFormat());
        return info && info->ycc ? PXColorModel_UNKNOWN : PXColorModel_YCC709;
    }

    Table m_lut;
    Table m_rgbaLut;
    std::array<std::int16_t, kCurvePoints * kLutColumns> m_increments{};
    std::array<unsigned char, kCurvePoints * kLutColumns> m_bytes{};
    PXColorModel m_model = PXColorModel_UNKNOWN;
};

// A ramp over the whole picture where no vector is given.
class Grade : public vfILColorGradeImg {
public:
    vfILStatus Verify() override
    {
        const auto& n = m_vector.numbers;
        if (n.size() == 4)
            Place(n[0], n[1], n[2], n[3]);
        else
            PlaceByItself(GetROI().GetSizeX(), GetROI().GetSizeY());
        return vfILColorGradeImg::Verify();
    }

    void SetStops(const Table& stops)
    {
        m_stops = stops;
        for (long weight = 0; weight <= kLastWeight; ++weight)
            DelColor(weight);
        const auto& n = stops.numbers;
        for (std::size_t i = 0; i + kStopColumns <= n.size(); i += kStopColumns)
            SetColor({n[i + 1], n[i + 2], n[i + 3], n[i + 4]}, static_cast<long>(n[i]));
    }
    const Table& GetStops() const { return m_stops; }
    void SetVector(const Table& vector) { m_vector = vector; }
    const Table& GetVector() const { return m_vector; }

private:
    void Place(double x, double y, double dx, double dy)
    {
        vfILColorGradeImg::SetVector(static_cast<long>(x), static_cast<long>(y), static_cast<long>(dx),
                                     static_cast<long>(dy));
    }
    // From the left to the right edge, or from the middle to the farther two.
    void PlaceByItself(long width, long height)
    {
        if (GetType() == VFIL_RAMP_RADIAL)
            vfILColorGradeImg::SetVector(width / 2, height / 2, std::max({2L, width / 2, height / 2}), 0);
        else
            vfILColorGradeImg::SetVector(0, 0, std::max(1L, width - 1), 0);
    }

    Table m_stops;
    Table m_vector;
};

// Strict, since that is what people ask for. The lone last pixel of odd rows, which the class leaves, is the
// input's.
class Legalizer : public vfILLegalizeImg {
public:
    Legalizer() { SetStrictPairs(1); }

protected:
    vfILStatus DoEffect() override
    {
        long width = 0;
        long height = 0;
        GetOutputImg()->GetDimensions(&width, &height);
        if (width % 2 != 0 && vfILFindFormat(OutputFormat())->subsampled) {
            vfILCopyImg copy;
            copy.SetInputImg(GetInputImg());
            copy.SetOutputImg(GetOutputImg());
            copy.SetProcessingMode(GetProcessingMode());
            if (copy.Execute() != VFIL_SUCCESS) return VFIL_FAILURE;
        }
        return vfILLegalizeImg::DoEffect();
    }
};

// All 4:2:2 formats without an alpha plane.
std::vector<GUID> VideoFormats()
{
    std::vector<GUID> formats = {PXFormat_YUV422_709, PXFormat_YUV422_601};
    for (std::size_t i = 0; const vfILFormatInfo* info = vfILFormatAt(i); ++i) {
        const bool listed = info->id == formats[0] || info->id == formats[1];
        if (info->subsampled && !info->alphaPlane && !listed) formats.push_back(info->id);
    }
    return formats;
}

Entry ColorCorrection()
{
    using P = Correction;
    Entry entry =
        EntryOf<P>("vfILColorCorrectionImg", "treat", "turn hue, change saturation, gain and offset");
    entry.inputs = {{"picture", "the picture to work on"}};
    entry.formats = {PXFormat_RGBA32, PXFormat_RGBA64, PXFormat_YCCA422_601, PXFormat_YCCA422_709};
    for (const GUID& format : VideoFormats())
        entry.formats.push_back(format);
    entry.parameters = {
        NumberParameter<&P::SetHue, &P::GetHue>(
            {-kMostDegrees, kMostDegrees, 0, "degrees"},
            "turn chroma, from Cb towards Cr: from blue over magenta to red", 0),
        NumberParameter<&P::SetSaturation, &P::GetSaturation>(
            {-kMostPercent, kMostPercent, 100, "per cent"},
            "chroma; 0 is grey, and below 0 it turns to its opposite", 0),
        NumberParameter<&P::SetGain, &P::GetGain>({-kMostPercent, kMostPercent, 100, "per cent"},
                                                  "luma and chroma", 0),
        NumberParameter<&P::SetOffset, &P::GetOffset>(
            {-kMostPercent, kMostPercent, 0, "per cent of full scale"}, "what is added to luma", 0),
        LutParameter<&P::SetLut, &P::GetLut>(
            {}, -32768, 32767, "what is added to luma, Cb, Cr and alpha by corrected luma, a row a luma"),
        LutParameter<&P::SetRGBALut, &P::GetRGBALut>({.fewer = true, .cube = true}, 0, 255,
                                                     "what red, green, blue and alpha become, at last"),
        ColorModelParameter<&P::SetColorModel, &P::GetColorModel>(
            "the weights of luma: those of the clip, and of pictures 709"),
    };
    entry.channels = VFIL_MODE_RGB;
    entry.note =
        "elements of the matrix are rounded to 1/256, and results down: after several steps a picture "
        "is a code darker. With alpha among the --channels, gain and offset work on it too";
    return entry;
}

std::optional<Objection> WithoutStops(const vfILProcessor& processor)
{
    const auto& grade = As<Grade>(processor);
    if (grade.GetType() == VFIL_RAMP_SQUARE || !grade.GetStops().numbers.empty()) return std::nullopt;
    return Objection{"stops", "needs at least one colour, such as '0:#000000 99:#ffffff'"};
}

Entry ColorGrade()
{
    using P = Grade;
    Entry entry = EntryOf<P>("vfILColorGradeImg", "treat", "paint a ramp of colours");
    entry.formats = {PXFormat_RGBA32, PXFormat_RGBA64, PXFormat_Mono8, PXFormat_Mono16};
    constexpr double kMost = 999999;
    const Value black{0, 0, 0, 1};
    Parameter type = ChoiceParameter<&P::SetType, &P::GetType>(
        VFIL_RAMP_LINEAR, "how it runs",
        {{"linear", VFIL_RAMP_LINEAR, "along the vector"},
         {"radial", VFIL_RAMP_RADIAL, "away from a point"},
         {"square", VFIL_RAMP_SQUARE, "between the colours of four corners"}},
        0x1003E);
    entry.parameters = {
        std::move(type),
        StopsParameter<&P::SetStops, &P::GetStops>("the colours of linear and radial ramps, by hundredths of "
                                                   "the way; before the first and behind the "
                                                   "last the colour is theirs"),
        ListParameter<&P::SetVector, &P::GetVector>(
            {.count = 4, .whole = true}, -kMost, kMost, {},
            "where the ramp begins, y up, and how far it goes to the right and up; of a radial one the "
            "middle, "
            "and a radius of that length (without it from the left to the right edge, or from the middle to "
            "the farther edges)"),
        NumberParameter<&P::SetRatio, &P::GetRatio>(
            {1e-3, 1e3, 1}, "how much more steps along y count than those along x, in radial ramps", 0),
        FlagParameter<&P::SetInvertFlag, &P::GetInvertFlag>(Value{0}, "read the stops from the other end"),
        ColourParameter<&P::SetColorLL, &P::GetColorLL>(black, "the lower left corner of square ramps"),
        ColourParameter<&P::SetColorLR, &P::GetColorLR>(black, "the lower right corner"),
        ColourParameter<&P::SetColorUR, &P::GetColorUR>(black, "the upper right corner"),
        ColourParameter<&P::SetColorUL, &P::GetColorUL>(black, "the upper left corner"),
    };
    entry.joint.push_back({0x1003F, {"vector"}});
    entry.fixedChannels = VFIL_MODE_RGBA;
    entry.mask = MaskUse::Ignored;
    entry.bands = false;
    entry.object = WithoutStops;
    entry.note = "grey pictures take the red of the colours";
    return entry;
}

Entry Legalize()
{
    using P = Legalizer;
    Entry entry = WholePictureEntry<P>("vfILLegalizeImg", "treat", "make video legal for broadcast");
    entry.inputs = {{"picture", "the clip or picture to work on"}};
    entry.formats = VideoFormats();
    entry.formats.insert(entry.formats.end(), {PXFormat_RGBA32, PXFormat_RGBA64});
    entry.parameters = {
        ChoiceParameter<&P::SetMode, &P::GetMode>(
            VFIL_LEGALIZE_CLIP, "what is done to pixels that are not",
            {{"clip", VFIL_LEGALIZE_CLIP, "limit red, green and blue"},
             {"adjust-gain", VFIL_LEGALIZE_ADJUST_GAIN, "dim them; hue stays"},
             {"adjust-saturation", VFIL_LEGALIZE_ADJUST_SATURATION,
              "take chroma from them; luma and hue stay"},
             {"adjust-luminance-saturation", VFIL_LEGALIZE_ADJUST_LUMINANCE_SATURATION,
              "move luma part of the way, then take chroma"},
             {"show-illegal", VFIL_LEGALIZE_SHOW_ILLEGAL,
              "show them: green where a sample is out of range, red where the colour is too bright, blue "
              "where "
              "it is too dark, else a dim grey"}},
            0x10063),
        NumberParameter<&P::SetLuminanceAdjustFactor, &P::GetLuminanceAdjustFactor>(
            {0, 100, 50, "per cent"}, "how far luma moves in adjust-luminance-saturation", 0x10064),
        FlagParameter<&P::SetStrictPairs, &P::GetStrictPairs>(
            Value{1},
            "judge both pixels of a pair by the chroma that is stored; without it right pixels stay "
            "illegal where chroma varies"),
    };
    entry.legality = true;
    entry.note =
        "works on 4:2:2 without alpha; RGB is always legal. What is judged is what goes to the codec: "
        "one that loses, or stores 4:2:0, moves samples again";
    return entry;
}

} // namespace

std::vector<Entry> TreatEntries()
{
    std::vector<Entry> entries;
    entries.push_back(ColorCorrection());
    entries.push_back(ColorGrade());
    entries.push_back(Legalize());
    return entries;
}

} // namespace vfil::catalogue
