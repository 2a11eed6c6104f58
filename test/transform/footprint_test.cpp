/// \file
/// Footprint sums: the vector forms against the plain ones, these against a brute-force cut, and whole output
/// pixels against values by hand and a model that is made of the slicers.
#include "il/rows/transform/footprint.h"

#include "cellarea.h"
#include "il/rows/transform/footprintrows.h"
#include "support/rowcheck.h"

#include <vfil/pixelcoverage.h>

#include <array>
#include <cstring>

namespace vfil::test {
namespace {

double Any(std::mt19937& random, double low, double high)
{
    return std::uniform_real_distribution<double>(low, high)(random);
}

/// Turned, flat, tiny, coincident and crossing quadrilaterals around a picture and far from it, of which the
/// neighbours are alike or not.
FootprintGroup RandomQuads(std::mt19937& random, int width, int height)
{
    FootprintGroup group{};
    const auto kind = random() % 6;
    const double size = std::pow(10.0, Any(random, -3, 1.5));
    const double middle[2] = {Any(random, -2, width + 1), Any(random, -2, height + 1)};
    double corners[2][4];
    for (auto& axis : corners)
        for (double& corner : axis)
            corner = Any(random, -size, size);
    for (std::size_t i = 0; i < kFootprintGroup; ++i) {
        for (int v = 0; v < 4; ++v) {
            const double wobble = kind == 0 ? 0 : kind == 1 ? size : 0.01;
            group.x[v][i] = middle[0] + corners[0][v] + 0.7 * static_cast<double>(i) + Any(random, 0, wobble);
            group.y[v][i] = middle[1] + corners[1][v] + Any(random, 0, wobble);
            if (kind == 2) group.x[v][i] = std::round(2 * group.x[v][i]) / 2;
            if (kind == 2) group.y[v][i] = std::round(2 * group.y[v][i]) / 2;
            if (kind == 3) group.x[v][i] += random() % 3 == 0 ? 1e8 : 0;
            if (kind == 4 && v == 3) group.x[3][i] = group.x[2][i];
            if (kind == 4 && v == 3) group.y[3][i] = group.y[2][i];
        }
        group.sign[i] = random() % 2 == 0 ? 1 : -1;
    }
    return group;
}

/// Pixels of which the last one ends the memory.
template <class Sample>
struct Picture {
    std::vector<Sample> samples;
    FootprintPicture view;

    Picture(std::mt19937& random, int width, int height, int channels)
        : samples(EndRichSamples<Sample>(
              static_cast<std::size_t>(width) * static_cast<std::size_t>(height * channels), random)),
          view{reinterpret_cast<const std::uint8_t*>(samples.data()),
               static_cast<std::ptrdiff_t>(width * channels * static_cast<int>(sizeof(Sample))),
               0,
               0,
               width - 1,
               height - 1}
    {
        // Bottom-up, and cropped.
        if (random() % 2 == 0) {
            view.base += (height - 1) * view.rowBytes;
            view.rowBytes = -view.rowBytes;
        }
        view.left += static_cast<int>(random() % 3 == 0 ? (width - 1) / 2 : 0);
        view.bottom -= static_cast<int>(random() % 3 == 0 ? (height - 1) / 2 : 0);
    }
};

template <class Sample>
void CheckLevels(std::size_t wide, std::size_t four)
{
    for (const Level level : VectorLevels()) {
        for (const auto member : {&FootprintRows::quads, &FootprintRows::boxes}) {
            const FootprintKernel kernel = (FootprintRowsAt(level).*member)[wide][four];
            EXPECT_NE(kernel, (FootprintRowsAt(Below(level)).*member)[wide][four]);
            std::mt19937 random(1);
            for (int round = 0; round < 1500; ++round) {
                const int width = static_cast<int>(1 + random() % 20);
                const int height = static_cast<int>(1 + random() % 20);
                const Picture<Sample> picture(random, width, height, four != 0 ? 4 : 1);
                const FootprintGroup group = RandomQuads(random, width, height);
                FootprintSums plain{};
                FootprintSums vector{};
                for (std::size_t i = 0; i < kFootprintGroup; ++i)
                    plain.channels[i][0] = vector.channels[i][0] = static_cast<double>(random() % 500);
                (FootprintRowsAt(Level::Plain).*member)[wide][four](group, picture.view, plain);
                kernel(group, picture.view, vector);
                for (std::size_t i = 0; i < kFootprintGroup; ++i) {
                    ASSERT_EQ(plain.weights[i], vector.weights[i]) << round << " " << i;
                    for (int c = 0; c < 4; ++c)
                        ASSERT_EQ(plain.channels[i][c], vector.channels[i][c]) << round;
                }
            }
        }
    }
}

TEST(FootprintRows, LevelsArePlainForms)
{
    CheckLevels<std::uint8_t>(0, 0);
    CheckLevels<std::uint8_t>(0, 1);
    CheckLevels<std::uint16_t>(1, 0);
    CheckLevels<std::uint16_t>(1, 1);
}

TEST(FootprintRows, AreasAreThoseOfABruteForceCut)
{
    std::mt19937 random(3);
    const std::vector<std::uint8_t> pixels(10, 100); // each row is the same
    for (int round = 0; round < 2000; ++round) {
        const Outline outline = RandomOutline(random, 3 + round % 10, 9);
        if (outline.Size() < 3) continue;
        for (int at = 0; at < 100; ++at) {
            const int column = at % 10;
            const int row = at / 10;
            double sum = 0;
            double weight = 0;
            SumPolygon<std::uint8_t, 1>(
                {outline.x.data(), outline.y.data(), outline.Size(), outline.SignedArea() < 0 ? -1.0 : 1.0},
                {pixels.data(), 0, column, row, column, row}, &sum, weight);
            ASSERT_NEAR(weight, static_cast<double>(CellArea(outline, column, row)), 1e-14) << round;
            ASSERT_EQ(sum, 100 * weight);
        }
    }
}

using Mapping = std::array<double, 9>;

/// The corners or the centre of an output pixel in the input.
struct Mapped {
    double x[4], y[4], w[4];

    Mapped(const Mapping& m, double px, double py, double reach)
    {
        for (int i = 0; i < 4; ++i) {
            const double toX = px + (i == 1 || i == 2 ? reach : -reach);
            const double toY = py + (i > 1 ? reach : -reach);
            x[i] = m[0] * toX + m[1] * toY + m[2];
            y[i] = m[3] * toX + m[4] * toY + m[5];
            w[i] = m[6] * toX + m[7] * toY + m[8];
        }
    }
};

using Source8 = FootprintSource<std::uint8_t, 4>;
using Pixel8 = std::array<std::uint8_t, 4>;
constexpr Pixel8 kSample{9, 99, 199, 255};

/// A row of output pixels from (0, row); where they take a point sample it is kSample.
std::vector<Pixel8> Pixels(const Mapping& mapping, int count, double row, const Source8& source, bool cut,
                           bool useVectors)
{
    const double w = source.right + 0.5;
    const double h = source.bottom + 0.5;
    const double planes[8][4] = {{1, 0, 0.5, 0},   {-1, 0, w, 0}, {0, 1, 0.5, 0},   {0, -1, h, 0},
                                 {-1, 0, -0.5, 0}, {1, 0, -w, 0}, {0, -1, -0.5, 0}, {0, 1, -h, 0}};
    const FootprintPlanes sets{planes, 4, 4};
    std::vector<Footprint> footprints(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        const Mapped m(mapping, i, row, 0.5);
        MakeFootprint(m.x, m.y, m.w, cut ? &sets : nullptr, footprints[static_cast<std::size_t>(i)]);
    }
    std::vector<Pixel8> pixels(footprints.size());
    FootprintPixels(
        footprints.data(), footprints.size(), source, useVectors,
        [](std::size_t, std::uint8_t* sample) { std::copy(kSample.begin(), kSample.end(), sample); },
        pixels.data()->data());
    return pixels;
}

TEST(Footprint, PixelsByHand)
{
    // Columns of 10, 20, 40, 80, in four rows.
    std::vector<std::uint8_t> samples;
    for (int i = 0; i < 16; ++i)
        for (int c = 0; c < 4; ++c)
            samples.push_back(static_cast<std::uint8_t>((10 << i % 4) + c));
    const Source8 source{samples.data(), 16, 0, 0, 3, 3, {200, 200, 200, 201}};
    struct Case {
        const char* name;
        Mapping mapping;
        bool cut;
        std::vector<int> reds;
    };
    const double s = std::sqrt(0.75);
    for (const Case& c : std::vector<Case>{
             {"identity", {1, 0, 0, 0, 1, 0, 0, 0, 1}, false, {10, 20, 40, 80}},
             {"identity, cut", {1, 0, 0, 0, 1, 0, 0, 0, 1}, true, {10, 20, 40, 80, 200}},
             {"mirrored", {-1, 0, 3, 0, 1, 0, 0, 0, 1}, false, {80, 40, 20, 10}},
             {"by a half", {1, 0, -0.5, 0, 1, 0, 0, 0, 1}, true, {105, 15, 30, 60, 140, 200}},
             {"shrunk by 2", {2, 0, 0.5, 0, 2, 0.5, 0, 0, 1}, true, {15, 60, 200}},
             {"turned by 90 degrees", {0, -1, 3, 1, 0, 0, 0, 0, 1}, false, {80, 80, 80, 80}},
             {"all of it, from afar", {100, 0, 0, 0, 100, 0, 0, 0, 1}, true, {199}},
             {"behind, in the second set", {-2, 0, -0.5, 0, -2, -0.5, 0, 0, -1}, true, {15, 60, 200}},
             // 128 of 255 parts of the sum.
             {"three quarters of a pixel", {s, 0, 0, 0, s, 0, 0, 0, 1}, false, {10}},
             {"half a pixel", {0.5, 0, 0, 0, 1, 0, 0, 0, 1}, false, {9, 9}},
             {"flat", {0, 0, 1, 0, 1, 1, 0, 0, 1}, false, {9, 9}},
             {"at the eye", {1, 0, 0, 0, 1, 0, 0, 0, 1e-6}, false, {200}},
             {"nothing left", {1, 0, 9, 0, 1, 0, 0, 0, 1}, true, {200, 200}},
             {"no area", {0, 0, 1, 0, 0, 1, 0, 0, 0}, true, {200}},
             {"overflow", {1e200, 0, 0, 0, 1e200, 0, 0, 0, 1}, false, {200}},
             {"not a number", {std::nan(""), 0, 0, 0, 1, 0, 0, 0, 1}, true, {200}}}) {
        for (const bool useVectors : {false, true}) {
            const auto pixels =
                Pixels(c.mapping, static_cast<int>(c.reds.size()), 0, source, c.cut, useVectors);
            for (std::size_t i = 0; i < pixels.size(); ++i)
                EXPECT_EQ(pixels[i][0], c.reds[i]) << c.name << i;
        }
    }
    // The last channel of two pixels, and of the default.
    EXPECT_EQ(Pixels({1, 0, -0.5, 0, 1, 0, 0, 0, 1}, 1, 0, source, true, true)[0][3], (13 + 201) / 2);
    const Source8 empty{samples.data(), 16, 2, 0, 1, 3, {200, 0, 0, 0}};
    EXPECT_EQ(Pixels({1, 0, 0, 0, 1, 0, 0, 0, 1}, 1, 0, empty, false, true)[0][0], 200);
}

/// The mean over a footprint by the slicers, before it is truncated.
std::array<double, 4> SlicedMean(const Footprint& f, const Source8& source)
{
    const Outline outline{{f.x, f.x + f.count}, {f.y, f.y + f.count}};
    const double area = std::fabs(outline.SignedArea());
    const double outside = area / f.inside - area;
    std::array<double, 4> sums{};
    double total = outside;
    for (int c = 0; c < 4; ++c)
        sums[static_cast<std::size_t>(c)] = source.defaultPixel[c] * outside;
    IncrementalPixelCoverage2D coverage;
    coverage.Initialize(f.count, f.x, f.y, outline.SignedArea() > 0 ? 1 : 0, 0);
    for (int row = 0; row <= source.bottom; ++row) {
        coverage.StartHorizontalPass(0);
        for (int column = 0; column <= source.right; ++column) {
            const double piece = coverage.GetAreaAndAdvance();
            total += piece;
            for (std::size_t c = 0; c < 4; ++c)
                sums[c] += piece * source.base[row * source.rowBytes + 4 * column + static_cast<int>(c)];
        }
    }
    for (double& sum : sums)
        sum /= total;
    return sums;
}

TEST(Footprint, SumsAreTheMeansOfTheSlicedPictures)
{
    std::mt19937 random(4);
    std::vector<std::uint8_t> samples(4 * 37 * 29);
    for (std::uint8_t& sample : samples)
        sample = static_cast<std::uint8_t>(random());
    const Source8 source{samples.data(), 4 * 37, 0, 0, 36, 28, {90, 0, 255, 7}};
    int summed = 0;
    for (int round = 0; round < 400; ++round) {
        const double angle = round % 5 == 0 ? 0 : Any(random, 0, 6.3);
        const double scale = Any(random, 1.02, 6);
        const double c = scale * std::cos(angle);
        const double s = scale * std::sin(angle);
        const double bend = round % 3 == 0 ? 0.01 : 0;
        const Mapping mapping{
            c, -s, Any(random, 0, 40), s, c, Any(random, 0, 30), Any(random, -bend, bend), bend, 1};
        const int count = 70; // more than a block, and no multiple of a group
        const double row = Any(random, -5, 5);
        const auto pixels = Pixels(mapping, count, row, source, true, false);
        ASSERT_EQ(pixels, Pixels(mapping, count, row, source, true, true));
        const double planes[4][4] = {{1, 0, 0.5, 0}, {-1, 0, 36.5, 0}, {0, 1, 0.5, 0}, {0, -1, 28.5, 0}};
        const FootprintPlanes set{planes, 4, 0};
        for (int i = 0; i < count; ++i) {
            const Mapped m(mapping, i, row, 0.5);
            Footprint footprint;
            MakeFootprint(m.x, m.y, m.w, &set, footprint);
            if (footprint.count < 3 || !(footprint.inside > 0.01)) continue;
            const auto outline = Outline{{footprint.x, footprint.x + footprint.count},
                                         {footprint.y, footprint.y + footprint.count}};
            if (std::fabs(outline.SignedArea()) < 1.01 * footprint.inside) continue;
            const auto mean = SlicedMean(footprint, source);
            for (std::size_t k = 0; k < 4; ++k) {
                // Truncated, on either side of a whole number.
                ASSERT_GT(mean[k], pixels[static_cast<std::size_t>(i)][k] - 1e-9) << round << " " << i;
                ASSERT_LT(mean[k], pixels[static_cast<std::size_t>(i)][k] + 1 + 1e-9) << round << " " << i;
            }
            ++summed;
        }
    }
    EXPECT_GT(summed, 2000);
}

} // namespace
} // namespace vfil::test
