/// \file
/// The keyers of 4:2:2 video against a model that walks the pixels of the picture, not its memory.
#include "keyer/keyercheck.h"
#include "keyer/videokeymodel.h"

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

template <class Keyer>
void Run(Keyer& keyer, const FormatCase& format, long width, long height, const Scene& scene,
         const Rule& rule, std::mt19937& random)
{
    GuardedImage a(format.id, width, height), b(format.id, width, height);
    GuardedImage out(format.id, width, height), expected(format.id, width, height);
    Scatter(a, random, keyer.GetKeyColor());
    b.Randomise(random);
    ConnectKeyer(keyer, a, b, out);
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

DifferenceModel AnyDifference(std::mt19937& random)
{
    DifferenceModel m;
    m.key = AnyColor(random);
    m.spill = AnyColor(random);
    m.c0 = Real(random, -0.5, 3), m.c1 = Real(random, 0, 2), m.c2 = random() % 2 ? 0 : Real(random, -1, 1);
    m.low = random() % 2 ? 0 : Real(random, 0, 0.5);
    m.high = random() % 2 ? 1 : m.low + Real(random, 0.02, 0.5);
    m.factor = Real(random, -0.5, 3), m.term = Real(random, -1, 1);
    m.threshold = Real(random, -0.3, 0.3), m.softness = Real(random, -0.1, 1);
    m.correct = random() % 2, m.matte = random() % 3 == 0;
    return m;
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
    DifferenceModel model = AnyDifference(random);
    model.model = format.Is('7') ? 0x200 : 0x40;
    scene.matte = model.matte;
    const bool simd = random() % 2;
    // The tie of the matte's form is blue, whatever the flag.
    model.fast = simd && !model.matte;
    Switched<vfILYUVKeyer> keyer(simd);
    Set(keyer, model);
    Run(keyer, format, width, height, scene, model, random);
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
                            for (long h = 0; y + h <= height + 2 && !this->HasFatalFailure(); ++h) {
                                if (x + w + y + h == 0) continue; // no crop
                                Scene scene;
                                scene.crop = {x, y, w, h};
                                scene.mode = VFIL_MODE_RGB | field * VFIL_MODE_ODD_ROWS;
                                Compare<TypeParam>(*format, width, height, scene, random);
                            }
}

TEST(SectorKey, AGreenScreenIsClearWithSomeGain)
{
    GuardedImage a(PXFormat_YCC422_601, 2, 1), b(PXFormat_YCC422_601, 2, 1), out(PXFormat_YCC422_601, 2, 1);
    Write(a, 0, 0, {{145, 145}, {54, 34}});
    Write(b, 0, 0, {{90, 91}, {92, 93}});
    vfILChromaKeyerYUV keyer;
    ConnectKeyer(keyer, a, b, out);
    keyer.SetKeyColor({0, 1, 0, 1});
    keyer.SetKeyAngleTolerance(10);
    keyer.SetKeyLiftAndGain(0, 0.5);
    ASSERT_EQ(keyer.Execute(), VFIL_SUCCESS);
    EXPECT_EQ(Read(out, 0, 0), Read(b, 0, 0));
    // At gain 0 the largest key is below full.
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
        ConnectKeyer(keyer, a, b, out);
        keyer.SetClipValues(0.5, 0.5);
        keyer.SetOutputMatteFlag(matte);
        keyer.SetApplySpillCorrectionFlag(0);
        keyer.SetColorModel(PXColorModel_UNKNOWN);
        ASSERT_EQ(keyer.Verify(), VFIL_SUCCESS);
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
        DifferenceModel model = AnyDifference(random);
        model.model = random() % 2 ? 0x200 : 0x40;
        GuardedImage a(PXFormat_RGBA32, 60, 4), b(PXFormat_RGBA32, 60, 4), out(PXFormat_RGBA32, 60, 4);
        a.Randomise(random);
        b.Randomise(random);
        Switched<vfILYUVKeyer> keyer(random() % 2);
        ConnectKeyer(keyer, a, b, out);
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

} // namespace
