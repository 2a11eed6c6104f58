/// \file
/// The vector forms of the resampler's kernels, and of those that sample along the axes, against the plain
/// ones.
#include "il/rows/transform/resamplerows.h"
#include "il/rows/transform/sampleparams.h"
#include "il/rows/transform/scalerows.h"

#include "support/rowcheck.h"

namespace vfil {
namespace {

/// What the level avx2 has is what avx512 has.
std::vector<Level> OwnLevels()
{
    std::vector<Level> levels = VectorLevels();
    std::erase(levels, Level::Avx512);
    return levels;
}

/// Tables of random places among so many pixels.
struct Tables {
    Tables(std::size_t count, std::size_t pairCount, std::size_t linePixels, std::mt19937& random)
        : outputs(count), pairs(pairCount), pitch(count + kTapSlack), starts(pitch), sums(pitch),
          fractions(pitch), weights(2 * pairs * pitch),
          exact(4 * pitch), high{fractions, fractions}, low{high[0], high[0]}
    {
        for (double& weight : exact)
            weight = std::uniform_real_distribution<double>(-0.1, 1)(random);
        // Some rows stretch a line, others go to and fro.
        const bool stretches = random() % 2 != 0;
        for (std::size_t k = 0; k < outputs; ++k) {
            const std::size_t places = linePixels - 2 * pairs + 1;
            starts[k] = static_cast<std::int32_t>(stretches ? k * 7 / 10 % places : random() % places);
            fractions[k] = static_cast<std::uint32_t>(test::RandomSample(random, 65535)) * 0x10001U;
            const CubicWeights cubic = CubicWeightsOf(fractions[k] & 0xFFFF);
            for (std::size_t i = 0; i < 2; ++i) {
                const std::int32_t a = cubic.weight[2 * i], b = cubic.weight[2 * i + 1];
                high[i][k] =
                    (static_cast<std::uint32_t>(a >> 2) & 0xFFFF) | static_cast<std::uint32_t>(b >> 2) << 16;
                low[i][k] = (static_cast<std::uint32_t>(a) & 3) | (static_cast<std::uint32_t>(b) & 3) << 16;
            }
            // In parts of a whole, some of which are lost outside.
            int left = random() % 4 ? kWholeWeight : static_cast<int>(random() % kWholeWeight);
            for (std::size_t tap = 0; tap < 2 * pairs; ++tap) {
                const int weight =
                    random() % 3 ? static_cast<int>(random() % static_cast<unsigned>(left + 1)) : left;
                weights[2 * (tap / 2 * pitch + k) + tap % 2] = static_cast<std::int16_t>(weight);
                sums[k] += weight;
                left -= weight;
            }
        }
    }
    LineTaps Line() const { return {starts.data(), weights.data(), sums.data(), pitch, pairs}; }
    LerpTaps Lerp() const { return {starts.data(), fractions.data(), exact.data()}; }
    CubicTaps Cubic() const
    {
        return {
            starts.data(), {high[0].data(), high[1].data()}, {low[0].data(), low[1].data()}, exact.data()};
    }

    std::size_t outputs, pairs, pitch;
    std::vector<std::int32_t> starts, sums;
    std::vector<std::uint32_t> fractions;
    std::vector<std::int16_t> weights;
    std::vector<double> exact;
    std::vector<std::uint32_t> high[2], low[2];
};

/// Runs a kernel of each level over rows of no sample to some vectors, and compares what it wrote up to the
/// count; what it may not touch is guarded.
template <class Out, class Kernel, class Run>
void Check(const char* name, Kernel kernelAt, bool mayRunOver, std::size_t channels, Run run)
{
    for (const Level level : OwnLevels()) {
        EXPECT_NE(kernelAt(level), kernelAt(Below(level))) << name << ", compared with itself";
        for (std::size_t pixels = 0; pixels < 80; ++pixels) {
            std::mt19937 random(static_cast<unsigned>(pixels) + 5);
            const std::size_t samples = pixels * channels;
            const std::size_t slack = mayRunOver ? kTapSlack * channels : 0;
            PlacedRow<Out> out(std::vector<Out>(samples + slack), pixels % 16 * sizeof(Out), true);
            PlacedRow<Out> plain = out;
            const std::mt19937 same = random;
            run(kernelAt(level), out.Data(), pixels, random);
            random = same;
            run(kernelAt(Level::Plain), plain.Data(), pixels, random);
            std::fill_n(out.Data() + samples, slack, Out{});
            ASSERT_TRUE(out == plain) << name << ", level " << static_cast<int>(level) << ", " << pixels;
        }
    }
}

constexpr std::size_t kLinePixels = 90;

template <class Sample>
void CheckResampler(const char* name, WeighPixels<Sample> ResampleRows::*pixelsOf,
                    WeighPixels<Sample> ResampleRows::*monoOf, WeighRows<Sample> (ResampleRows::*rowsOf)[2],
                    PaintUnder<Sample> ResampleRows::*underOf,
                    MultiplyAlpha<Sample> ResampleRows::*multiplyOf)
{
    Check<Sample>(
        name, [&](Level level) { return ResampleRowsAt(level).*multiplyOf; }, false, 4,
        [&](auto kernel, Sample* out, std::size_t pixels, std::mt19937& random) {
            const auto row = EndRichSamples<Sample>(4 * pixels, random);
            std::copy(row.begin(), row.end(), out);
            kernel(out, pixels);
        });
    for (const std::size_t channels : {4U, 1U})
        for (const std::size_t pairs : {1U, 2U, 4U, 12U})
            Check<Sample>(
                name, [&](Level level) { return ResampleRowsAt(level).*(channels == 4 ? pixelsOf : monoOf); },
                true, channels,
                [&](auto kernel, Sample* out, std::size_t pixels, std::mt19937& random) {
                    const Tables tables(pixels, pairs, kLinePixels, random);
                    const auto line = EndRichSamples<Sample>((kLinePixels + 16) * channels, random);
                    kernel(line.data(), tables.Line(), out, pixels);
                });
    for (const std::size_t pairs : {1U, 2U, 5U})
        Check<Sample>(
            name, [&](Level level) { return (ResampleRowsAt(level).*rowsOf)[pairs % 2]; }, false, 1,
            [&](auto kernel, Sample* out, std::size_t samples, std::mt19937& random) {
                const Tables tables(1, pairs, 2 * pairs, random);
                std::vector<std::vector<Sample>> rows;
                std::vector<const Sample*> starts;
                std::vector<std::int16_t> weights;
                for (std::size_t i = 0; i < 2 * pairs; ++i) {
                    rows.push_back(EndRichSamples<Sample>(samples + kTapSlack, random));
                    starts.push_back(rows.back().data());
                    weights.push_back(tables.weights[2 * (i / 2 * tables.pitch) + i % 2]);
                }
                kernel(starts.data(), weights.data(), pairs, out, samples);
            });
    Check<Sample>(
        name, [&](Level level) { return ResampleRowsAt(level).*underOf; }, false, 4,
        [&](auto kernel, Sample* out, std::size_t pixels, std::mt19937& random) {
            const auto front = EndRichSamples<Sample>(4 * pixels, random);
            const auto back = EndRichSamples<Sample>(4 * pixels, random);
            std::copy(back.begin(), back.end(), out);
            kernel(front.data(), out, pixels);
        });
}

TEST(PanZoomRows, TheResamplersVectorsAreThePlainForms)
{
    CheckResampler<std::uint8_t>("bytes", &ResampleRows::pixels8, &ResampleRows::mono8, &ResampleRows::rows8,
                                 &ResampleRows::under8, &ResampleRows::multiply8);
    CheckResampler<std::uint16_t>("words", &ResampleRows::pixels16, &ResampleRows::mono16,
                                  &ResampleRows::rows16, &ResampleRows::under16, &ResampleRows::multiply16);
}

TEST(PanZoomRows, SamplingWordsAlongTheAxesIsThePlainForm)
{
    using Words = std::vector<std::uint16_t>;
    const auto words = [](std::size_t count, std::mt19937& random) {
        return EndRichSamples<std::uint16_t>(count, random);
    };
    const auto doubles = [&](std::size_t count, double scale, double offset, std::mt19937& random) {
        std::vector<double> values(count);
        for (double& value : values)
            value = std::uniform_real_distribution<double>(offset, offset + scale)(random);
        return values;
    };
    Check<double>(
        "lerp", [](Level level) { return ScaleRowsAt(level).words.lerpPixels[0]; }, true, 4,
        [&](auto kernel, double* out, std::size_t pixels, std::mt19937& random) {
            const Tables tables(pixels, 1, kLinePixels, random);
            kernel(words(kLinePixels * 4, random).data(), tables.Lerp(), out, pixels);
        });
    Check<std::uint16_t>(
        "rows", [](Level level) { return ScaleRowsAt(level).words.lerpRows[1]; }, false, 1,
        [&](auto kernel, std::uint16_t* out, std::size_t samples, std::mt19937& random) {
            const auto low = doubles(samples + kScaleSlack, 65535, 0, random);
            const auto high = doubles(samples + kScaleSlack, 65535, 0, random);
            kernel(low.data(), high.data(), {0, doubles(1, 1, 0, random)[0]}, out, samples);
        });
    Check<double>(
        "columns", [](Level level) { return ScaleRowsAt(level).words.columns; }, false, 1,
        [&](auto kernel, double* out, std::size_t samples, std::mt19937& random) {
            const Words rows[4] = {words(samples, random), words(samples, random), words(samples, random),
                                   words(samples, random)};
            const std::uint16_t* starts[4] = {rows[0].data(), rows[1].data(), rows[2].data(), rows[3].data()};
            RowWeights weights{};
            std::copy_n(doubles(4, 1.2, -0.2, random).begin(), 4, weights.exact);
            kernel(starts, weights, out, samples);
        });
    Check<std::uint16_t>(
        "cubic", [](Level level) { return ScaleRowsAt(level).words.cubicPixels[0]; }, false, 4,
        [&](auto kernel, std::uint16_t* out, std::size_t pixels, std::mt19937& random) {
            const Tables tables(pixels, 2, kLinePixels, random);
            const auto columns = doubles(kLinePixels * 4, 82000, -9000, random);
            kernel(columns.data(), tables.Cubic(), out, pixels);
        });
}

template <class Sample>
void CheckBoxes(ScaleRowsOf<Sample> ScaleRows::*rows, std::size_t channels)
{
    Check<Sample>(
        "boxes", [=](Level level) { return (ScaleRowsAt(level).*rows).sumBoxes[channels == 1]; }, false,
        channels,
        [&](auto kernel, Sample* out, std::size_t pixels, std::mt19937& random) {
            const std::size_t taps = 1 + random() % 5;
            const Tables tables(pixels, 4, kLinePixels, random);
            std::vector<double> widths(taps * tables.pitch), heights(1 + random() % 5);
            for (std::vector<double>* lengths : {&widths, &heights})
                for (double& length : *lengths)
                    length = std::uniform_real_distribution<double>(0.1, 1)(random);
            std::vector<std::vector<Sample>> lines;
            std::vector<const Sample*> starts;
            for (std::size_t i = 0; i < heights.size(); ++i) {
                lines.push_back(EndRichSamples<Sample>(channels * (kLinePixels + 16), random));
                starts.push_back(lines.back().data());
            }
            kernel(starts.data(), heights.data(), heights.size(),
                   {tables.starts.data(), widths.data(), tables.pitch, taps}, out, pixels);
        });
}

TEST(PanZoomRows, BoxesAreThePlainForm)
{
    for (const std::size_t channels : {4U, 1U}) {
        CheckBoxes<std::uint8_t>(&ScaleRows::bytes, channels);
        CheckBoxes<std::uint16_t>(&ScaleRows::words, channels);
    }
}

TEST(PanZoomRows, SamplingBytesAlongTheAxesIsThePlainForm)
{
    using Bytes = std::vector<std::uint8_t>;
    for (const std::size_t form : {0U, 1U}) {
        const std::size_t channels = form == 0 ? 4 : 1;
        Check<std::uint8_t>(
            "lerp", [&](Level level) { return ScaleRowsAt(level).bytes.lerpPixels[form]; }, true, channels,
            [&](auto kernel, std::uint8_t* out, std::size_t pixels, std::mt19937& random) {
                const Tables tables(pixels, 1, kLinePixels, random);
                const Bytes line = EndRichSamples<std::uint8_t>((kLinePixels + 16) * channels, random);
                kernel(line.data(), tables.Lerp(), out, pixels);
            });
        Check<std::uint8_t>(
            "cubic", [&](Level level) { return ScaleRowsAt(level).bytes.cubicPixels[form]; }, false, channels,
            [&](auto kernel, std::uint8_t* out, std::size_t pixels, std::mt19937& random) {
                const Tables tables(pixels, 2, kLinePixels, random);
                std::vector<std::int16_t> columns((kLinePixels + 16) * channels);
                for (std::int16_t& column : columns) // up to where the weights' overshoot takes them
                    column = static_cast<std::int16_t>(test::RandomSample(random, 22480) - 3080);
                kernel(columns.data(), tables.Cubic(), out, pixels);
            });
    }
    const auto fixed = [](std::mt19937& random) { return test::RandomSample(random, 65535); };
    for (const bool streaming : {false, true})
        Check<std::uint8_t>(
            "rows", [=](Level level) { return ScaleRowsAt(level).bytes.lerpRows[streaming]; }, false, 1,
            [&](auto kernel, std::uint8_t* out, std::size_t samples, std::mt19937& random) {
                const Bytes low = EndRichSamples<std::uint8_t>(samples, random);
                const Bytes high = EndRichSamples<std::uint8_t>(samples, random);
                const int fraction = random() % 4 ? fixed(random) : static_cast<int>(random() % 2 * 0x8000);
                kernel(low.data(), high.data(), {fraction, 0}, out, samples);
            });
    Check<std::int16_t>(
        "columns", [](Level level) { return ScaleRowsAt(level).bytes.columns; }, false, 1,
        [&](auto kernel, std::int16_t* out, std::size_t samples, std::mt19937& random) {
            const Bytes rows[4] = {
                EndRichSamples<std::uint8_t>(samples, random), EndRichSamples<std::uint8_t>(samples, random),
                EndRichSamples<std::uint8_t>(samples, random), EndRichSamples<std::uint8_t>(samples, random)};
            const std::uint8_t* starts[4] = {rows[0].data(), rows[1].data(), rows[2].data(), rows[3].data()};
            RowWeights weights{};
            std::copy_n(CubicWeightsOf(fixed(random)).weight, 4, weights.fixed);
            kernel(starts, weights, out, samples);
        });
}

} // namespace
} // namespace vfil
