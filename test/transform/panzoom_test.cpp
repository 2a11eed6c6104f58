/// \file
/// Scales and shifts in all types: against sampling point by point, and against areas in double.
#include "il/rows/transform/samplerows.h"
#include "support/guardedimage.h"
#include "support/processors.h"

#include <vfil/affine.h>
#include <vfil/panzoom.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>

using namespace vfil;
using namespace vfil::test;

namespace {

using PanZoom = Switched<vfILPanZoomTransform>;

constexpr GUID kFormats[] = {PXFormat_RGBA32, PXFormat_RGBA64, PXFormat_Mono8, PXFormat_Mono16};

void Prepare(vfILPanZoomTransform& panZoom, GuardedImage& in, GuardedImage& out, int type,
             const std::array<float, 4>& map)
{
    Connect(panZoom, &in, nullptr, &out);
    panZoom.SetInterpolationType(static_cast<vfILInterpolationType>(type));
    panZoom.SetCoefficients(map.data());
}

/// The inverse as the class has it.
struct Back {
    explicit Back(const std::array<float, 4>& m)
    {
        const double inverse = 1 / (double{m[0]} * m[2]);
        scale[0] = static_cast<float>(m[2] * inverse);
        offset[0] = static_cast<float>(-(double{m[2]} * m[1]) * inverse);
        scale[1] = static_cast<float>(m[0] * inverse);
        offset[1] = static_cast<float>(-(double{m[0]} * m[3]) * inverse);
    }
    double At(int axis, long output) const
    {
        return scale[axis] * static_cast<double>(output) + offset[axis];
    }
    double scale[2], offset[2];
};

double Real(std::mt19937& random, double low, double high)
{
    return std::uniform_real_distribution<double>(low, high)(random);
}

/// Scales of both signs from 1/8 to 8, and whole ones; offsets around the picture.
std::array<float, 4> RandomMap(std::mt19937& random)
{
    std::array<float, 4> map{};
    for (std::size_t axis = 0; axis < 2; ++axis) {
        const double scale =
            random() % 5 ? std::exp2(Real(random, -3, 3)) : static_cast<double>(1 + random() % 2);
        map[2 * axis] = static_cast<float>(random() % 3 ? scale : -scale);
        map[2 * axis + 1] = static_cast<float>((map[2 * axis] < 0 ? 15 * scale : 0) + Real(random, -8, 12));
        if (random() % 4 == 0) map[2 * axis + 1] = std::round(map[2 * axis + 1]);
    }
    return map;
}

// Cropped, in a region of interest, and with rows of one field.
TEST(PanZoom, LinesAreSampledPointByPoint)
{
    std::mt19937 random(5);
    for (int i = 0; i < 400; ++i) {
        const GUID& format = kFormats[i % 4];
        GuardedImage in(format, RandomIn(random, 1, 40), RandomIn(random, 1, 20));
        GuardedImage out(format, 70, 24);
        in.Randomise(random);
        PanZoom panZoom(random() % 4 != 0);
        const auto map = RandomMap(random);
        const int type = 1 + i / 4 % 3;
        Prepare(panZoom, in, out, type, map);
        const vfILColor colour(0.9, 0.2, 0.6, 0.4);
        panZoom.SetDefaultColor(colour);
        const unsigned long left = random() % 3, right = random() % 2, low = random() % 3,
                            high = random() % 2;
        panZoom.SetCropping(left, right, low, high);
        panZoom.SetROI({-3, 2, 60, 20});
        panZoom.SetOutputOffset({5, 1});
        panZoom.SetProcessingMode(VFIL_MODE_RGBA | RandomFieldBits(random));
        const std::vector<std::uint8_t> before = out.Bytes();
        ASSERT_EQ(panZoom.Execute(), VFIL_SUCCESS);
        ASSERT_TRUE(out.AreGuardsIntact());

        const std::vector<std::uint8_t> bytes = in.Bytes();
        const auto pixelBytes = static_cast<std::size_t>(in.Format().pixelBytes);
        SampleSource source{bytes.data(),
                            static_cast<std::ptrdiff_t>(pixelBytes) * in.Width(),
                            static_cast<std::int32_t>(left),
                            static_cast<std::int32_t>(low),
                            static_cast<std::int32_t>(in.Width()) - static_cast<std::int32_t>(right),
                            static_cast<std::int32_t>(in.Height()) - static_cast<std::int32_t>(high),
                            {}};
        std::uint16_t words[4] = {};
        if (pixelBytes == 8) colour.GetColorAs64(words, PXColorModel_RGB);
        if (pixelBytes == 2) colour.GetColorAs16(words, PXColorModel_MONO);
        std::memcpy(source.defaultPixel, words, 8);
        if (pixelBytes == 4) colour.GetColorAs32(source.defaultPixel, PXColorModel_RGB);
        if (pixelBytes == 1) colour.GetColorAs8(source.defaultPixel, PXColorModel_MONO);
        const SamplePixel kinds[] = {SamplePixel::FourBytes, SamplePixel::FourWords, SamplePixel::Byte,
                                     SamplePixel::Word};
        const SampleRow sample = FindSampleRow(false, static_cast<SampleForm>(type - 1), kinds[i % 4]);
        const Back back(map);
        std::vector<std::uint8_t> expected = before;
        for (long y = 2; y < 22; ++y) {
            const unsigned long field = panZoom.GetProcessingMode() >> 8;
            if (field == 3 || (field != 0 && (y - 1) % 2 != (field == 1 ? 1 : 0))) continue;
            for (long x = -3; x < 57; ++x) {
                const double u = back.At(0, x), v = back.At(1, y);
                sample(source, &u, &v, 1,
                       expected.data() + static_cast<std::size_t>((y - 1) * 70 + x + 8) * pixelBytes);
            }
        }
        ASSERT_EQ(out.Bytes(), expected)
            << "case " << i << ", type " << type << ", scales " << map[0] << ", " << map[2];
    }
}

// Boxes within the input have a way of their own, which gives what a polygon of any mapping gives.
TEST(PanZoom, FootprintsAreThoseOfAnAffineTransform)
{
    std::mt19937 random(15);
    for (int i = 0; i < 300; ++i) {
        const GUID& format = kFormats[i % 4];
        GuardedImage in(format, RandomIn(random, 5, 60), RandomIn(random, 5, 40));
        GuardedImage out(format, 70, 24), affineOut(format, 70, 24);
        in.Randomise(random);
        const auto map = RandomMap(random);
        PanZoom panZoom(i % 8 < 4);
        const int type = 5 + i / 4 % 3;
        Prepare(panZoom, in, out, type, map);
        Switched<vfILAffineTransform> affine(true);
        Connect(affine, &in, nullptr, &affineOut);
        affine.SetInterpolationType(static_cast<vfILInterpolationType>(type));
        const float coefficients[] = {map[0], 0, map[1], 0, map[2], map[3]};
        affine.SetCoefficients(coefficients);
        const double level = i % 3 == 0 ? Real(random, 0, 3) : 0;
        const unsigned long left = random() % 3, low = random() % 3;
        for (vfILMonadicTransformProc* each : {static_cast<vfILMonadicTransformProc*>(&panZoom),
                                               static_cast<vfILMonadicTransformProc*>(&affine)}) {
            each->SetDefaultColor({0.3, 0.5, 0.7, 0.9});
            each->SetFilteringLevel(level);
            each->SetCropping(left, 1, low, 1);
            ASSERT_EQ(each->Execute(), VFIL_SUCCESS);
        }
        ASSERT_EQ(out.Bytes(), affineOut.Bytes())
            << "case " << i << ", scales " << map[0] << ", " << map[2] << ", level " << level;
    }
}

TEST(PanZoom, WholeShiftsAndMirrorsAreCopiesInEveryType)
{
    std::mt19937 random(6);
    for (const GUID& format : kFormats)
        for (int type = 1; type <= 8; ++type)
            for (const bool mirrored : {false, true}) {
                // The frame's line functions of the other types are not exact for a mirror's corner cases.
                if (mirrored && type >= 4 && type <= 7) continue;
                GuardedImage in(format, 37, 11), out(format, 50, 20);
                in.Randomise(random);
                PanZoom panZoom(true);
                const float sign = mirrored ? -1.0F : 1.0F;
                Prepare(panZoom, in, out, type,
                        {sign, mirrored ? 40.0F : 5.0F, sign, mirrored ? 13.0F : 4.0F});
                if (type == 4) continue; // needs a host's factory
                ASSERT_EQ(panZoom.Verify(), VFIL_SUCCESS);
                ASSERT_EQ(panZoom.Execute(), VFIL_SUCCESS);
                const Pixel none{};
                for (long y = 0; y < 20; ++y)
                    for (long x = 0; x < 50; ++x) {
                        const long u = mirrored ? 40 - x : x - 5, v = mirrored ? 13 - y : y - 4;
                        ASSERT_EQ(out.Get(x, y), in.Contains(u, v) ? in.Get(u, v) : none)
                            << x << ", " << y << ", type " << type;
                    }
            }
}

/// The weight of a pixel in an output of the two-pass resampler, exactly.
double WeightOf(const Back& back, int axis, long output, long pixel)
{
    const double u = back.At(axis, output), size = std::abs(back.scale[axis]),
                 at = static_cast<double>(pixel);
    if (size == 1) return std::round(u) == at;
    if (size < 1) return std::max(0.0, 1 - std::abs(u - at));
    return std::max(0.0, std::min(u + size / 2, at + 0.5) - std::max(u - size / 2, at - 0.5)) / size;
}

/// A soft band at both ends of an axis of a size.
struct Ramp {
    double low, high;
    double At(long p, long size) const
    {
        const double fromLow = (low - static_cast<double>(p)) / (low + 1);
        const double fromHigh = (high - static_cast<double>(size - 1 - p)) / (high + 1);
        const double t = std::clamp(std::max(fromLow, fromHigh), 0.0, 1.0);
        return t * t * (3 - 2 * t);
    }
};

/// A run of the two-pass resampler over a grey: the parts of an output in double.
struct AreaModel {
    const GuardedImage& in;
    Back back;
    Ramp border[2], falloff[2];
    double opacity;

    /// The result of a channel, of which the border's colour and the grey have these; channel 3 is alpha, and
    /// so is 4 for a picture without it.
    double At(long x, long y, std::size_t channel, double borderColour, double grey) const
    {
        double colour = 0, alpha = 0;
        const bool hasAlpha = in.Format().channels == 4;
        const double full = in.Format().sampleBytes == 2 ? 65535 : 255;
        for (long v = 0; v < in.Height(); ++v) {
            const double wy = WeightOf(back, 1, y, v);
            for (long u = 0; wy > 0 && u < in.Width(); ++u) {
                const double w = wy * WeightOf(back, 0, x, u);
                if (w == 0) continue;
                const double open = (1 - border[0].At(u, in.Width())) * (1 - border[1].At(v, in.Height()));
                const double gain =
                    opacity * (1 - falloff[0].At(u, in.Width())) * (1 - falloff[1].At(v, in.Height()));
                const double a = hasAlpha ? in.Get(u, v)[3] / full : 1;
                colour += w * gain * (borderColour * (1 - open) + open * in.Get(u, v)[channel]);
                alpha += w * gain * ((1 - open) + open * a);
            }
        }
        return std::min(full, colour + (1 - alpha) * grey);
    }
};

// Whatever the scale, every pixel counts with the area that it has. Weights have 14 bits, and each of the
// steps may round.
TEST(PanZoom, TheResamplerWeighsByAreaAndComposesOverTheDefaultColour)
{
    std::mt19937 random(7);
    for (int i = 0; i < 160; ++i) {
        const GUID& format = kFormats[i % 4];
        GuardedImage in(format, RandomIn(random, 12, 40), RandomIn(random, 12, 20)), out(format, 48, 22);
        const int full = in.Format().sampleBytes == 2 ? 65535 : 255;
        for (long y = 0; y < in.Height(); ++y)
            for (long x = 0; x < in.Width(); ++x) {
                const auto alpha = RandomSample(random, full);
                const auto colour = [&] {
                    return static_cast<int>(random() % static_cast<unsigned>(alpha + 1));
                };
                in.Set(x, y, {colour(), colour(), colour(), alpha});
            }
        const auto map = RandomMap(random);
        PanZoom panZoom(true), plain(false);
        const bool banded = i % 3 == 0, straight = i % 5 == 4;
        const auto width = [&] { return banded ? random() % 5 : 0; };
        const unsigned long b[4] = {width(), width(), width(), width()};
        const unsigned long f[4] = {width(), width(), width(), width()};
        const double opacity = banded ? 0.75 : 1;
        std::vector<std::uint8_t> results[2];
        for (PanZoom* processor : {&plain, &panZoom}) {
            Prepare(*processor, in, out, VFIL_INTERP_PANZOOM, map);
            processor->SetDefaultColor({0.6, 0.2, 0.4, 1});
            processor->SetInputImgPremultiplied(straight ? 0 : 1);
            processor->SetBorderColor({0.2, 0.4, 0.8, 1});
            processor->SetBorderSize(b[0], b[1], b[2], b[3]);
            processor->SetBorderSoftness(b[0], b[1], b[2], b[3]);
            processor->SetOpacityFalloff(f[0], f[1], f[2], f[3]);
            processor->SetOpacity(opacity);
            ASSERT_EQ(processor->Execute(), VFIL_SUCCESS);
            EXPECT_TRUE(out.AreGuardsIntact());
            results[processor == &panZoom] = out.Bytes();
        }
        ASSERT_EQ(results[0], results[1]) << "vectors change nothing, case " << i;
        if (straight) continue; // a picture whose alpha is multiplied in, below
        const auto ramp = [](const unsigned long* w) {
            return Ramp{static_cast<double>(w[0]), static_cast<double>(w[1])};
        };
        const AreaModel model{in, Back(map), {ramp(b), ramp(b + 2)}, {ramp(f), ramp(f + 2)}, opacity};
        const bool mono = in.Format().channels == 1;
        const double border[] = {0.2, 0.4, 0.8, 1}, grey[] = {0.6, 0.2, 0.4, 1};
        // The brightness of a colour, as the colour itself says.
        std::uint16_t brightness[2] = {};
        vfILColor(0.2, 0.4, 0.8, 1).GetColorAs16(brightness, PXColorModel_MONO);
        vfILColor(0.6, 0.2, 0.4, 1).GetColorAs16(brightness + 1, PXColorModel_MONO);
        for (long y = 0; y < 22; ++y)
            for (long x = 0; x < 48; ++x)
                for (std::size_t c = 0; c < (mono ? 1 : 4); ++c) {
                    const double atBorder = full * (mono ? brightness[0] / 65535.0 : border[c]);
                    const double below = full * (mono ? brightness[1] / 65535.0 : grey[c]);
                    ASSERT_NEAR(out.Get(x, y)[c], model.At(x, y, c, atBorder, below), full == 255 ? 2.5 : 20)
                        << x << ", " << y << ", channel " << c << ", case " << i << ", scales " << map[0]
                        << ", " << map[2] << ", offsets " << map[1] << ", " << map[3];
                }
    }
}

TEST(PanZoom, AStraightPictureIsMultipliedWhereSomethingShowsThrough)
{
    GuardedImage in(PXFormat_RGBA32, 3, 3), out(PXFormat_RGBA32, 6, 3);
    for (long i = 0; i < 9; ++i)
        in.Set(i % 3, i / 3, {200, 100, 50, 51});
    PanZoom panZoom(true);
    Prepare(panZoom, in, out, VFIL_INTERP_PANZOOM, {1, 0, 1, 0});
    ASSERT_EQ(panZoom.Execute(), VFIL_SUCCESS);
    EXPECT_EQ(out.Get(1, 1), (Pixel{200, 100, 50, 51})) << "over nothing";
    EXPECT_EQ(panZoom.GetOutputImgPremultiplied(), 0);
    panZoom.SetDefaultColor({0, 1, 0, 1});
    ASSERT_EQ(panZoom.Execute(), VFIL_SUCCESS);
    EXPECT_EQ(out.Get(1, 1), (Pixel{40, 224, 10, 255}));
    EXPECT_EQ(out.Get(4, 1), (Pixel{0, 255, 0, 255}));
    panZoom.SetDefaultColor({0, 0, 0, 0});
    panZoom.SetCreatePremultipliedOutput(1);
    ASSERT_EQ(panZoom.Execute(), VFIL_SUCCESS);
    EXPECT_EQ(out.Get(1, 1), (Pixel{40, 20, 10, 51}));
    EXPECT_EQ(panZoom.GetOutputImgPremultiplied(), 1);
    panZoom.SetInterpolationType(VFIL_INTERP_BILINEAR);
    ASSERT_EQ(panZoom.Execute(), VFIL_SUCCESS);
    EXPECT_EQ(panZoom.GetOutputImgPremultiplied(), 0) << "as the input";
}

// Where only a part of an output pixel lies on the picture, its alpha is that part.
TEST(PanZoom, StraightColourDoesNotFadeAtEdges)
{
    std::mt19937 random(9);
    long edges = 0;
    for (int i = 0; i < 200; ++i) {
        const Pixel flat{13, 242, 44, 200};
        GuardedImage in(kFormats[i % 2], 16, 16), out(kFormats[i % 2], 24, 24);
        for (long k = 0; k < 256; ++k)
            in.Set(k % 16, k / 16, flat);
        PanZoom panZoom(i % 4 < 2);
        Prepare(panZoom, in, out, VFIL_INTERP_PANZOOM, RandomMap(random));
        ASSERT_EQ(panZoom.Execute(), VFIL_SUCCESS);
        ASSERT_EQ(panZoom.GetOutputImgPremultiplied(), 0);
        for (long k = 0; k < 576; ++k) {
            const Pixel pixel = out.Get(k % 24, k / 24);
            if (pixel[3] == 0) continue;
            edges += pixel[3] < flat[3];
            ASSERT_EQ((Pixel{pixel[0], pixel[1], pixel[2], flat[3]}), flat) << i << ", " << k;
        }
    }
    EXPECT_GT(edges, 500);
}

TEST(PanZoom, AShrunkPictureKeepsItsMean)
{
    std::mt19937 random(8);
    GuardedImage in(PXFormat_Mono8, 240, 120), out(PXFormat_Mono8, 120, 60);
    in.Randomise(random);
    for (const float shrink : {2.0F, 3.0F, 5.0F, 12.0F, 24.0F, 60.0F}) {
        PanZoom panZoom(true);
        // The outer edges of both pictures lie on each other.
        Prepare(panZoom, in, out, VFIL_INTERP_PANZOOM,
                {1 / shrink, (1 / shrink - 1) / 2, 1 / shrink, (1 / shrink - 1) / 2});
        ASSERT_EQ(panZoom.Execute(), VFIL_SUCCESS);
        const auto mean = [](const GuardedImage& picture, long width, long height) {
            double sum = 0;
            for (long i = 0; i < width * height; ++i)
                sum += picture.Get(i % width, i / width)[0];
            return sum / static_cast<double>(width * height);
        };
        EXPECT_NEAR(mean(out, std::lround(240 / shrink), std::lround(120 / shrink)), mean(in, 240, 120), 0.5)
            << shrink;
    }
}

// Nothing is refused without Verify, and no parameter leads astray.
TEST(PanZoom, WildParametersAreHarmless)
{
    constexpr float kInfinite = std::numeric_limits<float>::infinity();
    const float scales[] = {1e-9F, 1e9F, -1e-9F, -1e9F, 3e38F, 1e-20F, 0, NAN, kInfinite, 1, 0.3F};
    const float offsets[] = {0, 1e30F, -1e30F, NAN, kInfinite, 2147483648.0F, 0.5F};
    constexpr unsigned long kHuge = std::numeric_limits<unsigned long>::max();
    std::mt19937 random(9);
    const auto any = [&](const auto& values) { return values[random() % std::size(values)]; };
    for (int i = 0; i < 3000; ++i) {
        const GUID& format = kFormats[i % 4];
        GuardedImage in(format, RandomIn(random, 1, 9), RandomIn(random, 1, 9)), out(format, 7, 5);
        PanZoom panZoom(i % 8 < 4);
        int type = i / 8 % 8 + 1;
        if (type == 4) type = 9; // that one needs a host's factory
        Prepare(panZoom, in, out, type, {any(scales), any(offsets), any(scales), any(offsets)});
        const unsigned long widths[] = {0, 0, 0, 1, 4, 20, kHuge};
        panZoom.SetCropping(any(widths), any(widths), any(widths), any(widths));
        panZoom.SetBorderSize(any(widths), any(widths), any(widths), any(widths));
        panZoom.SetBorderSoftness(any(widths), any(widths), any(widths), any(widths));
        panZoom.SetOpacityFalloff(any(widths), any(widths), any(widths), any(widths));
        const double opacities[] = {0, 0.5, 1, NAN, 1e300, -7};
        panZoom.SetOpacity(any(opacities));
        panZoom.SetFilteringLevel(any(opacities));
        panZoom.Execute();
        ASSERT_TRUE(out.AreGuardsIntact()) << i;
    }
}

TEST(PanZoom, VerifyRefuses)
{
    GuardedImage in(PXFormat_RGBA32, 8, 8), out(PXFormat_RGBA32, 8, 8);
    struct Case {
        std::array<float, 4> map;
        int type;
        unsigned long code; ///< 0 for none
    };
    const Case cases[] = {{{1, 0, 1, 0}, 8, 0},
                          {{-2, 0, 0.25F, 3}, 5, 0},
                          {{1, 0, 1, 0}, 9, 0x1000F},
                          {{1, 0, 1, 0}, 0, 0x1000F},
                          {{0, 0, 1, 0}, 1, 0x10010},
                          {{1e-30F, 0, 1e-30F, 0}, 1, 0x10010},
                          {{1e30F, 0, 1e30F, 0}, 1, 0x10010},
                          {{NAN, 0, 1, 0}, 1, 0x10010},
                          {{1, NAN, 1, 0}, 1, 0x10010},
                          {{1e-9F, 0, 1e-9F, 0}, 8, 0},
                          {{1e9F, 0, 1e9F, 0}, 8, 0}};
    for (const Case& c : cases) {
        PanZoom panZoom(true);
        Prepare(panZoom, in, out, c.type, c.map);
        const bool refuses = panZoom.Verify() != VFIL_SUCCESS;
        EXPECT_EQ(refuses ? panZoom.GetLastError().GetErrorCode() : 0, c.code) << c.map[0] << ", " << c.type;
    }
}

} // namespace
