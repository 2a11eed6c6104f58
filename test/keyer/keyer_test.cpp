/// \file
/// The keyers of RGBA pictures against models that work in real numbers, and what is meant to be odd in them.
#include "keyer/keyercheck.h"
#include "support/convertmodel.h"
#include "support/framemodel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numbers>

using namespace vfil::test;

namespace {

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
        ConnectKeyer(keyer, p.a, p.b, output);
        keyer.SetProcessingMode(VFIL_MODE_RGBA);
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

/// The key in polar coordinates: by how far a hue is from the key's.
double SectorMatte(const Triple& ycc, double keyHue, double tolerance, double lift, double gain)
{
    const double u = ycc[1] / 127.5 - 1;
    const double v = ycc[2] / 127.5 - 1;
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
        vfILColor key = AnyColor(random);
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
        return [=](const Pixel& a) {
            return SectorMatte(EncodePixel(is709, {a[0], a[1], a[2]}), hue, tolerance, lift, gain);
        };
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
    ConnectKeyer(keyer, p.a, p.b, p.out);
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
        const vfILColor key = AnyColor(random);
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
        const vfILColor key = random() % 3 == 0 ? vfILColor(0.1, 0.4, 0.4, 1) : AnyColor(random);
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

} // namespace
