/// \file
/// What all keyers do alike: with numbers that nobody verified, in formats that are not theirs, when they are
/// interrupted, and what they refuse.
#include "catalogue/catalogue.h"
#include "keyer/keyercheck.h"
#include "support/framemodel.h"

#include <vfil/tablekeyer.h>
#include <vfil/videokeyer.h>

#include <gtest/gtest.h>

using namespace vfil::test;

namespace {

using Chroma = vfILChromaKeyer;
using BlueGreen = vfILBlueGreenKeyer;
using Linear = vfILLinearKeyer;
using Luma = vfILLumaKeyer;
using Replace = vfILChromaReplace;
using Sector = vfILChromaKeyerYUV;
using Yuv = vfILYUVKeyer;
using VideoLuma = vfIL2InputLumaKeyer;

template <class Keyer>
constexpr bool kIsOfVideo =
    std::is_base_of_v<Sector, Keyer> || std::is_base_of_v<Yuv, Keyer> || std::is_base_of_v<VideoLuma, Keyer>;

template <class Keyer>
constexpr bool kIsYuv = std::is_base_of_v<Yuv, Keyer>;

template <class Keyer>
struct AnyKeyer : testing::Test {};
using Keyers = testing::Types<Chroma, BlueGreen, Linear, Luma, Replace, Sector, Yuv, VideoLuma>;
TYPED_TEST_SUITE(AnyKeyer, Keyers);

struct Pictures {
    GuardedImage a, b, out;

    Pictures(const GUID& format, long width, long height, std::mt19937& random)
        : a(format, width, height), b(format, width, height), out(format, width, height)
    {
        for (GuardedImage* image : {&a, &b, &out})
            image->Randomise(random);
    }
};

template <class Keyer>
const GUID& AnyFormat(std::mt19937& random)
{
    for (;;) {
        const FormatCase& format = kFormats[random() % kFormats.size()];
        const bool isRgba = format.id == PXFormat_RGBA32;
        if (isRgba ? kIsYuv<Keyer> || !kIsOfVideo<Keyer>
                   : kIsOfVideo<Keyer> && format.IsSubsampled() && !format.Is('P'))
            return format.id;
    }
}

double Wild(std::mt19937& random)
{
    constexpr double kWild[] = {0,   1,   -1,   0.5,    100,   127.9,    200,       -300, -7e4,
                                4e4, 359, 1e10, -1e300, 1e300, INFINITY, -INFINITY, NAN};
    return random() % 3 ? Real(random, -2, 2) : kWild[random() % std::size(kWild)];
}

/// Every parameter that the keyer's command has.
void SetWildly(vfILProcessor& keyer, std::mt19937& random)
{
    using vfil::catalogue::ParameterType;
    const auto& entries = vfil::catalogue::Entries();
    const auto entry = std::find_if(entries.begin(), entries.end(), [&](const auto& known) {
        return ClassOf(keyer).ends_with(std::string("<") + known.className + '>');
    });
    ASSERT_NE(entry, entries.end());
    for (const auto& parameter : entry->parameters) {
        if (parameter.type == ParameterType::Flag || parameter.type == ParameterType::Choice)
            parameter.apply(keyer, {static_cast<double>(random() % 2)});
        else if (parameter.type != ParameterType::Point)
            parameter.apply(keyer, {Wild(random), Wild(random), Wild(random), Wild(random)});
    }
}

// Unverified numbers and boxes give some picture, within its bounds, and the same one with the vector forms,
// where there are no two arithmetics; in place too.
TYPED_TEST(AnyKeyer, TakesAnyNumbersAndBoxes)
{
    std::mt19937 random(6);
    for (int turn = 0; turn < 1000 && !this->HasFatalFailure(); ++turn) {
        const GUID format = AnyFormat<TypeParam>(random);
        const bool isRgba = format == PXFormat_RGBA32;
        // From 65536 pixels on a key of hues is made by a table.
        const bool isLarge = isRgba && turn % 100 == 0;
        const long width = isLarge ? 300 : RandomIn(random, 1, 70),
                   height = isLarge ? 230 : RandomIn(random, 1, 6);
        Pictures p(format, width, height, random);
        Switched<TypeParam> keyer(true);
        SetWildly(keyer, random);
        keyer.SetProcessingMode(VFIL_MODE_RGB | RandomFieldBits(random));
        const auto edge = [&] {
            return random() % 8 == 0 ? RandomIn(random, INT32_MIN, INT32_MAX) : RandomIn(random, -9, 80);
        };
        if constexpr (requires { keyer.SetCropBox({}); })
            if (random() % 2) keyer.SetCropBox({edge(), edge(), edge(), edge()});
        ConnectKeyer(keyer, p.a, p.b, p.out);
        ASSERT_EQ(keyer.Execute(), VFIL_SUCCESS);
        Switched<TypeParam> other(kIsYuv<TypeParam> && !isRgba, keyer);
        other.SetProcessingMode(keyer.GetProcessingMode());
        ASSERT_TRUE(p.out.AreGuardsIntact());
        if (keyer.GetProcessingMode() != VFIL_MODE_RGB) continue; // else what is not treated differs
        GuardedImage& place = random() % 2 ? p.a : p.b;
        ConnectKeyer(other, p.a, p.b, place);
        ASSERT_EQ(other.Execute(), VFIL_SUCCESS);
        ASSERT_TRUE(place.AreGuardsIntact());
        for (long y = 0; y < height; ++y)
            for (long x = 0; x < (isRgba ? width : width & ~1L); ++x)
                ASSERT_EQ(p.out.Get(x, y), place.Get(x, y))
                    << turn << ' ' << width << " at " << x << ' ' << y;
    }
}

TYPED_TEST(AnyKeyer, StopsAfterTheRowInWhichItIsInterrupted)
{
    std::mt19937 random(8);
    for (int turn = 0; turn < 8; ++turn) {
        Pictures p(AnyFormat<TypeParam>(random), 6, 4, random);
        Switched<TypeParam> keyer(turn % 2);
        ConnectKeyer(keyer, p.a, p.b, p.out);
        const Snapshot before(p.out);
        g_pollsLeft = 2; // between the stages and after the first row
        keyer.SetInterruptFct(StopAfterPolls, nullptr);
        EXPECT_EQ(keyer.Execute(), VFIL_SUCCESS);
        int rows = 0;
        for (long y = 0; y < 4; ++y)
            rows += p.out.Get(0, y) != before.At(0, y) || p.out.Get(5, y) != before.At(5, y);
        // One keyer looks at no interrupt.
        EXPECT_EQ(rows, kIsYuv<TypeParam> ? 4 : 2) << turn;
    }
}

// A format that nobody verified is refused before a pixel is written.
TYPED_TEST(AnyKeyer, RefusesOtherFormatsInARun)
{
    std::mt19937 random(9);
    constexpr bool kLooksAtA =
        kIsOfVideo<TypeParam> || std::is_same_v<TypeParam, Chroma> || std::is_same_v<TypeParam, BlueGreen>;
    for (const GUID& wrong : {kIsOfVideo<TypeParam> ? PXFormat_YCCA32 : PXFormat_BGRA32, PXFormat_Mono16}) {
        Pictures others(wrong, 4, 2, random), right(AnyFormat<TypeParam>(random), 4, 2, random);
        GuardedImage& out = kLooksAtA && wrong != PXFormat_Mono16 ? right.out : others.out;
        const Snapshot before(out);
        TypeParam keyer;
        ConnectKeyer(keyer, others.a, others.b, out);
        EXPECT_EQ(keyer.Verify(), VFIL_FAILURE);
        EXPECT_EQ(keyer.Execute(), VFIL_FAILURE);
        EXPECT_NE(keyer.GetLastError().GetErrorCode(), 0u);
        EXPECT_EQ(Difference(before, out), "");
    }
}

// --- Refusals.

template <class Keyer>
void MakeReady(Keyer& keyer)
{
    static unsigned char lut[256];
    keyer.SetProcessingMode(VFIL_MODE_RGBA);
    if constexpr (requires { keyer.SetLuminanceMapLUT(lut); }) keyer.SetLuminanceMapLUT(lut);
    if constexpr (requires { keyer.SetHueMapLUT(lut); }) {
        keyer.SetHueMapLUT(lut);
        keyer.SetLightnessMapLUT(lut);
        keyer.SetSaturationMapLUT(lut);
    }
}

/// Verifies what was spoiled; \p text null stands for the code's usual one.
template <class Keyer>
void Check(unsigned long code, const char* text, void (*spoil)(Keyer&),
           const GUID& format = kIsOfVideo<Keyer> ? PXFormat_YCC422_601 : PXFormat_RGBA32,
           int line = __builtin_LINE()) // std::source_location came to clang in version 15
{
    SCOPED_TRACE(line);
    GuardedImage a(format, 6, 4), b(format, 6, 4), out(format, 6, 4);
    Keyer keyer;
    Connect(keyer, &a, &b, &out);
    MakeReady(keyer);
    spoil(keyer);
    EXPECT_EQ(keyer.Verify(), code == 0 ? VFIL_SUCCESS : VFIL_FAILURE);
    EXPECT_EQ(keyer.GetLastError().GetErrorCode(), code);
    EXPECT_TRUE(text == nullptr || std::string(text) == keyer.GetLastErrorText()) << keyer.GetLastErrorText();
}

constexpr const char* kKeyColor = "%s:Invalid Key Color!!!\n";
constexpr const char* kLift = "%s:Invalid lift and/or gain values!!!\n";
constexpr const char* kLine = "%s WARNING Verify: Clip and/or Gain Invalid\n";

TEST(KeyerRefusals, OfRgbaAreOfTheFirstThingThatIsWrong)
{
    Check<Chroma>(0, nullptr, [](Chroma&) {});
    Check<Chroma>(0x1000A, nullptr, [](Chroma& k) { k.SetCropBox({-1, 0, 2, 2}); });
    Check<Chroma>(0x1000A, nullptr, [](Chroma& k) { k.SetCropBox({0, 0, 7, 4}); });
    Check<Chroma>(0x1000A, nullptr, [](Chroma& k) { k.SetCropBox({0, -1, 2, 2}); });
    Check<Chroma>(0x1000A, nullptr, [](Chroma& k) { k.SetCropBox({0, 5, 2, 2}); });
    Check<Chroma>(0, nullptr, [](Chroma& k) { k.SetCropBox({6, 4, 6, 99}); });
    Check<Chroma>(0x10048, kKeyColor, [](Chroma& k) {
        k.SetKeyColor({0, 1.01, 0, 1}), k.SetAngleTolerance(-1);
    });
    Check<Chroma>(
        0x1000D, nullptr, [](Chroma&) {}, PXFormat_BGRA32);
    Check<Chroma>(0x10023, "%s:Invalid angle tolerance!!!\n", [](Chroma& k) { k.SetAngleTolerance(NAN); });
    Check<Chroma>(0x10023, kLift, [](Chroma& k) { k.SetLiftAndGain(NAN, 0); });
    Check<Chroma>(0x10023, kLift, [](Chroma& k) { k.SetLiftAndGain(0, NAN); });
    Check<Chroma>(0x1006A, nullptr, [](Chroma& k) { k.SetColorModel(PXColorModel_YUV); });
    Check<BlueGreen>(
        0x10034, nullptr, [](BlueGreen&) {}, PXFormat_RGBA64);
    Check<BlueGreen>(0, nullptr, [](BlueGreen& k) { k.SetC0(NAN), k.SetC1(INFINITY); });
    Check<Linear>(0x20002, nullptr, [](Linear& k) { k.SetProcessingMode(VFIL_MODE_RGB); });
    constexpr const char* kThreshold = "%s WARNING Verify: Threshold Invalid\n";
    Check<Linear>(0x20002, kThreshold, [](Linear& k) { k.SetThreshold(NAN); });
    Check<Linear>(0, nullptr, [](Linear& k) { k.SetThreshold(-1); });
    Check<Linear>(0x20002, "%s WARNING Verify: Softness Invalid\n", [](Linear& k) { k.SetSoftness(NAN); });
    Check<Luma>(0, nullptr, [](Luma& k) { k.SetProcessingMode(VFIL_MODE_RGB); });
    Check<Luma>(0x20002, nullptr, [](Luma& k) { k.SetProcessingMode(13); });
    Check<Luma>(0x20002, kLine, [](Luma& k) { k.SetBrightness(NAN); });
    Check<Luma>(0x20002, kLine, [](Luma& k) { k.SetGain(NAN); });
}

TEST(KeyerRefusals, OfVideoAreOfTheFirstThingThatIsWrong)
{
    Check<Sector>(0x10048, kKeyColor, [](Sector& k) { k.SetKeyColor({0, 2, 0, 1}); });
    constexpr const char* kAngle = "%s:Invalid Key angle tolerance!!!\n";
    Check<Sector>(0x10023, kAngle, [](Sector& k) { k.SetKeyAngleTolerance(NAN); });
    Check<Sector>(0, nullptr, [](Sector& k) { k.SetSpillAngleTolerance(361); });
    Check<Sector>(0x10023, "%s:Invalid spillangle tolerance!!!\n",
                  [](Sector& k) { k.SetApplySpill(1), k.SetSpillAngleTolerance(361); });
    Check<Sector>(0x10023, kLift, [](Sector& k) { k.SetKeyLiftAndGain(0, 1.1); });
    Check<Sector>(0x10023, "%s:Invalid matte map values!!!\n", [](Sector& k) { k.SetKeyMatteMap(50, 50); });
    Check<Sector>(0x10023, "%s:Invalid spill matte map values!!!\n", [](Sector& k) {
        k.SetApplySpill(1), k.SetSpillMatteMap(-1, 50), k.SetSpillLiftAndGain(2, 0);
    });
    Check<Sector>(0x10023, "%s:Invalid spill lift and/or gain values!!!\n",
                  [](Sector& k) { k.SetApplySpill(1), k.SetSpillLiftAndGain(2, 0); });
    Check<Sector>(0x10048, "%s:Invalid Spill Replace Color!!!\n", [](Sector& k) {
        k.SetApplySpill(1), k.SetSpillReplaceColor({0, 0, 0, -1});
    });
    Check<Sector>(
        0x1000D, nullptr, [](Sector&) {}, PXFormat_YCCA32);
    Check<Yuv>(0x1006A, nullptr, [](Yuv& k) { k.SetColorModel(PXColorModel_YCC709); });
    Check<Yuv>(0, nullptr, [](Yuv& k) { k.SetColorModel(PXColorModel_UNKNOWN); });
    Check<Yuv>(0, nullptr, [](Yuv& k) { k.SetClipValues(1, NAN); });
    Check<Yuv>(
        0x1006A, nullptr, [](Yuv&) {}, PXFormat_YCC422_709);
    Check<Yuv>(0x1000A, nullptr, [](Yuv& k) { k.SetCropBox({0, 5, 1, 1}); });
    Check<Yuv>(
        0x1000D, nullptr, [](Yuv&) {}, PXFormat_Mono16);
    constexpr const char* kLevels = "%s WARNING Verify: Luma clip and/or Gain Invalid\n";
    Check<VideoLuma>(0x20002, kLevels, [](VideoLuma& k) { k.SetLumaClip(0.6), k.SetLumaGain(0.5); });
    Check<VideoLuma>(0, nullptr, [](VideoLuma& k) { k.SetLumaClip(0.5), k.SetLumaGain(0.5); });
    Check<VideoLuma>(0x20002, kLevels, [](VideoLuma& k) { k.SetLumaGain(NAN); });
    Check<VideoLuma>(0x20002, kLine, [](VideoLuma& k) { k.SetBrightness(-1.1); });
    Check<VideoLuma>(0x20002, kLine, [](VideoLuma& k) { k.SetGain(2.1); });
    Check<VideoLuma>(
        0x1000D, nullptr, [](VideoLuma&) {}, PXFormat_RGBA32);
}

TEST(KeyerRefusals, OfTablesAreOfTheFirstThingThatIsWrong)
{
    using Hls = vfILChromaKeyImg;
    using Lum = vfILLumKeyImg;
    constexpr const char* kLut = "%s ERROR Verify: Invalid input LUT\n";
    Check<Hls>(0, nullptr, [](Hls&) {});
    Check<Hls>(
        0x1000D, nullptr, [](Hls& k) { k.SetHueMapLUT(nullptr); }, PXFormat_RGBA64);
    Check<Hls>(0x10018, kLut, [](Hls& k) { k.SetHueMapLUT(nullptr); });
    Check<Hls>(0x10018, kLut, [](Hls& k) { k.SetLightnessMapLUT(nullptr); });
    Check<Hls>(0x10018, kLut, [](Hls& k) { k.SetSaturationMapLUT(nullptr); });
    Check<Lum>(0, nullptr, [](Lum&) {});
    Check<Lum>(
        0x1000D, nullptr, [](Lum& k) { k.SetLuminanceMapLUT(nullptr); }, PXFormat_RGBA64);
    Check<Lum>(0x10018, kLut, [](Lum& k) { k.SetLuminanceMapLUT(nullptr); });
    Check<Replace>(
        0x10048, kKeyColor,
        [](Replace& k) {
            k.SetKeyColor({0, 2, 0, 1});
        },
        PXFormat_RGBA64);
    Check<Replace>(
        0x1000D, nullptr, [](Replace& k) { k.SetLuma(1.1, -0.1); }, PXFormat_RGBA64);
    Check<Replace>(0x10011, nullptr,
                   [](Replace& k) { k.SetLuma(1.1, -0.1), k.SetColorModel(PXColorModel_YUV); });
    Check<Replace>(0x10011, nullptr, [](Replace& k) { k.SetLuma(NAN, NAN); });
    Check<Replace>(0x1006A, nullptr,
                   [](Replace& k) { k.SetLuma(1.1, 2), k.SetColorModel(PXColorModel_YUV); });
    Check<Replace>(0, nullptr, [](Replace& k) { k.SetLuma(-1, 1e9), k.SetColorModel(PXColorModel_YCC709); });
}

} // namespace
