/// \file
/// The filters of a window of 3 x 3 against their definitions, sample by sample.
#include "support/filterscene.h"
#include "support/processors.h"

#include <vfil/edges.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>

using namespace vfil::test;

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

enum class Filter { Gradient, Emboss, Square, Diamond, Roberts, RobertsAngle, Sobel, SobelAngle };
constexpr int kFilters = 8;

struct Settings {
    Filter filter = Filter::Gradient;
    unsigned long directions = 1;
    double sensitivity = 1, bias = 0;
};

/// A sum of the window's samples; of the weights the southern row comes first.
int Sum(const WindowSample& at, const std::array<int, 9>& weights)
{
    int sum = 0;
    for (long i = 0; i < 9; ++i)
        sum += weights[static_cast<std::size_t>(i)] * at(i % 3, i / 3);
    return sum;
}

constexpr std::array<int, 9> kCompass[8] = {{-1, 0, 1, -1, 0, 1, -1, 0, 1}, {-1, -1, 0, -1, 0, 1, 0, 1, 1},
                                            {-1, -1, -1, 0, 0, 0, 1, 1, 1}, {0, -1, -1, 1, 0, -1, 1, 1, 0},
                                            {1, 0, -1, 1, 0, -1, 1, 0, -1}, {1, 1, 0, 1, 0, -1, 0, -1, -1},
                                            {1, 1, 1, 0, 0, 0, -1, -1, -1}, {0, 1, 1, -1, 0, 1, -1, -1, 0}};

/// The largest compass response of the directions.
int Largest(const WindowSample& at, unsigned long directions)
{
    int largest = 0;
    for (std::size_t i = 0; i < 8; ++i)
        if (directions >> i & 1U) largest = std::max(largest, Sum(at, kCompass[i]));
    return largest;
}

int AngleOf(int x, int y, int full)
{
    double degrees = std::atan2(y, x) * 180 / std::numbers::pi;
    if (degrees < 0) degrees += 360;
    if (x == 0) degrees = y == 0 ? 0 : y < 0 ? 270 : 90;
    return static_cast<int>((full == 255 ? degrees * 0.7083333134651184 : degrees * full / 360) + 0.5);
}

int Expected(const Settings& by, const WindowSample& at, int full)
{
    const auto half = [&at](long x, long y) { return at(x, y) / 2; };
    const int sobelX = at(2, 0) + half(2, 1) + at(2, 2) - at(0, 0) - half(0, 1) - at(0, 2);
    const int sobelY = at(0, 2) + half(1, 2) + at(2, 2) - at(0, 0) - half(1, 0) - at(2, 0);
    const int robertsX = Sum(at, kCompass[0]), robertsY = Sum(at, kCompass[6]);
    if (by.filter == Filter::SobelAngle) return AngleOf(sobelX, sobelY, full);
    if (by.filter == Filter::RobertsAngle) return AngleOf(robertsX, robertsY, full);
    if (by.filter == Filter::Emboss) return std::min(Largest(at, by.directions), full);
    int response = Largest(at, by.directions);
    if (by.filter == Filter::Square) response = Sum(at, {-1, -1, -1, -1, 8, -1, -1, -1, -1});
    if (by.filter == Filter::Diamond) response = Sum(at, {0, -1, 0, -1, 4, -1, 0, -1, 0});
    if (by.filter == Filter::Roberts) response = std::abs(robertsX) + std::abs(robertsY);
    if (by.filter == Filter::Sobel) response = std::abs(sobelX) + std::abs(sobelY);
    const long threshold = std::lround((1 - by.sensitivity) * full);
    return std::min(response, full) > threshold
               ? std::min(response + static_cast<int>(std::lround(by.bias * full)), full)
               : 0;
}

/// A filter of the class, with what the settings have for it.
template <class Class>
std::unique_ptr<vfILMonadicSpatialProc> MakeOf(const Settings& by, bool simd)
{
    auto filter = std::make_unique<Switched<Class>>(simd);
    if constexpr (requires { filter->SetDirection(1); }) filter->SetDirection(by.directions);
    if constexpr (requires { filter->SetBias(0); }) {
        filter->SetBias(by.bias);
        filter->SetEdgeSensitivity(by.sensitivity);
    }
    const bool second =
        by.filter == Filter::Diamond || by.filter == Filter::RobertsAngle || by.filter == Filter::SobelAngle;
    if constexpr (requires { filter->SetType(VFIL_EDGE_ANGLE); })
        filter->SetType(second ? VFIL_EDGE_ANGLE : VFIL_EDGE_MAGNITUDE);
    if constexpr (requires { filter->SetType(VFIL_LAPLACE_DIAMOND); })
        filter->SetType(second ? VFIL_LAPLACE_DIAMOND : VFIL_LAPLACE_SQUARE);
    return filter;
}

std::unique_ptr<vfILMonadicSpatialProc> MakeFilter(const Settings& by, bool simd)
{
    static constexpr decltype(&MakeOf<vfILSobelImg>) kMakers[kFilters] = {
        MakeOf<vfILGradientImg>, MakeOf<vfILEmbossImg>,  MakeOf<vfILLaplaceImg>, MakeOf<vfILLaplaceImg>,
        MakeOf<vfILRobertsImg>,  MakeOf<vfILRobertsImg>, MakeOf<vfILSobelImg>,   MakeOf<vfILSobelImg>};
    return kMakers[static_cast<int>(by.filter)](by, simd);
}

TEST(Edges, FollowTheirDefinitions)
{
    const double fractions[] = {0, 1, 0.5, 0.3, 0.998, 0.002};
    for (unsigned seed = 0; seed < 3000 && !HasFatalFailure(); ++seed) {
        std::mt19937 random(seed);
        const Settings by{static_cast<Filter>(random() % kFilters),
                          random() % 3 ? 1 + random() % 255 : 1U << random() % 8,
                          random() % 2 ? 1 : fractions[random() % 6], fractions[random() % 6]};
        FilterScene scene(random, *kFilterFormats[random() % 4], RandomIn(random, 1, 50),
                          RandomIn(random, 1, 7));
        const auto filter = MakeFilter(by, random() % 2);
        if (random() % 4 == 0) filter->SetRadius(static_cast<float>(random() % 4), 0.5F); // no matter
        scene.Arrange(*filter);
        SCOPED_TRACE(testing::Message() << "seed " << seed << " filter " << static_cast<int>(by.filter));
        scene.Check(*filter, scene.Expected(1, 1, [&](const WindowSample& at) {
            return Expected(by, at, scene.format.Full());
        }));
    }
}

// Steps of a full sample, and what rounds in angles: worked out by hand, without the sums of the model.
TEST(Edges, StepsByHand)
{
    const struct {
        Settings by;
        std::array<int, 9> window; ///< southern row first, in full samples
        int result8, result16;
    } cases[] = {
        {{Filter::Gradient, 16 | 4 | 64}, {0, 0, 1, 0, 0, 1, 0, 0, 1}, 0, 0}, // west, north and south
        {{Filter::Emboss, 2}, {0, 0, 0, 0, 0, 0, 0, 1, 0}, 255, 65535},
        {{Filter::Diamond}, {1, 0, 1, 0, 0, 0, 1, 0, 1}, 0, 0},             // corners don't count
        {{Filter::Square}, {0, 1, 0, 0, 0, 0, 0, 0, 0}, 0, 0},              // nor does what is below
        {{Filter::Sobel, 1, 0.501}, {0, 1, 0, 0, 0, 0, 0, 0, 0}, 0, 32767}, // half of full, rounded down
        {{Filter::Roberts, 1, 0.501}, {0, 1, 0, 0, 0, 0, 0, 0, 0}, 255, 65535},
        {{Filter::SobelAngle}, {1, 1, 1, 1, 1, 1, 1, 1, 1}, 0, 0},
        {{Filter::SobelAngle, 1, 0, 1}, {0, 0, 0, 0, 0, 0, 1, 1, 1}, 64, 16384},    // 90 degrees: north
        {{Filter::RobertsAngle, 1, 0, 1}, {0, 0, 0, 0, 0, 0, 1, 1, 1}, 191, 49151}, // which is down here
        {{Filter::SobelAngle}, {1, 0, 0, 1, 0, 0, 1, 0, 0}, 127, 32768}, // 180; the 8-bit scale is a float
        {{Filter::RobertsAngle}, {0, 0, 0, 0, 0, 0, 0, 0, 1}, 223, 57343},
    };
    for (const auto& c : cases)
        for (const bool wide : {false, true}) {
            GuardedImage in(wide ? PXFormat_Mono16 : PXFormat_Mono8, 3, 3), out(in.Format().id, 3, 3);
            for (long i = 0; i < 9; ++i)
                in.Set(i % 3, i / 3, {c.window[static_cast<std::size_t>(i)] * in.Format().Full()});
            const auto filter = MakeFilter(c.by, true);
            filter->SetInputImg(&in);
            filter->SetOutputImg(&out);
            ASSERT_EQ(filter->Execute(), VFIL_SUCCESS);
            EXPECT_EQ(out.Get(1, 1)[0], wide ? c.result16 : c.result8) << "case " << &c - cases;
        }
}

TEST(Edges, VerifyChecksInOrder)
{
    const struct {
        unsigned long code;
        Settings by;
    } cases[] = {{0, {Filter::Gradient, 255, 0, 1}},
                 {0x10028, {Filter::Gradient, 0, kNaN, 2}},
                 {0x10028, {Filter::Gradient, 0x100000001, 1, 0}},
                 {0x1002A, {Filter::Gradient, 1, -0.01, kNaN}},
                 {0x1002A, {Filter::Gradient, 1, kNaN, 0}},
                 {0x10029, {Filter::Gradient, 1, 1, 1.01}},
                 {0x10028, {Filter::Emboss, 0x100000001}},
                 {0, {Filter::Emboss, 128, kNaN, kNaN}},
                 {0x10029, {Filter::Sobel, 1, 2, kNaN}},
                 {0x1002A, {Filter::SobelAngle, 1, 1e300, 0}},
                 {0x10029, {Filter::Roberts, 1, 2, -1}},
                 {0x10029, {Filter::Diamond, 1, 2, 2}},
                 {0x1002A, {Filter::Square, 1, kNaN, 1}}};
    GuardedImage picture(PXFormat_RGBA32, 4, 4), other(PXFormat_HLSA32, 4, 4);
    for (const auto& c : cases) {
        const auto filter = MakeFilter(c.by, true);
        EXPECT_EQ(CodeOf(*filter, other), 0x1000DU);
        EXPECT_EQ(filter->Execute(), VFIL_SUCCESS); // of anything, though nothing may come of it
        EXPECT_EQ(CodeOf(*filter, picture), c.code) << "case " << &c - cases;
        EXPECT_EQ(filter->Execute(), VFIL_SUCCESS);
    }
    for (const int type : {0, 3}) {
        vfILRobertsImg roberts;
        vfILSobelImg sobel;
        vfILLaplaceImg laplace;
        roberts.SetType(static_cast<vfILEdgeDetectType>(type));
        sobel.SetType(static_cast<vfILEdgeDetectType>(type));
        laplace.SetType(static_cast<vfILLaplaceType>(type));
        for (vfILEdgeThresholdProc* filter :
             std::initializer_list<vfILEdgeThresholdProc*>{&roberts, &sobel, &laplace}) {
            filter->SetBias(kNaN);
            EXPECT_EQ(CodeOf(*filter, picture), filter == &laplace ? 0x10027U : 0x10049U);
        }
    }
}

} // namespace
