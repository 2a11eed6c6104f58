#include "support/allocations.h"
#include "support/filterscene.h"
#include "support/processors.h"

#include <vfil/rank.h>

#include <gtest/gtest.h>

#include <cmath>

using namespace vfil::test;

namespace {

enum Filter { kMax, kMin, kMedian, kSelective, kFilters };

std::unique_ptr<vfILMonadicSpatialProc> MakeRank(int which, bool simd)
{
    if (which == kMax) return std::make_unique<Switched<vfILMaxRankImg>>(simd);
    if (which == kMin) return std::make_unique<Switched<vfILMinRankImg>>(simd);
    if (which == kMedian) return std::make_unique<Switched<vfILMedianRankImg>>(simd);
    return std::make_unique<Switched<vfILSelectiveRankImg>>(simd);
}

struct Keyed {
    int key;
    Pixel pixel;
};

/// The window's pixels in row order.
std::vector<Keyed> Gather(const EdgedPicture& picture, long x, long y, double rx, double ry, bool mono)
{
    std::vector<Keyed> list;
    for (long dy = -static_cast<long>(ry); dy <= static_cast<long>(ry); ++dy)
        for (long dx = -static_cast<long>(rx); dx <= static_cast<long>(rx); ++dx) {
            const auto fx = static_cast<double>(dx), fy = static_cast<double>(dy);
            if ((fx * fx) * (ry * ry) + (fy * fy) * (rx * rx) > (rx * rx) * (ry * ry)) continue;
            const Pixel p = picture(x + dx, y + dy);
            list.push_back({mono ? p[0] : (p[0] * 29 + p[1] * 57 + p[2] * 11) / 97, p});
        }
    return list;
}

/// Sorts from the large end until the middle is in its place: of equal keys the last is taken first.
Pixel MedianOf(std::vector<Keyed> list, int tolerance)
{
    const std::size_t middle = list.size() / 2;
    const Keyed noted = list[middle];
    for (std::size_t end = list.size(); end > middle; --end) {
        std::size_t largest = 0;
        for (std::size_t i = 0; i < end; ++i)
            if (list[i].key >= list[largest].key) largest = i;
        std::swap(list[largest], list[end - 1]);
    }
    return std::abs(noted.key - list[middle].key) <= tolerance ? noted.pixel : list[middle].pixel;
}

void CheckScene(std::mt19937& random, long width, long height, float rx, float ry, int which)
{
    static constexpr std::array<int, 4> kKeys{2, 5, 40, 250};
    FilterScene scene(random, *kFilterFormats[width > 1000 ? 2 : random() % 4], width, height,
                      kKeys[random() % 4]);
    const bool tied = random() % 2; // two brightnesses, and an alpha that tells which pixel was taken
    for (long i = 0; i < width * height && tied; ++i) {
        const int key = random() % 2 ? scene.format.Full() : 0;
        scene.input.Set(i % width, i / width, {key, key, key, static_cast<int>(i % 251)});
    }
    const EdgedPicture picture = scene.Picture();
    const double threshold = static_cast<double>(random() % 5) / 8;
    const int full = scene.format.Full();
    const Snapshot filtered = Filtered(picture, [&](long x, long y) {
        const std::vector<Keyed> list = Gather(picture, x, y, rx, ry, scene.format.channels == 1);
        if (which >= kMedian)
            return MedianOf(list, which == kMedian ? -1 : static_cast<int>(std::lround(threshold * full)));
        const Keyed* best = list.data();
        for (const Keyed& each : list)
            if (which == kMax ? each.key > best->key : each.key < best->key) best = &each;
        return best->pixel;
    });
    const auto processor = MakeRank(which, random() % 2);
    processor->SetRadius(rx, ry);
    if (auto* selective = dynamic_cast<vfILSelectiveRankImg*>(processor.get()))
        selective->SetThreshold(threshold);
    scene.Arrange(*processor);
    scene.Check(*processor, scene.Expected(filtered));
}

// The first pictures have more than one band, the next ones windows of more pixels than the row kernels take,
// and then windows that are much larger than the picture.
TEST(Rank, FollowsTheDefinition)
{
    static constexpr std::array<float, 9> kRadii{0.0F, 0.7F, 1.0F, 1.0F, 1.5F, 2.0F, 2.3F, 3.0F, 4.4F};
    for (unsigned seed = 0; seed < 1750 && !HasFatalFailure(); ++seed) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        std::mt19937 random(seed);
        const auto which = static_cast<int>(seed % kFilters);
        const float rx = kRadii[random() % kRadii.size()];
        const float ry = seed / kFilters % 2 ? rx : kRadii[random() % kRadii.size()];
        if (seed < 8) {
            CheckScene(random, 2000, 80, 1.0F, 1.0F, which);
        } else if (seed < 60) {
            CheckScene(random, 24, 14, 8.5F + static_cast<float>(seed % 7), 9.7F, which);
        } else if (seed < 260) {
            const auto radius = [&random] { return static_cast<float>(random() % 160) / 5.0F; };
            const float wide = radius();
            CheckScene(random, RandomIn(random, 1, 7), RandomIn(random, 1, 7), wide, radius(), which % 2);
        } else {
            CheckScene(random, RandomIn(random, 1, 12), RandomIn(random, 1, 9), rx, ry, which);
        }
    }
}

TEST(Rank, VerifyChecksInOrder)
{
    GuardedImage rgba(PXFormat_RGBA32, 3, 3), bgra(PXFormat_BGRA32, 3, 3);
    const struct {
        unsigned long code;
        GuardedImage* picture;
        float radius;
        double threshold;
    } cases[] = {{0, &rgba, 1, 0},        {0, &rgba, 1, 1},          {0x10023, &bgra, -1, 2},
                 {0x1000D, &bgra, 1, 2},  {0x10046, &rgba, 1, -0.1}, {0x10046, &rgba, 1, 1.001},
                 {0x10046, &rgba, 1, NAN}};
    for (const auto& c : cases)
        for (int which = 0; which < kFilters; ++which) {
            const auto filter = MakeRank(which, true);
            if (auto* selective = dynamic_cast<vfILSelectiveRankImg*>(filter.get()))
                selective->SetThreshold(c.threshold);
            filter->SetRadius(c.radius);
            const unsigned long expected = c.code == 0x10046 && which != kSelective ? 0 : c.code;
            EXPECT_EQ(CodeOf(*filter, *c.picture), expected)
                << "case " << &c - cases << ' ' << ClassOf(*filter);
        }
}

// In place. A radius that Verify refuses, but a host may run nevertheless, has no window.
TEST(Rank, RunsThatCannotBeHad)
{
    std::mt19937 random(1);
    GuardedImage picture(PXFormat_RGBA64, 30, 20);
    picture.Randomise(random);
    for (int which = 0; which < kFilters; ++which)
        for (const float radius : {3.0F, 12.0F}) {
            const auto filter = MakeRank(which, true);
            filter->SetInputImg(&picture);
            filter->SetOutputImg(&picture);
            filter->SetRadius(radius);
            EXPECT_GE(CountRefusedRuns(*filter, picture), 6) << ClassOf(*filter);
            const Snapshot filtered(picture);
            filter->SetRadius(NAN, 1.0F);
            EXPECT_EQ(filter->Execute(), VFIL_SUCCESS);
            EXPECT_EQ(Difference(filtered, picture), "");
        }
}

// Windows that no memory holds cost what a picture's size does.
TEST(Rank, HugeRadiiMeetThePictureOnly)
{
    GuardedImage in(PXFormat_RGBA32, 40, 30), out(PXFormat_RGBA32, 40, 30);
    in.Set(7, 8, {9, 9, 9, 9});
    for (const int which : {kMax, kMin})
        for (const int mode : {1, 2, 3, 4})
            for (const auto& [rx, ry] : {std::pair{1e9F, 1e9F}, {3.0F, 1e9F}, {1e9F, 3.0F}}) {
                const auto filter = MakeRank(which, true);
                filter->SetInputImg(&in);
                filter->SetOutputImg(&out);
                filter->SetRadius(rx, ry);
                filter->SetEdgeMode(static_cast<vfILEdgeMode>(mode));
                filter->SetProcessingMode(VFIL_MODE_RGBA);
                g_allocations = {};
                ASSERT_EQ(filter->Execute(), VFIL_SUCCESS);
                EXPECT_LT(g_allocations.largest, 10000000U);
                for (const long x : {0L, 4L, 11L, 39L}) {
                    const bool met = which == kMax && (rx > 3 || std::abs(x - 7) <= 3);
                    EXPECT_EQ(out.Get(x, 6)[3], met ? 9 : 0) << x << " mode " << mode;
                }
            }
}

} // namespace
