#include "il/rows/transform/projectrows.h"
#include "support/guardedimage.h"
#include "support/processors.h"
#include "support/rowcheck.h"

#include <vfil/affine.h>
#include <vfil/perspective.h>

#include <cmath>
#include <cstring>
#include <limits>

using namespace vfil;
using namespace vfil::test;

namespace {

using Matrix = std::array<float, 9>;
/// x' = 35.03 + 10.13 / d and y' = 20.07 + (y - 9.11) / d, where d = 0.08 x + 0.01 y - 0.9 is 0 within the
/// input: what has d < 0 lands to the left of column 35.
constexpr Matrix kHorizon = {2.8024F, 0.3503F, -21.397F, 1.6056F, 1.2007F, -27.173F, 0.08F, 0.01F, -0.9F};

void Prepare(vfILMonadicTransformProc& transform, const float* coefficients, GuardedImage& in,
             GuardedImage& out, int type)
{
    transform.SetCoefficients(coefficients);
    transform.SetInterpolationType(static_cast<vfILInterpolationType>(type));
    transform.SetDefaultColor(vfILColor(0.2, 0.4, 0.6, 0.8));
    Connect(transform, &in, nullptr, &out);
}

/// The inverse by Cramer's rule, times a positive factor where the determinant is positive.
struct Back {
    explicit Back(const Matrix& matrix)
    {
        for (int i = 0; i < 3; ++i)
            for (int j = 0; j < 3; ++j) {
                const auto at = [&](int r, int c) {
                    return double{matrix[static_cast<std::size_t>(3 * ((j + r) % 3) + (i + c) % 3)]};
                };
                rows[i][j] = at(1, 1) * at(2, 2) - at(1, 2) * at(2, 1);
            }
    }
    double Row(int i, double x, double y) const { return rows[i][0] * x + rows[i][1] * y + rows[i][2]; }
    double rows[3][3];
};

TEST(Perspective, ClipModesChooseTheSideOfTheHorizon)
{
    std::mt19937 random(3);
    const Back back(kHorizon);
    for (const GUID& format : {PXFormat_RGBA32, PXFormat_RGBA64, PXFormat_Mono8, PXFormat_Mono16})
        for (const int mode : {0, 1, 2, 77}) {
            GuardedImage in(format, 23, 19), out(format, 70, 41);
            in.Randomise(random);
            vfILPerspectiveTransform transform;
            Prepare(transform, kHorizon.data(), in, out, VFIL_INTERP_NEAREST);
            transform.SetClipMode(static_cast<vfILClipMode>(mode));
            ASSERT_EQ(transform.Execute(), VFIL_SUCCESS);
            const Pixel none = out.Get(35, 0);
            int found = 0;
            for (long y = 0; y < 41; ++y)
                for (long x = 0; x < 70; ++x) {
                    const double w = back.Row(2, static_cast<double>(x), static_cast<double>(y));
                    const double u = back.Row(0, static_cast<double>(x), static_cast<double>(y)) / w;
                    const double v = back.Row(1, static_cast<double>(x), static_cast<double>(y)) / w;
                    const bool wanted = mode == 1 ? w < 0 : mode != 2 || w > 0;
                    // The matrix and its inverse are floats.
                    if (std::abs(std::remainder(u - 0.5, 1)) < 1e-3 ||
                        std::abs(std::remainder(v - 0.5, 1)) < 1e-3)
                        continue;
                    const bool inside = u > -0.5 && v > -0.5 && u < 22.5 && v < 18.5;
                    found += wanted && inside;
                    ASSERT_EQ(out.Get(x, y), wanted && inside ? in.Get(std::lround(u), std::lround(v)) : none)
                        << x << ", " << y << " of mode " << mode;
                }
            EXPECT_GT(found, 200);
        }
}

TEST(Perspective, FootprintsAreClippedAtTheHorizon)
{
    const Back back(kHorizon);
    const Pixel flat = {200, 100, 50, 255};
    for (const int type : {VFIL_INTERP_SUM_BILINEAR, VFIL_INTERP_SUM_BICUBIC, VFIL_INTERP_SUM_NEAREST})
        for (const int mode : {VFIL_CLIP_NONE, VFIL_CLIP_NEGATIVE, VFIL_CLIP_POSITIVE}) {
            GuardedImage in(PXFormat_RGBA32, 23, 19), out(PXFormat_RGBA32, 70, 41);
            for (long i = 0; i < 23 * 19; ++i)
                in.Set(i % 23, i / 23, flat);
            vfILPerspectiveTransform transform;
            Prepare(transform, kHorizon.data(), in, out, type);
            transform.SetClipMode(static_cast<vfILClipMode>(mode));
            ASSERT_EQ(transform.Execute(), VFIL_SUCCESS);
            int found = 0;
            for (long i = 0; i < 70 * 41; ++i) {
                const auto x = static_cast<double>(i % 70);
                const auto y = static_cast<double>(i / 70);
                int wanted = 0;
                int inside = 0;
                for (const auto& [dx, dy] : {std::pair{-0.5, -0.5}, {0.5, -0.5}, {0.5, 0.5}, {-0.5, 0.5}}) {
                    const double w = back.Row(2, x + dx, y + dy);
                    const double u = back.Row(0, x + dx, y + dy) / w;
                    const double v = back.Row(1, x + dx, y + dy) / w;
                    wanted += mode == VFIL_CLIP_NEGATIVE ? w < -0.01 : mode == VFIL_CLIP_NONE || w > 0.01;
                    inside += u > 1 && v > 1 && u < 21 && v < 17;
                }
                // None of it, or all; what lies between is mixed with the default colour.
                if (wanted == 0) {
                    ASSERT_EQ(out.Get(i % 70, i / 70), out.Get(35, 0)) << i << ", mode " << mode;
                } else if (wanted == 4 && inside == 4) {
                    ++found;
                    for (std::size_t c = 0; c < 4; ++c)
                        ASSERT_NEAR(out.Get(i % 70, i / 70)[c] + 0.5, flat[c], 0.5) << i << ", mode " << mode;
                }
            }
            EXPECT_GT(found, 100);
        }
}

TEST(Perspective, WithoutPerspectiveItIsAffine)
{
    const float affine[] = {0.83F, -0.31F, 7.3F, 0.27F, 1.17F, -2.6F};
    const float matrix[] = {0.83F, -0.31F, 7.3F, 0.27F, 1.17F, -2.6F, 0, 0, 1};
    std::mt19937 random(5);
    for (const GUID& format : {PXFormat_RGBA32, PXFormat_RGBA64, PXFormat_Mono8, PXFormat_Mono16})
        for (int type = VFIL_INTERP_NEAREST; type <= VFIL_INTERP_SUM_NEAREST; ++type) {
            if (type == VFIL_INTERP_BILINEAR_PREFILTERED) continue; // wants a host's factory
            GuardedImage in(format, 31, 23), expected(format, 40, 30), out(format, 40, 30);
            in.Randomise(random);
            vfILAffineTransform straight;
            Prepare(straight, affine, in, expected, type);
            vfILPerspectiveTransform transform;
            Prepare(transform, matrix, in, out, type);
            ASSERT_EQ(transform.Verify(), VFIL_SUCCESS);
            ASSERT_EQ(straight.Execute(), VFIL_SUCCESS);
            ASSERT_EQ(transform.Execute(), VFIL_SUCCESS);
            // A 16-bit sample tells positions that differ by less than a 65536th of a pixel apart.
            const int tolerance = out.Format().sampleBytes == 2 ? 16 : 1;
            for (long i = 0; i < 40 * 30; ++i)
                for (std::size_t c = 0; c < 4; ++c)
                    ASSERT_NEAR(out.Get(i % 40, i / 40)[c], expected.Get(i % 40, i / 40)[c], tolerance)
                        << i << " of type " << type;
            Connect(transform, &in, nullptr, &in);
            transform.SetROI({0, 0, 31, 23});
            ASSERT_EQ(transform.Execute(), VFIL_SUCCESS);
            for (long i = 0; i < 31 * 23; ++i)
                ASSERT_EQ(in.Get(i % 31, i / 31), out.Get(i % 31, i / 31)) << "in place, " << i;
        }
}

TEST(Perspective, PointsComeBack)
{
    std::mt19937 random(6);
    std::uniform_real_distribution<float> any(-1, 1);
    for (int round = 0; round < 3000; ++round) {
        const Matrix matrix = {1 + any(random) / 2, any(random) / 2,     any(random) * 500,
                               any(random) / 2,     1 + any(random) / 2, any(random) * 500,
                               any(random) / 8000,  any(random) / 8000,  1};
        vfILPerspectiveTransform transform;
        transform.SetCoefficients(matrix.data());
        const float x = 960 + any(random) * 960;
        const float y = 540 + any(random) * 540;
        const double determinant = double{matrix[0]} * matrix[4] - double{matrix[1]} * matrix[3];
        if (determinant < 0.3) continue;
        vfILVector2f point(x, y);
        ASSERT_EQ(transform.Transform(point), VFIL_SUCCESS);
        ASSERT_EQ(transform.InvertTransform(point), VFIL_SUCCESS);
        ASSERT_NEAR(point[0], x, 0.01);
        ASSERT_NEAR(point[1], y, 0.01);
    }
    vfILPerspectiveTransform transform;
    const Matrix matrix = {1, 0, 0, 0, 1, 0, 1, 0, -4};
    transform.SetCoefficients(matrix.data());
    vfILVector2f point(4, 7); // d = 0
    ASSERT_EQ(transform.Transform(point), VFIL_SUCCESS);
    EXPECT_TRUE(point == vfILVector2f(0, 0));
}

TEST(Perspective, VerifyTellsWhy)
{
    GuardedImage in(PXFormat_RGBA32, 9, 7), out(PXFormat_RGBA32, 9, 7);
    GuardedImage video(PXFormat_YUV422_601, 8, 6), videoOut(PXFormat_YUV422_601, 8, 6);
    constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    struct {
        const char* name;
        Matrix matrix;
        int type;
        bool isVideo;
        unsigned long code;
    } const cases[] = {
        {"good", {1, 0, 0, 0, 1, 0, 0, 0, 1}, 1, false, 0},
        {"singular", {1, 2, 3, 2, 4, 6, 0, 0, 1}, 1, false, 0x10010},
        {"zero", {}, 1, false, 0x10010},
        {"NaN", {kNaN, 0, 0, 0, 1, 0, 0, 0, 1}, 2, false, 0x10010},
        {"infinite", {1, 0, kInfinity, 0, 1, 0, 0, 0, 1}, 3, false, 0x10010},
        {"beyond floats", {1e30F, 1e30F, 0, 0, 1e30F, 0, 1e-30F, 0, 1}, 3, false, 0x10010},
        {"pan and zoom", {1, 0, 0, 0, 1, 0, 0, 0, 1}, 8, false, 0x1000F},
        {"4:2:2", {1, 0, 0, 0, 1, 0, 0, 0, 1}, 1, true, 0x1000D},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.name);
        vfILPerspectiveTransform transform;
        Prepare(transform, test.matrix.data(), test.isVideo ? video : in, test.isVideo ? videoOut : out,
                test.type);
        EXPECT_EQ(transform.Verify(), test.code == 0 ? VFIL_SUCCESS : VFIL_FAILURE);
        if (test.code != 0) {
            EXPECT_EQ(transform.GetLastError().GetErrorCode(), test.code);
        }
        // Who does not ask gets a picture of some kind, and nothing undefined.
        transform.Execute();
        EXPECT_TRUE(out.AreGuardsIntact());
    }
}

TEST(TransfoPerspProj, StabilisingAddsUpAndTheCameraHasASide)
{
    GuardedImage in(PXFormat_RGBA32, 9, 7), out(PXFormat_RGBA32, 9, 7);
    vfILTransfoPerspProj card;
    Connect(card, &in, nullptr, &out);
    EXPECT_EQ(card.Verify(), VFIL_FAILURE) << "no camera";
    EXPECT_EQ(card.GetLastError().GetErrorCode(), 0x10010U);
    card.SetCameraPosZ(2);
    card.SetLocalTransX(3);
    card.SetStabTransX(0.5);
    card.SetStabTransY(-1);
    card.SetCoefficients();
    card.SetCoefficients();
    EXPECT_EQ(card.Verify(), VFIL_SUCCESS);
    const Matrix expected = {2, 0, 8, 0, 2, -4, 0, 0, 2};
    EXPECT_TRUE(std::equal(expected.begin(), expected.end(), card.GetCoefficients()));
    EXPECT_TRUE(std::signbit(card.GetCoefficients()[6]));
    EXPECT_EQ(card.GetLocalTransX(), 4);
    EXPECT_EQ(card.GetLocalTransZ(), 2);
    EXPECT_EQ(card.GetLocalScaleY(), 1);
    EXPECT_EQ(card.GetClipMode(), VFIL_CLIP_POSITIVE);

    // The ROI's last pixel, (8, 6), is the first that is not behind; behind the camera, all are.
    const auto behind = [&](float offset) {
        const Matrix matrix = {1, 0, 0, 0, 1, 0, 1, 1, offset};
        card.SetCoefficients(matrix.data());
        return card.BehindCam();
    };
    EXPECT_EQ(behind(-14), 1);
    EXPECT_EQ(behind(-13.5), 0);
    card.SetCameraPosZ(-2);
    EXPECT_EQ(behind(0), 1);
    EXPECT_EQ(behind(-0.5), 0);
}

TEST(TransfoPerspProj, FaceTurnsFromTheCamera)
{
    for (const auto& [angle, faces] : {std::pair{0.0, 1}, {80.0, 1}, {100.0, 0}, {180.0, 0}, {-80.0, 1}}) {
        vfILTransfoPerspProj card;
        card.SetCameraPosZ(1000);
        card.SetLocalScaleX(1);
        card.SetLocalScaleY(1);
        card.SetLocalScaleZ(1);
        card.SetLocalRotateY(angle);
        EXPECT_EQ(card.FacesCam(), faces) << angle;
    }
}

TEST(ProjectRows, VectorsGiveThePlainOnes)
{
    std::mt19937 random(9);
    std::uniform_real_distribution<double> any(-1, 1);
    for (const Level level : VectorLevels()) {
        const ProjectKernel kernel = ProjectRowsAt(level).project;
        const ProjectKernel plain = ProjectRowsAt(Level::Plain).project;
        ASSERT_NE(kernel, ProjectRowsAt(Below(level)).project);
        for (std::size_t points = 0; points < 300; points += 1 + points / 5)
            for (const ProjectSign sign : {ProjectSign::Both, ProjectSign::Negative, ProjectSign::Positive}) {
                // w crosses 0, at a point or between two.
                const bool exact = random() % 2 == 0;
                const ProjectLine start{any(random) * 99,
                                        any(random),
                                        exact ? -10.0 : any(random),
                                        any(random),
                                        any(random),
                                        exact ? 1.0 : any(random) / 50,
                                        sign};
                const auto run = [&](ProjectKernel project) {
                    ProjectLine line = start;
                    std::vector<double> u(points), v(points);
                    project(line, points / 2, u.data(), v.data());
                    project(line, points - points / 2, u.data() + points / 2, v.data() + points / 2);
                    u.insert(u.end(), v.begin(), v.end());
                    return u;
                };
                const auto results = run(kernel);
                const auto expected = run(plain);
                for (std::size_t i = 0; i < results.size(); ++i)
                    ASSERT_TRUE(results[i] == expected[i] ||
                                (std::isnan(results[i]) && std::isnan(expected[i])))
                        << i << " of " << points;
            }
    }
}

} // namespace
