/// \file
/// Turns, shifts and scales of small pictures, in every type and format, against what geometry says.
#include "support/guardedimage.h"
#include "support/processors.h"

#include <vfil/affine.h>
#include <vfil/host/picturefactory.h>

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

using namespace vfil;
using namespace vfil::test;

namespace {

constexpr GUID kDepths[] = {PXFormat_RGBA32, PXFormat_RGBA64, PXFormat_Mono8, PXFormat_Mono16};
const vfILColor kDefault(0.2, 0.4, 0.6, 0.8);

using Matrix = std::array<float, 6>;

template <class Transform>
void Prepare(Transform& transform, const float* coefficients, int type, GuardedImage& in, GuardedImage& out)
{
    transform.SetCoefficients(coefficients);
    transform.SetInterpolationType(static_cast<vfILInterpolationType>(type));
    transform.SetDefaultColor(kDefault);
    Connect(transform, &in, nullptr, &out);
}

template <class Transform>
void Show(const float* coefficients, int type, GuardedImage& in, GuardedImage& out)
{
    Transform transform;
    Prepare(transform, coefficients, type, in, out);
    ASSERT_EQ(transform.Verify(), VFIL_SUCCESS);
    ASSERT_EQ(transform.Execute(), VFIL_SUCCESS);
}

/// The default colour in a format.
Pixel DefaultOf(const GUID& format)
{
    GuardedImage in(format, 1, 1), out(format, 1, 1);
    vfILAffineTransform transform;
    const float away[] = {1, 0, 9, 0, 1, 9};
    Prepare(transform, away, VFIL_INTERP_NEAREST, in, out);
    transform.Execute();
    return out.Get(0, 0);
}

class Affine : public testing::Test {
protected:
    static void SetUpTestSuite() { host::RegisterPictureClass(); }
    std::mt19937 noise{7};
};

/// In all types, with a crop, a region, an offset, a field and in place.
TEST_F(Affine, WholePixelsAreCopied)
{
    for (const GUID& format : kDepths) {
        const Pixel none = DefaultOf(format);
        for (int turn = 0; turn < 300; ++turn) {
            const auto in32 = [&](long low, long high) { return RandomIn(noise, low, high); };
            GuardedImage in(format, in32(1, 12), in32(1, 12)), apart(format, 16, 15);
            in.Randomise(noise);
            apart.Randomise(noise);
            const bool inPlace = turn % 4 == 0;
            GuardedImage& out = inPlace ? in : apart;
            GuardedImage before(format, in.Width(), in.Height()), target(format, out.Width(), out.Height());
            for (long i = 0; i < in.Width() * in.Height(); ++i)
                before.Set(i % in.Width(), i / in.Width(), in.Get(i % in.Width(), i / in.Width()));
            for (long i = 0; i < out.Width() * out.Height(); ++i)
                target.Set(i % out.Width(), i / out.Width(), out.Get(i % out.Width(), i / out.Width()));

            const long dx = in32(-9, 9), dy = in32(-9, 9);
            const Matrix shift = {1, 0, static_cast<float>(dx), 0, 1, static_cast<float>(dy)};
            const auto crop = [&](long size) {
                const long low = turn % 3 == 0 ? in32(0, size) : 0;
                return std::array{low, turn % 3 == 0 ? in32(0, size - low) : 0};
            };
            const auto [left, right] = crop(in.Width());
            const auto [bottom, top] = crop(in.Height());
            const vfILBbox2l roi(in32(-5, 5), in32(-5, 5), in32(1, out.Width()), in32(1, out.Height()));
            const long offsetX = in32(0, out.Width() - roi.GetSizeX());
            const long offsetY = in32(0, out.Height() - roi.GetSizeY());
            const unsigned long field = static_cast<unsigned long>(turn % 5 == 0 ? turn % 3 : 0) << 8;

            vfILAffineTransform transform;
            Prepare(transform, shift.data(), 1 + turn % 7, in, out);
            transform.SetCropping(left, right, bottom, top);
            transform.SetROI(roi);
            transform.SetOutputOffset(vfILVector2l(offsetX, offsetY));
            transform.SetProcessingMode(VFIL_MODE_RGBA | field);
            ASSERT_EQ(transform.Verify(), VFIL_SUCCESS);
            ASSERT_EQ(transform.Execute(), VFIL_SUCCESS);
            for (long i = 0; i < out.Width() * out.Height(); ++i) {
                const long x = i % out.Width(), y = i / out.Width();
                const long u = x - offsetX + roi.GetOffsetX() - dx, v = y - offsetY + roi.GetOffsetY() - dy;
                const bool written = x >= offsetX && x < offsetX + roi.GetSizeX() && y >= offsetY &&
                                     y < offsetY + roi.GetSizeY() &&
                                     (field == 0 || (y % 2 == 1) == (field == VFIL_MODE_ODD_ROWS));
                const bool seen = u >= left && u < in.Width() - right && v >= bottom && v < in.Height() - top;
                ASSERT_EQ(out.Get(x, y), !written ? target.Get(x, y)
                                         : seen   ? before.Get(u, v)
                                                  : none)
                    << x << ", " << y << ", type " << 1 + turn % 7 << ", turn " << turn;
            }
            EXPECT_TRUE(out.AreGuardsIntact());
        }
    }
}

TEST_F(Affine, FourQuarterTurnsGiveThePictureBack)
{
    constexpr long kSize = 21;
    const float quarter[] = {0, -1, kSize - 1, 1, 0, 0};
    for (const GUID& format : kDepths)
        for (int type = VFIL_INTERP_NEAREST; type <= VFIL_INTERP_SUM_NEAREST; ++type) {
            GuardedImage in(format, kSize, kSize), a(format, kSize, kSize), b(format, kSize, kSize);
            in.Randomise(noise);
            Show<vfILAffineTransform>(quarter, type, in, a);
            EXPECT_EQ(a.Get(kSize - 1, 3), in.Get(3, 0)) << "type " << type;
            Show<vfILAffineTransform>(quarter, type, a, b);
            Show<vfILAffineTransform>(quarter, type, b, a);
            Show<vfILAffineTransform>(quarter, type, a, b);
            EXPECT_EQ(b.Bytes(), in.Bytes()) << "type " << type;
        }
}

/// The middle between pixels, and between a pixel and the default colour, which differ in their channels.
TEST_F(Affine, HalfWay)
{
    const float half[] = {1, 0, 0.5F, 0, 1, 0};
    GuardedImage in(PXFormat_RGBA32, 3, 1), out(PXFormat_RGBA32, 5, 1);
    in.Set(0, 0, {10, 20, 30, 255});
    in.Set(1, 0, {20, 41, 0, 255});
    in.Set(2, 0, {255, 0, 255, 0});
    Show<vfILAffineTransform>(half, VFIL_INTERP_BILINEAR, in, out);
    // 0.2, 0.4, 0.6 and 0.8 are 51, 102, 153 and 204.
    EXPECT_EQ(out.Get(0, 0), (Pixel{31, 61, 92, 230}));
    EXPECT_EQ(out.Get(1, 0), (Pixel{15, 31, 15, 255}));
    EXPECT_EQ(out.Get(3, 0), (Pixel{153, 51, 204, 102}));
    EXPECT_EQ(out.Get(4, 0), (Pixel{51, 102, 153, 204}));
    // (-1, 9, 9, -1) / 16 of 51, 10, 20, 255; the limits are those of a byte.
    Show<vfILAffineTransform>(half, VFIL_INTERP_BICUBIC, in, out);
    EXPECT_EQ(out.Get(1, 0)[0], 0);
    EXPECT_EQ(out.Get(2, 0)[0], 151);
    EXPECT_EQ(out.Get(2, 0)[2], 132);
    GuardedImage wide(PXFormat_Mono16, 4, 1), mixed(PXFormat_Mono16, 4, 1);
    for (long x = 0; x < 4; ++x)
        wide.Set(x, 0, {static_cast<int>(1000 * x * x), 0, 0, 0});
    Show<vfILAffineTransform>(half, VFIL_INTERP_BICUBIC, wide, mixed);
    EXPECT_EQ(mixed.Get(2, 0)[0], 2250); // a parabola's middle
}

/// A ramp keeps its values wherever it is shown, shrunk or not, one way or another.
TEST_F(Affine, RampsStay)
{
    for (const GUID& format : {PXFormat_Mono8, PXFormat_RGBA64})
        for (int type = VFIL_INTERP_BILINEAR; type <= VFIL_INTERP_SUM_NEAREST; ++type)
            for (const double scale : {3.3, 1.0, 0.72, 0.31, 0.13}) {
                GuardedImage in(format, 200, 160), out(format, 60, 50);
                const double full = in.Format().sampleBytes == 2 ? 65535 : 255;
                const auto ramp = [full](double u, double v) { return full * (0.1 + u / 300 + v / 900); };
                for (long y = 0; y < 160; ++y)
                    for (long x = 0; x < 200; ++x) {
                        const auto value = static_cast<int>(std::lround(ramp(double(x), double(y))));
                        in.Set(x, y, {value, value, value, value});
                    }
                const double c = scale * std::cos(0.4), s = scale * std::sin(0.4);
                const double x0 = 29.5 - c * 99.5 + s * 79.5, y0 = 24.5 - s * 99.5 - c * 79.5;
                const float map[] = {float(c), float(-s), float(x0), float(s), float(c), float(y0)};
                Show<vfILAffineTransform>(map, type, in, out);
                // Samples are rounded, and sums not, by a code each; the pyramid by half a code a level, up.
                // The pixels that a footprint covers have their mean a little beside its middle.
                const bool sums = type >= VFIL_INTERP_SUM_BILINEAR;
                double tolerance = sums ? 1.6 + full / 300 * 0.05 : 1.1 + full / 65535 * 2;
                if (type == VFIL_INTERP_BILINEAR_PREFILTERED) tolerance += 2;
                // Between pixels nearest is half a diagonal off.
                if (type == VFIL_INTERP_SUM_NEAREST && scale > 0.99) tolerance += full / 300 * 0.75;
                int seen = 0;
                for (long y = 0; y < 50; ++y)
                    for (long x = 0; x < 60; ++x) {
                        const double px = double(x) - x0, py = double(y) - y0, d = scale * scale;
                        const double u = (c * px + s * py) / d, v = (c * py - s * px) / d;
                        const double reach = 4 + 4 / scale;
                        if (u < reach || v < reach || u > 199 - reach || v > 159 - reach) continue;
                        ++seen;
                        ASSERT_NEAR(out.Get(x, y)[0], ramp(u, v), tolerance)
                            << x << ", " << y << ", type " << type << ", scale " << scale;
                    }
                EXPECT_GT(seen, scale < 0.2 ? 20 : 300);
            }
}

/// A blob stays where the map puts it: no shift by a fraction of a pixel, whatever the scale.
TEST_F(Affine, BlobsStayInPlace)
{
    GuardedImage in(PXFormat_Mono16, 161, 141);
    constexpr double kX = 78.3, kY = 71.6;
    for (long y = 0; y < 141; ++y)
        for (long x = 0; x < 161; ++x) {
            const double r2 = (double(x) - kX) * (double(x) - kX) + (double(y) - kY) * (double(y) - kY);
            in.Set(x, y, {static_cast<int>(std::lround(60000 * std::exp(-r2 / (2 * 8.0 * 8.0)))), 0, 0, 0});
        }
    for (int type = VFIL_INTERP_BILINEAR; type <= VFIL_INTERP_SUM_BICUBIC; ++type)
        for (const double scale : {0.17, 0.37, 0.6, 1.0, 1.7, 2.9}) {
            // Points of a shrunk picture miss pixels.
            if (type <= VFIL_INTERP_BICUBIC && scale < 0.5) continue;
            const auto width = static_cast<long>(161 * scale) + 20;
            GuardedImage out(PXFormat_Mono16, width, width);
            const Matrix map = {float(scale), 0, 7.4F, 0, float(scale), 9.7F};
            vfILAffineTransform transform;
            Prepare(transform, map.data(), type, in, out);
            transform.SetDefaultColor({0, 0, 0, 0});
            ASSERT_EQ(transform.Execute(), VFIL_SUCCESS);
            double sum = 0, x = 0, y = 0;
            for (long i = 0; i < width * width; ++i) {
                const double value = out.Get(i % width, i / width)[0];
                sum += value;
                x += value * double(i % width);
                y += value * double(i / width);
            }
            EXPECT_NEAR(x / sum, double{map[0]} * kX + double{map[2]}, 0.01) << type << ", " << scale;
            EXPECT_NEAR(y / sum, double{map[4]} * kY + double{map[5]}, 0.01) << type << ", " << scale;
        }
}

/// Maps of all sizes, also those that steps of fixed point cannot follow, and those that are none.
TEST_F(Affine, VectorsGiveThePlainBytes)
{
    constexpr float kOdd[] = {0, -0.0F, 1e-30F, 1e30F, -1e9F, 1e-9F, 3.4e38F, INFINITY, NAN, 0.33333F};
    constexpr double kLevels[] = {0.7, 2.5, 1e300, -1, NAN};
    std::uniform_real_distribution<float> any(-1.5F, 1.5F);
    for (const GUID& format : kDepths)
        for (int turn = 0; turn < 400; ++turn) {
            GuardedImage in(format, RandomIn(noise, 1, 50), RandomIn(noise, 1, 40));
            GuardedImage fast(format, 70, 9), plain(format, 70, 9);
            in.Randomise(noise);
            Matrix map = {any(noise), any(noise), 20 * any(noise), any(noise), any(noise), 9 * any(noise)};
            if (turn % 4 == 0) map[noise() % 6] = kOdd[noise() % std::size(kOdd)];
            const double level = turn % 5 == 0 ? kLevels[noise() % std::size(kLevels)] : 0;
            const auto run = [&](bool simd, GuardedImage& out) {
                Switched<vfILAffineTransform> transform(simd);
                Prepare(transform, map.data(), 1 + turn % 7, in, out);
                transform.SetFilteringLevel(level);
                transform.SetROI({turn % 100 == 0 ? 1000000 : -3, -2, 70, 9});
                return transform.Execute();
            };
            ASSERT_EQ(run(true, fast), run(false, plain));
            ASSERT_EQ(fast.Bytes(), plain.Bytes()) << "turn " << turn;
        }
}

/// The forward mapping leads to the corners, and the inverse back, also from outside.
TEST_F(Affine, QuadrilateralsMeetTheirCorners)
{
    std::uniform_real_distribution<float> near(-25, 25);
    int valid = 0;
    for (int turn = 0; turn < 400; ++turn) {
        const float corners[] = {near(noise),       near(noise),      100 + near(noise), near(noise),
                                 100 + near(noise), 80 + near(noise), near(noise),       80 + near(noise)};
        GuardedImage in(PXFormat_Mono8, 61, 41), out(PXFormat_Mono8, 110, 110);
        vfILBilinearTransform transform;
        Prepare(transform, corners, VFIL_INTERP_NEAREST, in, out);
        if (transform.Verify() != VFIL_SUCCESS) continue;
        ++valid;
        for (int i = 0; i < 4; ++i) {
            vfILVector2f point(i == 1 || i == 2 ? 60.0F : 0.0F, i >= 2 ? 40.0F : 0.0F);
            ASSERT_EQ(transform.Transform(point), VFIL_SUCCESS);
            ASSERT_EQ(point, vfILVector2f(corners[2 * i], corners[2 * i + 1]));
        }
        for (int i = 0; i < 20; ++i) {
            const vfILVector2f from(30 + 1.3F * near(noise), 20 + 0.8F * near(noise));
            vfILVector2f point = from;
            ASSERT_EQ(transform.Transform(point), VFIL_SUCCESS);
            ASSERT_EQ(transform.InvertTransform(point), VFIL_SUCCESS);
            ASSERT_NEAR(point[0], from[0], 0.01);
            ASSERT_NEAR(point[1], from[1], 0.01);
        }
    }
    EXPECT_GT(valid, 300);
}

/// A parallelogram is an affine map; the shares of a place are then rounded otherwise.
TEST_F(Affine, ParallelogramsAreAffine)
{
    const Matrix map = {1.25F, -0.5F, 16, 0.75F, 1.5F, 3};
    const auto corner = [&](long x, long y, int row) {
        const auto* const m = map.data() + 3 * row;
        return m[0] * static_cast<float>(x) + m[1] * static_cast<float>(y) + m[2];
    };
    for (const GUID& format : kDepths)
        for (int type = VFIL_INTERP_BILINEAR; type <= VFIL_INTERP_BILINEAR_PREFILTERED; ++type) {
            GuardedImage in(format, 33, 17), straight(format, 70, 60), quad(format, 70, 60);
            in.Randomise(noise);
            const float corners[] = {corner(0, 0, 0),  corner(0, 0, 1),   corner(32, 0, 0),
                                     corner(32, 0, 1), corner(32, 16, 0), corner(32, 16, 1),
                                     corner(0, 16, 0), corner(0, 16, 1)};
            Show<vfILAffineTransform>(map.data(), type, in, straight);
            Show<vfILBilinearTransform>(corners, type, in, quad);
            const int tolerance = in.Format().sampleBytes == 2 ? 4 : 1;
            for (long i = 0; i < 70 * 60; ++i)
                for (std::size_t c = 0; c < 4; ++c)
                    ASSERT_NEAR(quad.Get(i % 70, i / 70)[c], straight.Get(i % 70, i / 70)[c], tolerance)
                        << i << ", type " << type;
        }
}

} // namespace
