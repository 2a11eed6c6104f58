/// \file
/// The keyers of RGBA pictures against models that work in real numbers, and what is meant to be odd in them.
#include "support/framemodel.h"
#include "support/processors.h"

#include <vfil/keyer.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

using namespace vfil::test;

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

struct Pictures {
    GuardedImage a, b, out;

    Pictures(long width, long height, std::mt19937& random)
        : a(PXFormat_RGBA32, width, height), b(PXFormat_RGBA32, width, height),
          out(PXFormat_RGBA32, width, height)
    {
        a.Randomise(random);
        b.Randomise(random);
        out.Randomise(random);
    }
};

void ConnectKeyer(vfILDyadicPixelProc& keyer, Pictures& p, IPXImage* output)
{
    Connect(keyer, &p.a, &p.b, output);
    keyer.SetDominantInput(&p.b);
    keyer.SetProcessingMode(VFIL_MODE_RGBA);
}

/// A matte of 0 .. 255 before it is rounded. NaN: the model cannot tell.
using Matte = std::function<double(const Pixel& a)>;

/// Runs a keyer over random pictures, apart or in place, and holds each pixel against the model. Some
/// regions are large enough for the tables of large runs.
template <class Keyer>
void CheckKeyer(unsigned seed, const std::function<Matte(Keyer&, bool& keep, std::mt19937&)>& setUp)
{
    std::mt19937 random(seed);
    for (int round = 0; round < 120; ++round) {
        const bool large = round % 40 < 2;
        Pictures p(large ? 259 : RandomIn(random, 1, 40), large ? 254 : RandomIn(random, 1, 6), random);
        Switched<Keyer> keyer(round % 2 != 0);
        const auto place = random() % 4;
        GuardedImage& output = place == 0 ? p.a : place == 1 ? p.b : p.out;
        ConnectKeyer(keyer, p, &output);
        bool keep = random() % 2 != 0;
        const Matte matte = setUp(keyer, keep, random);
        Snapshot expected(p.b);
        for (long y = 0; y < expected.height; ++y) {
            for (long x = 0; x < expected.width; ++x) {
                const double exact = matte(p.a.Get(x, y));
                ASSERT_FALSE(std::isnan(exact));
                Pixel& pixel = expected.At(x, y);
                const int rounded = static_cast<int>(std::floor(exact + 0.5));
                pixel[3] = keep ? std::min(rounded, pixel[3]) : rounded;
            }
        }
        ASSERT_EQ(keyer.Verify(), VFIL_SUCCESS);
        ASSERT_EQ(keyer.Execute(), VFIL_SUCCESS);
        ASSERT_EQ(Difference(expected, output), "") << "round " << round;
    }
}

double Choose(std::mt19937& random, std::initializer_list<double> from)
{
    return *(from.begin() + random() % from.size());
}

vfILColor RandomColour(std::mt19937& random)
{
    const auto component = [&] { return static_cast<double>(RandomIn(random, 0, 255)) / 255; };
    return {component(), component(), component(), 1};
}

struct ChromaBytes {
    int cb, cr;
};

/// The colour differences of studio range, 8 bits of them.
ChromaBytes ChromaOf(const Pixel& p, bool is709)
{
    const auto rounded = [&](int red, int green, int blue) {
        return 128 + static_cast<int>(std::floor((red * p[0] + green * p[1] + blue * p[2]) / 65536.0 + 0.5));
    };
    if (is709) return {rounded(-6596, -22189, 28784), rounded(28784, -26145, -2639)};
    return {rounded(-9714, -19070, 28784), rounded(28784, -24104, -4681)};
}

/// The key in polar coordinates: by how far a hue is from the key's.
double SectorMatte(const ChromaBytes& c, double keyHue, double tolerance, double lift, double gain)
{
    const double u = c.cb / 127.5 - 1;
    const double v = c.cr / 127.5 - 1;
    const double from = std::atan2(v, u) - keyHue;
    const double side = (1 + tolerance) / 2 * std::numbers::pi / 180;
    const double reach = std::hypot(u, v) * (std::cos(from) - std::abs(std::sin(from)) / std::tan(side));
    return 255 * (1 - std::clamp((reach - 0.4 * lift) * (8 * gain + 1), 0.0, 1.0));
}

TEST(ChromaKeyer, GivesEachHueItsMatte)
{
    const auto setUp = [](vfILChromaKeyer& keyer, bool& keep, std::mt19937& random) -> Matte {
        const bool is709 = random() % 2 != 0;
        const double tolerance = Choose(random, {0, 1.5, 40, 100, 170, 179.5, 200});
        const double lift = Choose(random, {0, 0.21, 1});
        const double gain = Choose(random, {0, 0.37, 1});
        vfILColor key = RandomColour(random);
        if (std::abs(key.GetRed() - key.GetGreen()) + std::abs(key.GetBlue() - key.GetGreen()) < 0.1)
            key.SetRGB(0, 1, 0.25);
        keyer.SetAngleTolerance(tolerance);
        keyer.SetLiftAndGain(lift, gain);
        keyer.SetKeyColor(key);
        keyer.SetColorModel(is709 ? PXColorModel_YCC709 : PXColorModel_YCC);
        keyer.SetKeepOrigAlphaFlag(keep);
        double cb = 0, cr = 0;
        is709 ? key.GetColorAsYCCA709(nullptr, &cb, &cr, nullptr)
              : key.GetColorAsYCCA(nullptr, &cb, &cr, nullptr);
        const double hue = std::atan2(cr - 0.5, cb - 0.5);
        return [=](const Pixel& a) { return SectorMatte(ChromaOf(a, is709), hue, tolerance, lift, gain); };
    };
    CheckKeyer<vfILChromaKeyer>(1, setUp);
}

/// The alpha that a keyer gives one pixel.
template <class Keyer>
int MatteOf(Keyer& keyer, const Pixel& pixel)
{
    std::mt19937 random;
    Pictures p(1, 1, random);
    p.a.Set(0, 0, pixel);
    p.b.Set(0, 0, {1, 2, 3, 255});
    ConnectKeyer(keyer, p, &p.out);
    EXPECT_EQ(keyer.Execute(), VFIL_SUCCESS);
    return p.out.Get(0, 0)[3];
}

TEST(ChromaKeyer, IsOddWhereItsFormulaIs)
{
    vfILChromaKeyer keyer;
    keyer.SetKeyColor({0, 1, 0, 1});
    EXPECT_EQ(MatteOf(keyer, {0, 255, 0, 0}), 84) << "gain 0 keys no colour wholly";
    keyer.SetAngleTolerance(40);
    EXPECT_EQ(MatteOf(keyer, {0, 255, 0, 0}), 19);
    keyer.SetLiftAndGain(0, 1);
    EXPECT_EQ(MatteOf(keyer, {0, 255, 0, 0}), 0);
    EXPECT_EQ(MatteOf(keyer, {255, 0, 255, 0}), 255);
    // The tangent of 180 degrees is a little below 0, so that what is beside the hue, on whichever side, is
    // keyed.
    keyer.SetAngleTolerance(359);
    EXPECT_EQ(MatteOf(keyer, {255, 255, 0, 0}), 0);
    EXPECT_EQ(MatteOf(keyer, {200, 0, 255, 0}), 0);
    keyer.SetKeyColor({0.5, 0.5, 0.5, 1});
    EXPECT_EQ(MatteOf(keyer, {128, 128, 128, 0}), 255) << "a grey has no hue";
    EXPECT_EQ(MatteOf(keyer, {0, 255, 0, 0}), 255);
}

TEST(ChromaKeyer, MapIsTheKeyTurnedOver)
{
    // The marker's place on a picture so large that one pixel is less than its reach.
    constexpr long kSize = 1000;
    std::mt19937 random;
    GuardedImage a(PXFormat_RGBA32, kSize, kSize), out(PXFormat_RGBA32, kSize, kSize);
    vfILChromaKeyer keyer;
    const vfILColor key(0.2, 0.9, 0.3, 1);
    Connect(keyer, &a, &a, &out);
    keyer.SetKeyColor(key);
    keyer.SetAngleTolerance(60);
    keyer.SetLiftAndGain(0.3, 0.4);
    keyer.SetOutputChromaMap(1);
    g_pollsLeft = 1; // between the stages
    keyer.SetInterruptFct(StopAfterPolls, nullptr);
    ASSERT_EQ(keyer.Execute(), VFIL_SUCCESS);
    double luma = 0, keyCb = 0, keyCr = 0;
    key.GetColorAsYCCA(&luma, &keyCb, &keyCr, nullptr);
    const double hue = std::atan2(keyCr - 0.5, keyCb - 0.5);
    const double side = 30.5 / 180 * std::numbers::pi;
    for (long py = 3; py < kSize; py += 37) {
        for (long px = 5; px < kSize; px += 31) {
            const double x = static_cast<double>(px - 500) / 1000;
            const double y = static_cast<double>(py - 500) / 1000;
            const double across = x * std::cos(hue) - y * std::sin(hue);
            const double along = -(y * std::cos(hue) + x * std::sin(hue));
            const double k = (along - std::abs(across) / std::tan(side) - 0.12) * 4.2;
            double rgb[3];
            std::fill_n(rgb, 3, 1 - std::min(k, 1.0));
            if (k <= 0) {
                vfILColor shown;
                const double cb = x + 0.5, cr = y + 0.5;
                shown.SetColorAsYCCA(&luma, &cb, &cr, nullptr);
                shown.GetRGB(&rgb[0], &rgb[1], &rgb[2]);
            }
            const Pixel pixel = out.Get(px, py);
            for (std::size_t c = 0; c < 3; ++c)
                ASSERT_NEAR(pixel[c], std::clamp(255 * rgb[c], 0.0, 255.0), 0.51) << px << " " << py;
            ASSERT_EQ(pixel[3], 255);
        }
    }
    EXPECT_EQ(out.Get(500, 7), (Pixel{0, 0, 255, 255}));
    EXPECT_EQ(out.Get(9, 500), (Pixel{0, 0, 255, 255}));
    const long markX = 500 + std::lround(1000 * keyCr), markY = 500 + std::lround(1000 * keyCb);
    EXPECT_EQ(out.Get(markX, markY), (Pixel{255, 0, 0, 255}));
    EXPECT_NE(out.Get(markX + 3, markY), (Pixel{255, 0, 0, 255}));

    out.Set(markX, markY, {});
    keyer.SetColorModel(PXColorModel_YCC709);
    keyer.SetInterruptFct(nullptr, nullptr);
    ASSERT_EQ(keyer.Execute(), VFIL_SUCCESS);
    EXPECT_EQ(out.Get(markX, markY), (Pixel{255, 0, 0, 255})) << "one place for both models";
}

TEST(BlueGreenKeyer, IsTheDifferenceInFixedPoint)
{
    const auto setUp = [](vfILBlueGreenKeyer& keyer, bool& keep, std::mt19937& random) -> Matte {
        const double c0 = Choose(random, {0, 1, 2.3, -0.7, 40});
        const double c1 = Choose(random, {0, 1, 1.6, -0.5});
        const double c2 = Choose(random, {0, 0.4, 1, -3, 127});
        vfILColor key = RandomColour(random);
        if (random() % 4 == 0) key.SetGreen(key.GetBlue());
        keyer.SetC0(c0);
        keyer.SetC1(c1);
        keyer.SetC2(c2);
        keyer.SetKeyColor(key);
        keyer.SetKeepOrigAlphaFlag(keep);
        const bool green = key.GetGreen() > key.GetBlue();
        const double most = std::round(255 * std::max(key.GetGreen(), key.GetBlue()));
        const auto fixed = [](double c) { return std::round(c * 65536) / 65536; };
        return [=](const Pixel& a) {
            const double screen = std::min<double>(a[green ? 1 : 2], most);
            const double p = green ? a[0] : a[1];
            const double q = green ? a[2] : a[0];
            const double sum = 255 - fixed(c0) * screen + fixed(c0 * c1) * p + fixed(c2) * q;
            return std::clamp(std::floor(sum), 0.0, 255.0);
        };
    };
    CheckKeyer<vfILBlueGreenKeyer>(2, setUp);
    for (const bool simd : {false, true}) {
        Switched<vfILBlueGreenKeyer> unverified(simd);
        unverified.SetKeyColor({0, -0.5, -1, 1});
        unverified.SetC0(-1);
        EXPECT_EQ(MatteOf(unverified, {9, 200, 9, 0}), 127) << "of a limit below 0";
    }
}

TEST(LinearKeyer, IsARampBetweenThresholdAndSoftness)
{
    const auto setUp = [](vfILLinearKeyer& keyer, bool& keep, std::mt19937& random) -> Matte {
        keep = false;
        const int threshold = static_cast<int>(Choose(random, {0, 20, 255, -60, -255}));
        const int softness = static_cast<int>(Choose(random, {0, 1, 64, 200, 255}));
        const vfILColor key = random() % 3 == 0 ? vfILColor(0.1, 0.4, 0.4, 1) : RandomColour(random);
        keyer.SetThreshold(threshold / 255.0);
        keyer.SetSoftness(softness / 255.0);
        keyer.SetKeyColor(key);
        const bool blue = key.GetBlue() > key.GetRed() && key.GetBlue() > key.GetGreen();
        return [=](const Pixel& a) {
            const int screen = a[blue ? 2 : 1];
            const int opaque = std::clamp(std::max(a[0], a[blue ? 1 : 2]) - threshold, 0, 255);
            const int clear = std::min(opaque + softness, 255);
            if (screen <= opaque) return 255.0;
            return screen >= clear ? 0.0 : 255.0 * (clear - screen) / (clear - opaque);
        };
    };
    CheckKeyer<vfILLinearKeyer>(3, setUp);
}

TEST(LumaKeyer, IsTheLumaScaledAndShifted)
{
    const auto setUp = [](vfILLumaKeyer& keyer, bool& keep, std::mt19937& random) -> Matte {
        const bool is709 = random() % 2 != 0;
        const bool reverse = random() % 2 != 0;
        const double gain = Choose(random, {0, 1, 0.613, 2});
        const double brightness = Choose(random, {0, 0.1, -0.5, 1, -1});
        keyer.SetColorModel(is709 ? PXColorModel_YCC709 : PXColorModel_YCC);
        keyer.SetGain(gain);
        keyer.SetBrightness(brightness);
        keyer.SetReverseFlag(reverse);
        keyer.SetKeepOrigAlphaFlag(keep);
        const double weights[] = {is709 ? 0.2126 : 0.299, is709 ? 0.7152 : 0.587, is709 ? 0.0722 : 0.114};
        return [=](const Pixel& a) {
            double luma = 0.5;
            for (std::size_t c = 0; c < 3; ++c)
                luma += std::floor(weights[c] * 65536) / 65536 * a[c];
            luma = std::floor(luma);
            const double key =
                std::floor(luma * (std::round(gain * 65536) / 65536)) + std::round(255 * brightness);
            return reverse ? 255 - std::clamp(key, 0.0, 255.0) : std::clamp(key, 0.0, 255.0);
        };
    };
    CheckKeyer<vfILLumaKeyer>(4, setUp);
    vfILLumaKeyer untouched;
    EXPECT_EQ(MatteOf(untouched, {255, 255, 255, 0}), 0) << "a host sets the gain";
}

/// Calls check(keyer, set) for each keyer, where set(i, value) sets one of its numbers.
template <class Check>
void ForEachKeyer(bool simd, Check check)
{
    Switched<vfILChromaKeyer> chroma(simd);
    check(chroma, [&](int i, double v) {
        double lift = 0, gain = 0;
        chroma.GetLiftAndGain(&lift, &gain);
        if (i == 0) chroma.SetAngleTolerance(v);
        if (i != 0) chroma.SetLiftAndGain(i == 1 ? v : lift, i == 2 ? v : gain);
    });
    Switched<vfILBlueGreenKeyer> blueGreen(simd);
    check(blueGreen, [&](int i, double v) {
        i == 0 ? blueGreen.SetC0(v) : i == 1 ? blueGreen.SetC1(v) : blueGreen.SetC2(v);
    });
    Switched<vfILLinearKeyer> linear(simd);
    check(linear, [&](int i, double v) { i == 0 ? linear.SetThreshold(v) : linear.SetSoftness(v); });
    Switched<vfILLumaKeyer> luma(simd);
    check(luma, [&](int i, double v) { i == 0 ? luma.SetBrightness(v) : luma.SetGain(v); });
}

/// Whatever the numbers are when nobody verified them, nothing overflows, and both arithmetics agree.
TEST(Keyers, TakeAnyNumberUnverified)
{
    std::mt19937 random(7);
    // From 65536 pixels on a key of hues is made by a table.
    Pictures large(300, 230, random), small(30, 4, random);
    for (const double value : {kNaN, kInfinity, -kInfinity, 1e300, -1e300, 40000.0, -300.0, 127.9, -1.0}) {
        for (int i = 0; i < 6; ++i) {
            Pictures& p = i == 0 ? large : small;
            std::vector<std::vector<std::uint8_t>> results[2];
            for (const bool simd : {false, true}) {
                ForEachKeyer(simd, [&](auto& keyer, auto set) {
                    ConnectKeyer(keyer, p, &p.out);
                    if constexpr (requires { keyer.SetKeyColor({}); })
                        keyer.SetKeyColor({0.1, 0.8, i < 3 ? value : 0.2, 1});
                    set(i % 3, value);
                    set((i + 1 + i / 3) % 3, 1.5);
                    EXPECT_EQ(keyer.Execute(), VFIL_SUCCESS);
                    EXPECT_TRUE(p.out.AreGuardsIntact());
                    results[simd].push_back(p.out.Bytes());
                });
            }
            EXPECT_TRUE(results[0] == results[1]) << value << " " << i;
        }
    }
}

TEST(Keyers, StopAfterTheRowInWhichTheyAreInterrupted)
{
    for (const bool simd : {false, true}) {
        ForEachKeyer(simd, [](auto& keyer, auto) {
            std::mt19937 random(8);
            Pictures p(5, 4, random);
            ConnectKeyer(keyer, p, &p.out);
            const Snapshot before(p.out);
            g_pollsLeft = 2; // between the stages and after the first row
            keyer.SetInterruptFct(StopAfterPolls, nullptr);
            EXPECT_EQ(keyer.Execute(), VFIL_SUCCESS);
            const Snapshot after(p.out);
            for (long y = 0; y < 4; ++y)
                EXPECT_EQ(after.At(2, y) == before.At(2, y), y >= 2) << ClassOf(keyer) << " row " << y;
        });
    }
}

/// Verifies and, where that fails, compares code and text; null stands for the code's usual text.
template <class Keyer>
void CheckRefusal(const char* name, unsigned long code, const char* text, void (*spoil)(Keyer&),
                  const GUID& format = PXFormat_RGBA32)
{
    SCOPED_TRACE(name);
    GuardedImage a(format, 6, 4), b(format, 6, 4), out(format, 6, 4);
    Keyer keyer;
    Connect(keyer, &a, &b, &out);
    keyer.SetProcessingMode(VFIL_MODE_RGBA);
    spoil(keyer);
    EXPECT_EQ(keyer.Verify(), code == 0 ? VFIL_SUCCESS : VFIL_FAILURE);
    EXPECT_EQ(keyer.GetLastError().GetErrorCode(), code);
    EXPECT_TRUE(text == nullptr || std::string(text) == keyer.GetLastErrorText());
}

TEST(Keyers, RefuseTheFirstThingThatIsWrong)
{
    using Chroma = vfILChromaKeyer;
    using BlueGreen = vfILBlueGreenKeyer;
    using Linear = vfILLinearKeyer;
    using Luma = vfILLumaKeyer;
    const auto lift = "%s:Invalid lift and/or gain values!!!\n";
    const auto luma = "%s WARNING Verify: Clip and/or Gain Invalid\n";
    CheckRefusal<Chroma>("left", 0x1000A, nullptr, [](Chroma& k) { k.SetCropBox({-1, 0, 2, 2}); });
    CheckRefusal<Chroma>("wide", 0x1000A, nullptr, [](Chroma& k) { k.SetCropBox({0, 0, 7, 4}); });
    CheckRefusal<Chroma>("below", 0x1000A, nullptr, [](Chroma& k) { k.SetCropBox({0, -1, 2, 2}); });
    CheckRefusal<Chroma>("above", 0x1000A, nullptr, [](Chroma& k) { k.SetCropBox({0, 5, 2, 2}); });
    CheckRefusal<Chroma>("high", 0, nullptr, [](Chroma& k) { k.SetCropBox({6, 4, 6, 99}); });
    CheckRefusal<Chroma>("key before tolerance", 0x10048, "%s:Invalid Key Color!!!\n", [](Chroma& k) {
        k.SetKeyColor({0, 1.01, 0, 1}), k.SetAngleTolerance(-1);
    });
    CheckRefusal<Chroma>(
        "format", 0x1000D, nullptr, [](Chroma&) {}, PXFormat_BGRA32);
    CheckRefusal<Chroma>("tolerance", 0x10023, "%s:Invalid angle tolerance!!!\n",
                         [](Chroma& k) { k.SetAngleTolerance(kNaN); });
    CheckRefusal<Chroma>("lift", 0x10023, lift, [](Chroma& k) { k.SetLiftAndGain(kNaN, 0); });
    CheckRefusal<Chroma>("gain", 0x10023, lift, [](Chroma& k) { k.SetLiftAndGain(0, kNaN); });
    CheckRefusal<Chroma>("model", 0x1006A, nullptr, [](Chroma& k) { k.SetColorModel(PXColorModel_YUV); });
    CheckRefusal<BlueGreen>(
        "format", 0x10034, nullptr, [](BlueGreen&) {}, PXFormat_RGBA64);
    CheckRefusal<BlueGreen>("numbers", 0, nullptr, [](BlueGreen& k) { k.SetC0(kNaN), k.SetC1(kInfinity); });
    CheckRefusal<Linear>("channels", 0x20002, nullptr, [](Linear& k) { k.SetProcessingMode(VFIL_MODE_RGB); });
    CheckRefusal<Linear>("threshold", 0x20002, "%s WARNING Verify: Threshold Invalid\n",
                         [](Linear& k) { k.SetThreshold(kNaN); });
    CheckRefusal<Linear>("softness", 0x20002, "%s WARNING Verify: Softness Invalid\n",
                         [](Linear& k) { k.SetSoftness(kNaN); });
    CheckRefusal<Luma>("alpha not selected", 0, nullptr, [](Luma& k) { k.SetProcessingMode(VFIL_MODE_RGB); });
    CheckRefusal<Luma>("channels", 0x20002, nullptr, [](Luma& k) { k.SetProcessingMode(13); });
    CheckRefusal<Luma>("brightness", 0x20002, luma, [](Luma& k) { k.SetBrightness(kNaN); });
    CheckRefusal<Luma>("gain", 0x20002, luma, [](Luma& k) { k.SetGain(kNaN); });
}

/// A format that nobody verified is refused before a pixel is written.
TEST(Keyers, RefuseOtherFormatsInARun)
{
    ForEachKeyer(true, [](auto& keyer, auto) {
        std::mt19937 random(9);
        GuardedImage a(PXFormat_BGRA32, 3, 2), b(PXFormat_RGBA32, 3, 2), rgba(PXFormat_RGBA32, 3, 2),
            bgra(PXFormat_BGRA32, 3, 2);
        using Keyer = std::remove_cvref_t<decltype(keyer)>;
        constexpr bool kLooksAtA =
            std::is_base_of_v<vfILChromaKeyer, Keyer> || std::is_base_of_v<vfILBlueGreenKeyer, Keyer>;
        GuardedImage& out = kLooksAtA ? rgba : bgra;
        out.Randomise(random);
        const Snapshot before(out);
        Connect(keyer, &a, &b, &out);
        EXPECT_EQ(keyer.Execute(), VFIL_FAILURE);
        EXPECT_EQ(Difference(before, out), "");
    });
}

} // namespace
