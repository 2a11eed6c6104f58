/// \file
/// The keyers of 4:2:2 video against a model that walks the pixels of the picture, not its memory.
#include "catalogue/catalogue.h"
#include "keyer/videokeymodel.h"
#include "support/processors.h"

#include <vfil/videokeyer.h>

#include <gtest/gtest.h>

#include <functional>

using namespace vfil::test;

namespace {

// --- Pictures.

using Rule = std::function<Macropixel(const Macropixel&, const Macropixel&, int)>;

struct Scene {
    vfILBbox2l crop;
    unsigned long mode = VFIL_MODE_RGB;
    bool matte = false;
    bool halves = false; ///< the keyer keys single pixels
};

Macropixel Read(const GuardedImage& image, long x, long y)
{
    const int luma = image.Format().Is('C') ? 1 : 0;
    const auto at = [&](long column) { return image.Get(column, y); };
    const auto l = static_cast<std::size_t>(luma);
    const Pixel first = at(x), second = x + 1 < image.Width() ? at(x + 1) : Pixel{};
    return {{first[l], second[l]}, {first[1 - l], second[1 - l]}};
}

void Write(GuardedImage& image, long x, long y, const Macropixel& m)
{
    for (int i = 0; i < 2 && x + i < image.Width(); ++i)
        image.Set(x + i, y, image.Format().Is('C') ? Pixel{m.c[i], m.y[i]} : Pixel{m.y[i], m.c[i]});
}

/// Whether the run treats image row y at all, and whether the crop keeps it.
bool IsKept(const GuardedImage& image, const Scene& scene, long y, bool& treated)
{
    const bool odd = scene.mode & VFIL_MODE_ODD_ROWS, even = scene.mode & VFIL_MODE_EVEN_ROWS;
    treated = !(odd && even) && (!odd || y % 2 == 1) && (!even || y % 2 == 0);
    const long low = scene.crop.GetOffsetY(), high = low + scene.crop.GetSizeY();
    const long height = image.Height();
    if (image.Format().Is('S') || odd == even) return y >= low && y < high;
    // A single field of a whole frame keeps half of the rows' numbers, whichever field it is.
    const long first = (height - 1) % 2 == (odd ? 1 : 0) ? height - 1 : height - 2;
    const long row = (first - y) / 2;
    return row >= (height - high) >> 1 && row < (height - low) >> 1;
}

void Model(const GuardedImage& a, const GuardedImage& b, GuardedImage& out, const Scene& given,
           const Rule& rule)
{
    Scene scene = given;
    const long width = out.Width(), even = width & ~1L;
    if (scene.crop == vfILBbox2l()) scene.crop = {0, 0, width, out.Height()};
    long left = std::clamp(scene.crop.GetOffsetX(), 0L, width);
    long right = std::clamp(scene.crop.GetOffsetX() + scene.crop.GetSizeX(), 0L, width);
    if (!scene.halves) {
        left &= ~1L;
        right = std::max(left, even - ((width - right) & ~1L));
    }
    for (long y = 0; y < out.Height(); ++y) {
        bool treated = false;
        const bool kept = IsKept(out, scene, y, treated);
        for (long x = 0; treated && x < width; x += 2) {
            const auto isKeyed = [&](long column) { return kept && column >= left && column < right; };
            const Macropixel back = Read(b, x, y);
            if (x + 1 == width) {
                if (!kept || scene.halves) Write(out, x, y, scene.matte ? kBlack : back);
            } else if (isKeyed(x) || isKeyed(x + 1)) {
                Write(out, x, y,
                      rule(Read(a, x, y), back,
                           isKeyed(x) == isKeyed(x + 1) ? -1
                           : isKeyed(x)                 ? 0
                                                        : 1));
            } else {
                Write(out, x, y, scene.matte ? kBlack : back);
            }
        }
    }
}

template <class Keyer>
void Connect(Keyer& keyer, GuardedImage& a, GuardedImage& b, GuardedImage& out)
{
    keyer.SetInputImgA(&a);
    keyer.SetInputImgB(&b);
    keyer.SetDominantInput(&b);
    keyer.SetOutputImg(&out);
}

std::vector<const FormatCase*> VideoFormats()
{
    std::vector<const FormatCase*> formats;
    for (const FormatCase& format : kFormats)
        if (format.IsSubsampled() && !format.Is('P')) formats.push_back(&format);
    return formats;
}

/// Samples that reach all of a key's branches: noise, or near the key colour, or near grey.
void Scatter(GuardedImage& image, std::mt19937& random, const vfILColor& key)
{
    image.Randomise(random);
    const auto ycc = Packed(key, image.Format().Is('7') ? 0x200 : 0x40);
    for (long y = 0; y < image.Height(); ++y)
        for (long x = 0; x < image.Width(); x += 2) {
            const double share = static_cast<double>(RandomIn(random, 0, 2) * RandomIn(random, 0, 10)) / 16;
            const auto near = [&](int of) {
                return ToByte(128 + share * (of - 128) + static_cast<double>(RandomIn(random, -9, 9)));
            };
            const Macropixel even{{RandomSample(random, 255), near(ycc[0])}, {near(ycc[1]), near(ycc[2])}};
            if (random() % 4 != 0) Write(image, x, y, even);
        }
}

double Real(std::mt19937& random, double low, double high)
{
    return std::uniform_real_distribution<double>(low, high)(random);
}

vfILColor AnyColor(std::mt19937& random)
{
    if (random() % 2) return random() % 2 ? vfILColor{0, 1, 0, 1} : vfILColor{0, 0.5, 0.5, 1};
    return {Real(random, 0, 1), Real(random, 0, 1), Real(random, 0, 1), 1};
}

template <class Keyer>
void Run(Keyer& keyer, const FormatCase& format, long width, long height, const Scene& scene,
         const Rule& rule, std::mt19937& random)
{
    GuardedImage a(format.id, width, height), b(format.id, width, height);
    GuardedImage out(format.id, width, height), expected(format.id, width, height);
    Scatter(a, random, keyer.GetKeyColor());
    b.Randomise(random);
    Connect(keyer, a, b, out);
    keyer.SetCropBox(scene.crop);
    keyer.SetProcessingMode(scene.mode);
    Model(a, b, expected, scene, rule);
    ASSERT_EQ(keyer.Execute(), VFIL_SUCCESS);
    ASSERT_TRUE(out.AreGuardsIntact());
    ASSERT_EQ(out.Bytes(), expected.Bytes())
        << format.name << ' ' << width << " x " << height << " crop " << scene.crop.GetOffsetX() << ' '
        << scene.crop.GetOffsetY() << ' ' << scene.crop.GetSizeX() << ' ' << scene.crop.GetSizeY() << " mode "
        << scene.mode << " matte " << scene.matte;
}

/// One keyer with random parameters over random pictures; its model is made of the same numbers.
template <class Keyer>
void Compare(const FormatCase& format, long width, long height, Scene scene, std::mt19937& random);

SectorSetting AnySector(std::mt19937& random)
{
    const double low = random() % 2 ? 0 : Real(random, 0, 60);
    return {Real(random, 0, random() % 4 ? 170 : 360), random() % 2 ? 0 : Real(random, 0, 1),
            Real(random, 0, 1), low, random() % 2 ? 100 : low + Real(random, 0.5, 40)};
}

template <>
void Compare<vfILChromaKeyerYUV>(const FormatCase& format, long width, long height, Scene scene,
                                 std::mt19937& random)
{
    scene.halves = true;
    scene.matte = random() % 3 == 0;
    const bool is709 = format.Is('7');
    const SectorModel model{AnyColor(random),      {Real(random, 0, 1), 0.4, 0.7, 1},
                            AnySector(random),     AnySector(random),
                            Real(random, -0.5, 3), Real(random, -1, 1),
                            random() % 2 == 0,     scene.matte,
                            is709 ? 0x200 : 0x40};
    Switched<vfILChromaKeyerYUV> keyer(random() % 2);
    keyer.SetKeyColor(model.key);
    keyer.SetKeyAngleTolerance(model.sector.tolerance);
    keyer.SetKeyLiftAndGain(model.sector.lift, model.sector.gain);
    keyer.SetKeyMatteMap(model.sector.low, model.sector.high);
    keyer.SetSpillAngleTolerance(model.spill.tolerance);
    keyer.SetSpillLiftAndGain(model.spill.lift, model.spill.gain);
    keyer.SetSpillMatteMap(model.spill.low, model.spill.high);
    keyer.SetSpillLumaGainAndOffset(model.lumaGain, model.lumaOffset);
    keyer.SetSpillReplaceColor(model.replace);
    keyer.SetApplySpill(model.correct);
    keyer.SetOutputMatte(model.matte);
    Run(keyer, format, width, height, scene, model, random);
}

void Set(vfILYUVKeyer& keyer, const DifferenceModel& model)
{
    keyer.SetKeyColor(model.key);
    keyer.SetCoefficients(model.c0, model.c1, model.c2);
    keyer.SetClipValues(model.low, model.high);
    keyer.SetOutputMatteFlag(model.matte);
    keyer.SetApplySpillCorrectionFlag(model.correct);
    keyer.SetSpillColor(model.spill);
    keyer.SetSpillThresholdAndSoftness(model.threshold, model.softness);
    keyer.SetSpillLuminanceOffsetAndGain(model.factor, model.term);
}

template <>
void Compare<vfILYUVKeyer>(const FormatCase& format, long width, long height, Scene scene,
                           std::mt19937& random)
{
    scene.matte = random() % 3 == 0;
    const double low = random() % 2 ? 0 : Real(random, 0, 0.5);
    const DifferenceModel model{AnyColor(random),
                                AnyColor(random),
                                Real(random, -0.5, 3),
                                Real(random, 0, 2),
                                random() % 2 ? 0 : Real(random, -1, 1),
                                low,
                                random() % 2 ? 1 : low + Real(random, 0.02, 0.5),
                                Real(random, -0.5, 3),
                                Real(random, -1, 1),
                                Real(random, -0.3, 0.3),
                                Real(random, -0.1, 1),
                                random() % 2 == 0,
                                scene.matte,
                                random() % 2 == 0,
                                format.Is('7') ? 0x200 : 0x40};
    Switched<vfILYUVKeyer> keyer(model.fast);
    Set(keyer, model);
    // The tie of the matte's form is blue, whatever the flag.
    DifferenceModel rule = model;
    rule.fast = model.fast && !model.matte;
    Run(keyer, format, width, height, scene, rule, random);
    EXPECT_EQ(keyer.GetColorModel(), model.model);
}

template <>
void Compare<vfIL2InputLumaKeyer>(const FormatCase& format, long width, long height, Scene scene,
                                  std::mt19937& random)
{
    scene.matte = random() % 3 == 0;
    const double clip = random() % 2 ? 0 : Real(random, 0, 1);
    const bool plain = random() % 2;
    const LumaModel model{clip,
                          random() % 4 ? Real(random, clip, 1) : clip,
                          plain ? 0 : Real(random, -1, 1),
                          plain ? 1 : Real(random, 0, 2),
                          random() % 2 == 0,
                          scene.matte};
    Switched<vfIL2InputLumaKeyer> keyer(random() % 2);
    keyer.SetLumaClip(model.clip);
    keyer.SetLumaGain(model.level);
    keyer.SetBrightness(model.brightness);
    keyer.SetGain(model.gain);
    keyer.SetReverseFlag(model.reverse);
    keyer.SetOutputMatteFlag(model.matte);
    Run(keyer, format, width, height, scene, model, random);
}

template <class Keyer>
constexpr const char* kCommand = "chroma-keyer-yuv";
template <>
constexpr const char* kCommand<vfILYUVKeyer> = "yuv-keyer";
template <>
constexpr const char* kCommand<vfIL2InputLumaKeyer> = "2input-luma-keyer";

template <class Keyer>
struct VideoKeyer : testing::Test {};
using Keyers = testing::Types<vfILChromaKeyerYUV, vfILYUVKeyer, vfIL2InputLumaKeyer>;
TYPED_TEST_SUITE(VideoKeyer, Keyers);

TYPED_TEST(VideoKeyer, KeysAsTheModelInAllFormatsAndWidths)
{
    std::mt19937 random(3);
    for (const FormatCase* format : VideoFormats())
        for (long width = 1; width <= 150 && !this->HasFatalFailure(); ++width)
            Compare<TypeParam>(*format, width, RandomIn(random, 1, 5), {}, random);
}

TYPED_TEST(VideoKeyer, KeepsWhatTheCropAndTheFieldsKeep)
{
    std::mt19937 random(4);
    for (const FormatCase* format : VideoFormats())
        for (const auto& [width, height] : {std::pair{5L, 4L}, {6L, 5L}})
            for (unsigned long field = 0; field < 4; ++field)
                for (long x = 0; x < width; ++x)
                    for (long w = 0; x + w <= width; ++w)
                        for (long y = 0; y < height; ++y)
                            for (long h = 0; y + h <= height && !this->HasFatalFailure(); ++h) {
                                if (x + w + y + h == 0) continue; // no crop
                                Scene scene;
                                scene.crop = {x, y, w, h};
                                scene.mode = VFIL_MODE_RGB | field * VFIL_MODE_ODD_ROWS;
                                Compare<TypeParam>(*format, width, height, scene, random);
                            }
}

// --- Whatever a host sets.

double Wild(std::mt19937& random)
{
    constexpr double kWild[] = {0, 1, -1, 0.5, 100, -7e4, 359, 1e10, -1e300, 1e300, INFINITY, -INFINITY, NAN};
    return random() % 3 ? Real(random, -2, 2) : kWild[random() % std::size(kWild)];
}

/// Every parameter that the command has.
void SetWildly(vfILProcessor& keyer, const char* command, std::mt19937& random)
{
    using vfil::catalogue::ParameterType;
    for (const auto& parameter : vfil::catalogue::Find(command)->parameters) {
        if (parameter.type == ParameterType::Flag || parameter.type == ParameterType::Choice)
            parameter.apply(keyer, {static_cast<double>(random() % 2)});
        else if (parameter.type != ParameterType::Point)
            parameter.apply(keyer, {Wild(random), Wild(random), Wild(random), Wild(random)});
    }
}

// Unverified numbers and boxes give some picture, within its bounds, and the same one with the vector forms,
// where there are no two arithmetics; in place too.
TYPED_TEST(VideoKeyer, TakesAnyNumbersAndBoxes)
{
    std::mt19937 random(6);
    for (int turn = 0; turn < 3000 && !this->HasFatalFailure(); ++turn) {
        const FormatCase& format = *VideoFormats()[random() % 12];
        const long width = RandomIn(random, 1, 70), height = RandomIn(random, 1, 6);
        GuardedImage a(format.id, width, height), b(format.id, width, height), out(format.id, width, height);
        Scatter(a, random, {0, 1, 0, 1});
        b.Randomise(random);
        Switched<TypeParam> keyer(true);
        SetWildly(keyer, kCommand<TypeParam>, random);
        keyer.SetProcessingMode(VFIL_MODE_RGB | RandomFieldBits(random));
        const auto edge = [&] {
            return random() % 8 == 0 ? RandomIn(random, INT32_MIN, INT32_MAX) : RandomIn(random, -9, 80);
        };
        if (random() % 2) keyer.SetCropBox({edge(), edge(), edge(), edge()});
        Connect(keyer, a, b, out);
        ASSERT_EQ(keyer.Execute(), VFIL_SUCCESS);
        Switched<TypeParam> other(std::is_same_v<TypeParam, vfILYUVKeyer>, keyer);
        other.SetProcessingMode(keyer.GetProcessingMode());
        if (keyer.GetProcessingMode() != VFIL_MODE_RGB) continue; // else what is not treated differs
        GuardedImage& place = random() % 2 ? a : b;
        Connect(other, a, b, place);
        if (width % 2 == 1) place.Set(width - 1, 0, out.Get(width - 1, 0));
        ASSERT_EQ(other.Execute(), VFIL_SUCCESS);
        ASSERT_TRUE(out.AreGuardsIntact() && place.AreGuardsIntact());
        for (long y = 0; y < height; ++y)
            for (long x = 0; x < (width & ~1L); ++x)
                ASSERT_EQ(out.Get(x, y), place.Get(x, y))
                    << format.name << ' ' << width << " at " << x << ' ' << y;
    }
}

TEST(SectorKey, AGreenScreenIsClearWithSomeGainAndTheInterruptIsPolled)
{
    const int green[] = {145, 54, 34};
    GuardedImage a(PXFormat_YCC422_601, 4, 3), b(PXFormat_YCC422_601, 4, 3), out(PXFormat_YCC422_601, 4, 3);
    for (long y = 0; y < 3; ++y) {
        Write(a, 0, y, {{green[0], green[0]}, {green[1], green[2]}});
        Write(a, 2, y, kBlack);
        Write(b, 0, y, {{90, 91}, {92, 93}});
    }
    vfILChromaKeyerYUV keyer;
    Connect(keyer, a, b, out);
    keyer.SetKeyColor({0, 1, 0, 1});
    keyer.SetKeyAngleTolerance(10);
    keyer.SetKeyLiftAndGain(0, 0.5);
    g_pollsLeft = 2; // before the rows, and after the first
    keyer.SetInterruptFct(StopAfterPolls, nullptr);
    ASSERT_EQ(keyer.Execute(), VFIL_SUCCESS);
    for (long y = 0; y < 3; ++y) {
        EXPECT_EQ(Read(out, 0, y), y == 0 ? Macropixel{} : Read(b, 0, y));
        EXPECT_EQ(Read(out, 2, y), y == 0 ? Macropixel{} : kBlack);
    }
    // At gain 0 the largest key is below full.
    keyer.SetInterruptFct(nullptr, nullptr);
    keyer.SetKeyLiftAndGain(0, 0);
    keyer.SetOutputMatte(1);
    ASSERT_EQ(keyer.Execute(), VFIL_SUCCESS);
    EXPECT_EQ(Read(out, 0, 0).y[0], (16 * 220 + 4096) / 256);
}

TEST(DifferenceKey, EqualClipLevelsAreSetToTheWholeRangeWhereTheFastFormRuns)
{
    for (const bool matte : {false, true}) {
        GuardedImage a(PXFormat_YUV422_709, 8, 2), b(PXFormat_YUV422_709, 8, 2),
            out(PXFormat_YUV422_709, 8, 2);
        vfILYUVKeyer keyer;
        Connect(keyer, a, b, out);
        keyer.SetClipValues(0.5, 0.5);
        keyer.SetOutputMatteFlag(matte);
        keyer.SetApplySpillCorrectionFlag(0);
        keyer.SetColorModel(PXColorModel_UNKNOWN);
        ASSERT_EQ(keyer.Verify(), VFIL_SUCCESS);
        g_pollsLeft = 1; // nothing polls after the rows
        keyer.SetInterruptFct(StopAfterPolls, nullptr);
        ASSERT_EQ(keyer.Execute(), VFIL_SUCCESS);
        EXPECT_EQ(Read(out, 0, 0), matte ? (Macropixel{{235, 235}, {128, 128}}) : Read(a, 0, 0));
        double low, high;
        keyer.GetClipValues(&low, &high);
        EXPECT_EQ(low, matte ? 0.5 : 0);
        EXPECT_EQ(high, matte ? 0.5 : 1);
        EXPECT_EQ(keyer.GetColorModel(), PXColorModel_YCC709);
    }
}

// --- RGBA.

TEST(DifferenceKey, OfRgbaIsOpaqueAndHeedsNoCrop)
{
    std::mt19937 random(9);
    for (int turn = 0; turn < 300 && !testing::Test::HasFatalFailure(); ++turn) {
        const double low = random() % 2 ? 0 : Real(random, 0, 0.5);
        const DifferenceModel model{AnyColor(random),
                                    AnyColor(random),
                                    Real(random, -0.5, 3),
                                    Real(random, 0, 2),
                                    Real(random, -1, 1),
                                    low,
                                    random() % 2 ? 1 : low + Real(random, 0.02, 0.5),
                                    1,
                                    Real(random, -1, 1),
                                    Real(random, -0.3, 0.3),
                                    Real(random, -0.1, 1),
                                    random() % 2 == 0,
                                    random() % 3 == 0,
                                    false,
                                    random() % 2 ? 0x200 : 0x40};
        GuardedImage a(PXFormat_RGBA32, 60, 4), b(PXFormat_RGBA32, 60, 4), out(PXFormat_RGBA32, 60, 4);
        a.Randomise(random);
        b.Randomise(random);
        Switched<vfILYUVKeyer> keyer(random() % 2);
        Connect(keyer, a, b, out);
        Set(keyer, model);
        keyer.SetCropBox({1, 1, 2, 2});
        keyer.SetColorModel(static_cast<PXColorModel>(model.model));
        ASSERT_EQ(keyer.Verify(), VFIL_SUCCESS);
        ASSERT_EQ(keyer.Execute(), VFIL_SUCCESS);
        for (long y = 0; y < 4; ++y)
            for (long x = 0; x < 60; ++x)
                ASSERT_EQ(out.Get(x, y), KeyRgb(model, a.Get(x, y), b.Get(x, y))) << "turn " << turn;
    }
}

// --- Refusals.

template <class Keyer>
struct Refusal {
    const char* text; ///< a part of it; null where the code says all
    unsigned long code;
    void (*set)(Keyer& keyer);
};

template <class Keyer>
void CheckRefusals(const std::vector<Refusal<Keyer>>& refusals)
{
    for (const Refusal<Keyer>& refusal : refusals) {
        GuardedImage a(PXFormat_YCC422_601, 4, 2), b(PXFormat_YCC422_601, 4, 2),
            out(PXFormat_YCC422_601, 4, 2);
        Keyer keyer;
        Connect(keyer, a, b, out);
        EXPECT_EQ(keyer.Verify(), VFIL_SUCCESS);
        refusal.set(keyer);
        EXPECT_EQ(keyer.Verify(), refusal.code == 0 ? VFIL_SUCCESS : VFIL_FAILURE) << refusal.code;
        EXPECT_EQ(keyer.GetLastError().GetErrorCode(), refusal.code);
        if (refusal.text != nullptr) {
            EXPECT_STREQ(keyer.GetLastErrorText(), refusal.text);
        }
    }
}

TEST(VideoKeyerRefusals, AreThoseOfTheTables)
{
    using Sector = vfILChromaKeyerYUV;
    CheckRefusals<Sector>({
        {"%s:Invalid Key Color!!!\n", 0x10048,
         [](Sector& k) {
             k.SetKeyColor({0, 2, 0, 1});
         }},
        {"%s:Invalid Key angle tolerance!!!\n", 0x10023, [](Sector& k) { k.SetKeyAngleTolerance(NAN); }},
        {nullptr, 0, [](Sector& k) { k.SetSpillAngleTolerance(361); }},
        {"%s:Invalid spillangle tolerance!!!\n", 0x10023,
         [](Sector& k) { k.SetApplySpill(1), k.SetSpillAngleTolerance(361); }},
        {"%s:Invalid lift and/or gain values!!!\n", 0x10023, [](Sector& k) { k.SetKeyLiftAndGain(0, 1.1); }},
        {"%s:Invalid matte map values!!!\n", 0x10023, [](Sector& k) { k.SetKeyMatteMap(50, 50); }},
        {"%s:Invalid spill matte map values!!!\n", 0x10023,
         [](Sector& k) { k.SetApplySpill(1), k.SetSpillMatteMap(-1, 50), k.SetSpillLiftAndGain(2, 0); }},
        {"%s:Invalid spill lift and/or gain values!!!\n", 0x10023,
         [](Sector& k) { k.SetApplySpill(1), k.SetSpillLiftAndGain(2, 0); }},
        {"%s:Invalid Spill Replace Color!!!\n", 0x10048,
         [](Sector& k) {
             k.SetApplySpill(1), k.SetSpillReplaceColor({0, 0, 0, -1});
         }},
    });
    using Difference = vfILYUVKeyer;
    CheckRefusals<Difference>({
        {nullptr, 0x1006A, [](Difference& k) { k.SetColorModel(PXColorModel_YCC709); }},
        {nullptr, 0, [](Difference& k) { k.SetColorModel(PXColorModel_UNKNOWN), k.SetClipValues(1, NAN); }},
        {nullptr, 0x1000A,
         [](Difference& k) {
             k.SetCropBox({0, 3, 1, 1});
         }},
    });
    using Luma = vfIL2InputLumaKeyer;
    constexpr const char* kLevels = "%s WARNING Verify: Luma clip and/or Gain Invalid\n";
    constexpr const char* kLine = "%s WARNING Verify: Clip and/or Gain Invalid\n";
    CheckRefusals<Luma>({
        {kLevels, 0x20002, [](Luma& k) { k.SetLumaClip(0.6), k.SetLumaGain(0.5); }},
        {nullptr, 0, [](Luma& k) { k.SetLumaClip(0.5), k.SetLumaGain(0.5); }},
        {kLevels, 0x20002, [](Luma& k) { k.SetLumaGain(NAN); }},
        {kLine, 0x20002, [](Luma& k) { k.SetBrightness(-1.1); }},
        {kLine, 0x20002, [](Luma& k) { k.SetGain(2.1); }},
    });
}

// What nobody verified is refused as late as it is seen.
TYPED_TEST(VideoKeyer, NeedsVideo)
{
    for (const GUID& format : {PXFormat_Mono16, PXFormat_YCCA32}) {
        GuardedImage a(format, 4, 2), b(format, 4, 2), out(format, 4, 2);
        TypeParam keyer;
        Connect(keyer, a, b, out);
        EXPECT_EQ(keyer.Verify(), VFIL_FAILURE);
        EXPECT_EQ(keyer.GetLastError().GetErrorCode(), 0x1000Du);
        EXPECT_EQ(keyer.Execute(), VFIL_FAILURE);
    }
}

} // namespace
