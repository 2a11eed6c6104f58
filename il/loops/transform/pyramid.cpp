/// \file
/// The pyramid of a picture.

#include "il/loops/transform/pyramid.h"

#include "il/loops/frame/imageview.h"
#include "il/loops/frame/rowloop.h"
#include "il/loops/transform/sampling.h"

#include <cmath>

namespace vfil {

namespace {

template <class Format>
void DownScaleRow(const typename Format::Sample* low, const typename Format::Sample* high,
                  typename Format::Sample* out, long width)
{
    constexpr int kSamples = Format::kChannels;
    for (long x = 0; x < width; ++x) {
        for (int c = 0; c < kSamples; ++c) {
            const std::uint32_t sum =
                std::uint32_t{low[c]} + low[kSamples + c] + high[c] + high[kSamples + c];
            out[c] = static_cast<typename Format::Sample>((sum + 2) >> 2);
        }
        low += 2 * kSamples;
        high += 2 * kSamples;
        out += kSamples;
    }
}

/// Places of the first level on another one: the edges of the pictures lie upon each other.
void ToLevel(const double* u, long count, long level, double* out)
{
    const double scale = std::ldexp(1.0, -static_cast<int>(level));
    for (long i = 0; i < count; ++i)
        out[i] = (u[i] + 0.5) * scale - 0.5;
}

} // namespace

long CountLevels(long width, long height)
{
    if (width < 1 || height < 1) return 0;
    long count = 1;
    for (std::int64_t size = 1; size < width || size < height; size *= 2)
        ++count;
    return count;
}

void DownScale(const vfILPictureView& from, const vfILPictureView& to)
{
    const ImageView source(from);
    const ImageView target(to);
    PointFormats::Visit(to.format->id, [&](auto format) {
        using Format = decltype(format);
        using Sample = typename Format::Sample;
        for (long y = 0; y < to.height; ++y)
            DownScaleRow<Format>(reinterpret_cast<const Sample*>(source.Pixel(0, 2 * y)),
                                 reinterpret_cast<const Sample*>(source.Pixel(0, 2 * y + 1)),
                                 reinterpret_cast<Sample*>(target.Pixel(0, y)), to.width);
    });
}

double FootprintSize(double rising, double falling)
{
    // A little below the root of a half, so that a pixel of its own size stays on the first level.
    constexpr double kShorter = 0.7071067811865;
    return std::sqrt(rising > falling ? rising : falling) * kShorter;
}

LevelChoice ChooseLevel(double size, long count)
{
    double power = 1;
    for (long i = 0; i < count; ++i, power *= 2) {
        if (!(size < power)) continue;
        if (i == 0) return {0, 0};
        return {i - 1, (size - power / 2) / (power / 2)};
    }
    return {count - 1, 0};
}

void SampleLevels(const vfILTransformLevels& levels, const vfILTransformRun& run, bool useVectors,
                  const LevelChoice& choice, const double* u, const double* v, long count, unsigned char* out)
{
    const SampleRow row = FindSampleRow(useVectors, SampleForm::Bilinear, SamplePixelOf(run.output));
    const auto pixels = static_cast<std::size_t>(count);
    const auto sample = [&](long level, unsigned char* to) {
        double onLevelU[kSampleBlock];
        double onLevelV[kSampleBlock];
        ToLevel(u, count, level, onLevelU);
        ToLevel(v, count, level, onLevelV);
        row(SourceOf(levels[level], run), onLevelU, onLevelV, pixels, to);
    };
    // A share that changes no sample by half a code is none: most turns have one, by their factors' rounding.
    const double full = run.output.format->sampleBytes == 1 ? 255 : 65535;
    constexpr double kNoCode = 0.499;
    const bool larger = choice.fraction * full < kNoCode;
    if (larger || (1 - choice.fraction) * full < kNoCode) {
        sample(larger ? choice.level : choice.level + 1, out);
        return;
    }
    sample(choice.level, out);
    alignas(8) unsigned char smaller[kSampleBlock * sizeof run.defaultPixel];
    sample(choice.level + 1, smaller);
    PointFormats::Visit(run.output.format->id, [&](auto format) {
        using Sample = typename decltype(format)::Sample;
        MixSamples(reinterpret_cast<Sample*>(out), reinterpret_cast<const Sample*>(smaller), choice.fraction,
                   pixels * decltype(format)::kChannels);
    });
}

} // namespace vfil
