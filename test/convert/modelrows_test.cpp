/// \file
/// The kernels between colour models give each pixel what vfILColor gives it, at every level.
#include "il/rows/convert/modelrows.h"

#include "support/rowcheck.h"

#include <vfil/color.h>

namespace vfil {
namespace {

int SetPacked(vfILColor& color, const std::uint8_t* pixel, PXColorModel model)
{
    return color.SetColorAs32(pixel, model);
}

int SetPacked(vfILColor& color, const std::uint16_t* pixel, PXColorModel model)
{
    return color.SetColorAs64(pixel, model);
}

int GetPacked(const vfILColor& color, std::uint8_t* pixel, PXColorModel model)
{
    return color.GetColorAs32(pixel, model);
}

int GetPacked(const vfILColor& color, std::uint16_t* pixel, PXColorModel model)
{
    return color.GetColorAs64(pixel, model);
}

/// All of the samples near the ends, the middles and the sixths of the range, in all three components, and
/// noise.
template <class Sample>
std::vector<Sample> Colours()
{
    constexpr int kFull = static_cast<Sample>(~Sample{0});
    std::vector<Sample> special;
    for (const int at : {0, kFull / 6, kFull / 3, kFull / 2, kFull * 2 / 3, kFull * 5 / 6, kFull})
        for (int near = std::max(0, at - 1); near <= std::min(kFull, at + 1); ++near)
            special.push_back(static_cast<Sample>(near));
    std::mt19937 random(3);
    std::vector<Sample> pixels = EndRichSamples<Sample>(4 * 20001, random);
    for (const Sample a : special)
        for (const Sample b : special)
            for (const Sample c : special)
                pixels.insert(pixels.end(), {a, b, c, static_cast<Sample>(a ^ b)});
    std::uniform_int_distribution<int> any(0, kFull);
    for (int i = 0; i < 4 * 20000; ++i)
        pixels.push_back(static_cast<Sample>(any(random)));
    return pixels;
}

template <class Sample>
std::vector<Sample> ByColour(const std::vector<Sample>& pixels, PXColorModel from, PXColorModel to)
{
    std::vector<Sample> result(pixels.size());
    for (std::size_t i = 0; i < pixels.size(); i += 4) {
        vfILColor color;
        EXPECT_EQ(SetPacked(color, &pixels[i], from), 1);
        EXPECT_EQ(GetPacked(color, &result[i], to), 1);
    }
    return result;
}

/// run(cases, in, out, pixels) runs the kernel between the two models from a level's cases.
template <class Sample, class Run>
void CheckModelRow(ModelCases<Sample> ModelRows::*cases, PXColorModel from, PXColorModel to, Run run)
{
    const std::vector<Sample> pixels = Colours<Sample>();
    const std::vector<Sample> expected = ByColour(pixels, from, to);
    std::vector<Level> levels = VectorLevels();
    levels.insert(levels.begin(), Level::Plain);
    for (const Level level : levels) {
        std::vector<Sample> out(pixels.size());
        run(ModelRowsAt(level).*cases, pixels.data(), out.data(), pixels.size() / 4);
        const auto at = std::mismatch(out.begin(), out.end(), expected.begin()).first - out.begin();
        ASSERT_EQ(at, static_cast<std::ptrdiff_t>(out.size()))
            << "level " << static_cast<int>(level) << ", models " << from << " to " << to;
    }
    std::mt19937 random(5);
    const auto kernelOf = [&](Level level) {
        return [=](const Sample* in, const Sample*, Sample* out, std::size_t count) {
            run(ModelRowsAt(level).*cases, in, out, count);
        };
    };
    for (const Level level : VectorLevels()) {
        ForEachPlacement<Sample>([&](std::size_t count, const Placement& place) {
            if (place.target == Target::Front) return;
            const auto in = EndRichSamples<Sample>(4 * count, random);
            const auto counted = [&](auto kernel) {
                return [=](const Sample* b, const Sample* f, Sample* out) { kernel(b, f, out, count); };
            };
            ASSERT_TRUE(SameRuns(in, in, place, counted(kernelOf(level)), counted(kernelOf(Level::Plain))))
                << "level " << static_cast<int>(level) << ", pixels " << count;
        });
    }
}

template <class Sample>
void CheckModels(ModelCases<Sample> ModelRows::*cases)
{
    const auto by = [](const vfILColorMatrix& matrix) {
        return [&matrix](auto& row, auto* in, auto* out, std::size_t pixels) {
            row.transform(in, out, pixels, matrix.data());
        };
    };
    CheckModelRow(cases, PXColorModel_RGB, PXColorModel_YCC, by(s_dfArrayRGBAtoYCCAOffset));
    CheckModelRow(cases, PXColorModel_YCC, PXColorModel_RGB, by(s_dfArrayYCCAOffsettoRGBA));
    CheckModelRow(cases, PXColorModel_RGB, PXColorModel_HLS,
                  [](auto& row, auto* in, auto* out, std::size_t pixels) { row.rgbToHls(in, out, pixels); });
    CheckModelRow(cases, PXColorModel_HLS, PXColorModel_RGB,
                  [](auto& row, auto* in, auto* out, std::size_t pixels) { row.hlsToRgb(in, out, pixels); });
    for (const Level level : VectorLevels()) {
        const auto& upper = ModelRowsAt(level).*cases;
        const auto& lower = ModelRowsAt(Below(level)).*cases;
        EXPECT_NE(upper.transform, lower.transform);
        EXPECT_NE(upper.rgbToHls, lower.rgbToHls);
        EXPECT_NE(upper.hlsToRgb, lower.hlsToRgb);
    }
}

TEST(ModelRows, AreTheColourValues)
{
    CheckModels(&ModelRows::of8);
    CheckModels(&ModelRows::of16);
}

} // namespace
} // namespace vfil
