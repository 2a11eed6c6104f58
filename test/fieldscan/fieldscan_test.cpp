/// \file
/// Drawn clips whose fields are known, and what is found.
#include "fieldscan/fieldscan.h"
#include "test/support/fieldscene.h"

#include <gtest/gtest.h>

#include <functional>
#include <random>

namespace vfil::fieldscan {

namespace {

constexpr long kWidth = 352;
constexpr long kHeight = 144;
constexpr long kFrames = 24;

constexpr host::FieldOrder kProgressive = host::FieldOrder::Progressive;
constexpr host::FieldOrder kTop = host::FieldOrder::TopFirst;
constexpr host::FieldOrder kBottom = host::FieldOrder::BottomFirst;

// The value at a column and a row of a frame, rows from the top.
using Drawing = std::function<double(long x, long row, long frame)>;

Drawing Moving(const FieldScene& scene, host::FieldOrder order)
{
    return [=](long x, long row, long frame) { return scene.At(x, row, TimeOfRow(frame, row, order)); };
}

Drawing WithNoise(const Drawing& drawing, double deviation)
{
    return [=, random = std::mt19937(5)](long x, long row, long frame) mutable {
        return drawing(x, row, frame) + std::normal_distribution<double>(0, deviation)(random);
    };
}

// A fade from black; the scene itself stays.
Drawing Fading(host::FieldOrder order)
{
    return [=](long x, long row, long frame) {
        return FieldScene().At(x, row, 0) * static_cast<double>(TimeOfRow(frame, row, order)) / (2 * kFrames);
    };
}

// Another scene every few fields.
Drawing Cutting(const FieldScene& scene, long fields, host::FieldOrder order)
{
    return [=](long x, long row, long frame) {
        const long time = TimeOfRow(frame, row, order);
        return scene.At(x + 77 * (time / fields % 2), row + 31 * (time / fields % 2), time);
    };
}

// Film at four fifths of the rate: of five frames two have fields of two pictures.
Drawing Telecined(const FieldScene& scene)
{
    return [=](long x, long row, long frame) {
        static constexpr long kFilmOf[2][5] = {{0, 1, 1, 2, 3}, {0, 1, 2, 3, 3}};
        const long film = 4 * (frame / 5) + kFilmOf[row % 2][frame % 5];
        return scene.At(x, row, 2 * film);
    };
}

// Every frame is made of one field alone.
Drawing Bobbed(const FieldScene& scene)
{
    return [=](long x, long row, long frame) {
        if (row % 2 == frame % 2) return scene.At(x, row, frame);
        return (scene.At(x, row - 1, frame) + scene.At(x, row + 1, frame)) / 2;
    };
}

Drawing Spliced(const Drawing& first, const Drawing& second)
{
    return [=](long x, long row, long frame) {
        return frame < kFrames / 2 ? first(x, row, frame) : second(x, row, frame);
    };
}

Finding Scan(const Drawing& drawing, const vfILGuid& format = PXFormat_Mono8)
{
    FieldScan scan;
    for (long i = 0; i < kFrames; ++i)
        scan.Add(*DrawGrey(format, kWidth, kHeight, [&](long x, long row) { return drawing(x, row, i); }));
    return scan.Result();
}

TEST(FieldScan, FindsTheOrderOrSaysThatItCannot)
{
    const FieldScene pan{.right = 2, .down = 0.5};
    const FieldScene still;
    const FieldScene crawl{.right = 0.3};
    const struct {
        const char* name;
        Drawing drawing;
        Order order;
    } cases[] = {
        {"pan, progressive", Moving(pan, kProgressive), Order::Progressive},
        {"pan, top", Moving(pan, kTop), Order::Top},
        {"pan, bottom", Moving(pan, kBottom), Order::Bottom},
        {"scroll by a row a field", Moving({.down = 1}, kTop), Order::Top},
        {"scroll up", Moving({.down = -0.7}, kBottom), Order::Bottom},
        {"crawl, top", Moving(crawl, kTop), Order::Top},
        {"crawl, progressive", Moving(crawl, kProgressive), Order::Progressive},
        {"noisy pan, bottom", WithNoise(Moving(pan, kBottom), 20), Order::Bottom},
        {"noisy pan, progressive", WithNoise(Moving(pan, kProgressive), 20), Order::Progressive},
        {"noisy crawl, bottom", WithNoise(Moving(crawl, kBottom), 8), Order::Bottom},
        {"still", Moving(still, kProgressive), Order::Unknown},
        {"noisy still", WithNoise(Moving(still, kTop), 20), Order::Unknown},
        {"fade, progressive", Fading(kProgressive), Order::Progressive},
        {"fade, top", Fading(kTop), Order::Top},
        {"stills that change", Cutting(still, 8, kProgressive), Order::Unknown},
        {"cuts, progressive", Cutting(pan, 12, kProgressive), Order::Progressive},
        {"cuts, bottom", Cutting(pan, 13, kBottom), Order::Bottom},
        {"telecine", Telecined(pan), Order::Mixed},
        {"bob", Bobbed(pan), Order::Progressive},
    };
    for (const auto& c : cases)
        EXPECT_STREQ(Word(Scan(c.drawing).order), Word(c.order)) << c.name;
}

TEST(FieldScan, TellsWhereTheOrderChanges)
{
    const FieldScene pan{.right = 2};
    const Finding finding = Scan(Spliced(Moving(pan, kBottom), Moving(pan, kProgressive)));
    EXPECT_EQ(finding.order, Order::Mixed);
    ASSERT_EQ(finding.stretches.size(), 2U);
    EXPECT_EQ(finding.stretches[0].order, Order::Bottom);
    EXPECT_EQ(finding.stretches[1].order, Order::Progressive);
    EXPECT_EQ(finding.stretches[0].first, 0);
    EXPECT_NEAR(static_cast<double>(finding.stretches[1].first), kFrames / 2.0, 1);
    EXPECT_EQ(finding.stretches[0].end, finding.stretches[1].first);
    EXPECT_EQ(finding.stretches[1].end, kFrames);
}

TEST(FieldScan, SamplesOfAllFormatsTellTheSame)
{
    const FieldScene pan{.right = 2};
    const double combs = Scan(Moving(pan, kBottom)).combs.nextTop;
    for (const vfILGuid& format :
         {PXFormat_RGBA32, PXFormat_RGBA64, PXFormat_Mono16, PXFormat_YUV422_601, PXFormat_YCC422_709,
          PXFormat_YCCA422_601, PXFormat_YCCA32, PXFormat_YCCA64}) {
        const Finding finding = Scan(Moving(pan, kBottom), format);
        EXPECT_EQ(finding.order, Order::Bottom) << vfILFindFormat(format)->name;
        // Combs are in levels of luma, whatever the sample's size.
        EXPECT_NEAR(finding.combs.nextTop, combs, 0.01);
    }
}

TEST(FieldScan, TooLittleIsUnknown)
{
    for (const auto& [width, height, frames] :
         {std::tuple{352L, 144L, 0L}, {352L, 144L, 1L}, {1L, 1L, 9L}, {352L, 2L, 9L}, {7L, 144L, 9L}}) {
        FieldScan scan;
        for (long i = 0; i < frames; ++i)
            scan.Add(*DrawFrame({.right = 3}, PXFormat_Mono8, width, height, i, kTop));
        EXPECT_EQ(scan.Result().order, Order::Unknown) << width << " " << height << " " << frames;
    }
}

} // namespace

} // namespace vfil::fieldscan
