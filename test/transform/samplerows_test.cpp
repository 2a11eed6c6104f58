/// \file
/// Sampling by vectors, in blocks of coordinates and along lines, against the plain form at each place.
#include "il/rows/transform/samplerows.h"

#include "support/rowcheck.h"

#include <cmath>
#include <limits>

namespace vfil {
namespace {

constexpr std::size_t kPixelBytes[kSamplePixels] = {4, 8, 1, 2};

/// A picture of noise whose memory ends with its last pixel, of which a box counts.
struct Scene {
    Scene(std::mt19937& random, std::size_t pixelBytes)
        : width(test::RandomIn(random, 1, 40)), height(test::RandomIn(random, 1, 30)),
          pixels(EndRichSamples<std::uint8_t>(static_cast<std::size_t>(width * height) * pixelBytes, random))
    {
        const auto low = [&](long size) {
            return random() % 2 == 0 ? 0 : test::RandomIn(random, 0, size - 1);
        };
        source.pixels = pixels.data();
        source.rowBytes = width * static_cast<long>(pixelBytes);
        source.left = static_cast<std::int32_t>(low(width));
        source.bottom = static_cast<std::int32_t>(low(height));
        source.right = static_cast<std::int32_t>(width - low(width - source.left));
        source.top = static_cast<std::int32_t>(height - low(height - source.bottom));
        for (unsigned char& byte : source.defaultPixel)
            byte = static_cast<unsigned char>(random());
    }

    long width, height;
    std::vector<std::uint8_t> pixels;
    SampleSource source{};
};

/// Mostly in a picture, or near its edges; sometimes whole, half way, or nowhere.
double Coordinate(std::mt19937& random, long size)
{
    std::uniform_real_distribution<double> place(-4, static_cast<double>(size) + 3);
    const double u = place(random);
    switch (random() % 16) {
    case 0:
        return std::round(u);
    case 1:
        return std::floor(u) + 0.5;
    case 2:
        return std::nextafter(std::round(2 * u) / 2, random() % 2 == 0 ? -1e9 : 1e9);
    case 3:
        return std::round(u * 131072) / 131072;
    case 4: {
        constexpr double kNowhere[] = {std::numeric_limits<double>::quiet_NaN(),
                                       std::numeric_limits<double>::infinity(), -1e300, 1e10};
        return random() % 4 == 0 ? kNowhere[random() % 4] : u;
    }
    default:
        return u;
    }
}

template <class Check>
void ForEachKernel(Check check)
{
    for (std::size_t form = 0; form < kSampleForms; ++form)
        for (std::size_t pixel = 0; pixel < kSamplePixels; ++pixel) {
            SCOPED_TRACE(testing::Message() << "form " << form << ", pixel " << pixel);
            check(form, pixel);
        }
}

std::vector<std::uint8_t> Sampled(const SampleRow& row, const Scene& scene, const std::vector<double>& u,
                                  const std::vector<double>& v, std::size_t pixelBytes)
{
    std::vector<std::uint8_t> out(u.size() * pixelBytes + 64, 0xA5);
    row(scene.source, u.data(), v.data(), u.size(), out.data());
    return out;
}

TEST(SampleRows, AreThePlainForms)
{
    std::mt19937 random(11);
    for (const Level level : VectorLevels()) {
        ForEachKernel([&](std::size_t form, std::size_t pixel) {
            if (level == Level::Avx2) {
                ASSERT_NE(SampleRowsAt(level).inside[form][pixel],
                          SampleRowsAt(Below(level)).inside[form][pixel]);
            }
            const SampleRow fast(SampleRowsAt(level), SampleForm(form), SamplePixel(pixel));
            const SampleRow plain(SampleRowsAt(Level::Plain), SampleForm(form), SamplePixel(pixel));
            for (int turn = 0; turn < 300; ++turn) {
                const Scene scene(random, kPixelBytes[pixel]);
                std::vector<double> u(static_cast<std::size_t>(turn));
                std::vector<double> v(u.size());
                // Half of the blocks lie inside, where the vectors are.
                const bool inside = turn % 2 == 0;
                for (std::size_t i = 0; i < u.size(); ++i) {
                    u[i] = Coordinate(random, scene.width);
                    v[i] = Coordinate(random, scene.height);
                    if (inside) u[i] = std::abs(std::fmod(u[i], static_cast<double>(scene.width) - 1));
                    if (inside) v[i] = std::abs(std::fmod(v[i], static_cast<double>(scene.height) - 1));
                }
                ASSERT_EQ(Sampled(fast, scene, u, v, kPixelBytes[pixel]),
                          Sampled(plain, scene, u, v, kPixelBytes[pixel]))
                    << "turn " << turn;
            }
        });
    }
}

/// Lines that lie in the picture, cross its edges, miss it, stand still, or go along its grid.
TEST(SampleRows, FollowLines)
{
    std::mt19937 random(12);
    std::vector<Level> levels = VectorLevels();
    levels.push_back(Level::Plain);
    const auto fixed = [](double u) { return static_cast<std::int64_t>(std::ldexp(u, kStepBits)); };
    ForEachKernel([&](std::size_t form, std::size_t pixel) {
        const SampleRow plain(SampleRowsAt(Level::Plain), SampleForm(form), SamplePixel(pixel));
        for (int turn = 0; turn < 300; ++turn) {
            const Scene scene(random, kPixelBytes[pixel]);
            const auto place = [&](long size) {
                const double u = Coordinate(random, size);
                return fixed(std::abs(u) < 1000 ? u : 0.0);
            };
            const long count = test::RandomIn(random, 0, 600);
            const auto way = [&](std::int64_t from, long size) {
                const long steps = random() % 3 == 0 ? 7 : std::max(count, 1L);
                return random() % 4 == 0 ? fixed(static_cast<double>(random() % 3) / 2 - 0.5)
                                         : (place(size) - from) / steps;
            };
            SampleSteps steps{place(scene.width), place(scene.height), 0, 0};
            steps.du = way(steps.u, scene.width);
            steps.dv = way(steps.v, scene.height);
            std::vector<double> u;
            std::vector<double> v;
            for (long i = 0; i < count; ++i) {
                u.push_back(StepAt(steps.u, steps.du, i));
                v.push_back(StepAt(steps.v, steps.dv, i));
            }
            const auto expected = Sampled(plain, scene, u, v, kPixelBytes[pixel]);
            for (const Level level : levels) {
                const SampleRow fast(SampleRowsAt(level), SampleForm(form), SamplePixel(pixel));
                std::vector<std::uint8_t> out(expected.size(), 0xA5);
                fast(scene.source, steps, u.size(), out.data());
                ASSERT_EQ(out, expected) << "turn " << turn << ", level " << static_cast<int>(level);
            }
        }
    });
}

} // namespace
} // namespace vfil
