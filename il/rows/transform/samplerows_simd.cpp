/// \file
/// The vector forms of the sampling kernels, for places whose pixels are all within the picture. At first the
/// places of a block are turned into offsets and fractions, by vectors; then each is fetched by ordinary
/// loads, which is as fast as gathering where that is fast, and much faster where it is not.
#include "il/rows/transform/samplebytes.h"
#include "il/rows/transform/samplewords.h"

#include <type_traits>

namespace vfil {
namespace {

#if defined(__AVX2__) && !defined(__AVX512BW__)

template <class Pixel>
void WriteNearest(Pixel, const SampleSource& source, const Places& places, std::size_t count,
                  std::uint8_t* out)
{
    for (std::size_t at = 0; at < count; ++at)
        std::memcpy(out + at * Pixel::kBytes, source.pixels + places.offset[at], Pixel::kBytes);
}

template <SampleForm form, class Pixel>
using PlacesOf = std::conditional_t<form == SampleForm::Nearest, Places,
                                    std::conditional_t<Pixel::kWords, ExactPlaces, FixedPlaces>>;

template <SampleForm form, class Pixel>
void Write(const SampleSource& source, const PlacesOf<form, Pixel>& places, std::size_t count,
           std::uint8_t* out)
{
    if constexpr (form == SampleForm::Nearest) WriteNearest(Pixel{}, source, places, count, out);
    if constexpr (form == SampleForm::Bilinear) WriteBilinear(Pixel{}, source, places, count, out);
    if constexpr (form == SampleForm::Bicubic) WriteBicubic(Pixel{}, source, places, count, out);
}

/// Block by block; the ragged end in a buffer, where the first place stands for those that lack.
template <SampleForm form, class Pixel, class Coordinates>
void Sample(const SampleSource& source, Coordinates coordinates, std::size_t count, std::uint8_t* out)
{
    PlacesOf<form, Pixel> places;
    while (count >= kGroup) {
        const std::size_t block = count < kBlock ? count / kGroup * kGroup : kBlock;
        Find<form, Pixel>(source, coordinates, block, places);
        Write<form, Pixel>(source, places, block, out);
        coordinates.Advance(block);
        out += block * Pixel::kBytes;
        count -= block;
    }
    if (count == 0) return;
    coordinates.Pad(count);
    Find<form, Pixel>(source, coordinates, kGroup, places);
    for (std::size_t at = count; at < kGroup; ++at)
        places.offset[at] = places.offset[0];
    std::uint8_t last[kGroup * Pixel::kBytes];
    Write<form, Pixel>(source, places, kGroup, last);
    std::memcpy(out, last, count * Pixel::kBytes);
}

template <SampleForm form, class Pixel>
void SampleInside(const SampleSource& source, const double* u, const double* v, std::size_t count,
                  unsigned char* out)
{
    Sample<form, Pixel>(source, ByDoubles(u, v), count, out);
}

template <SampleForm form, class Pixel>
void SampleSteps(const SampleSource& source, const vfil::SampleSteps& steps, std::size_t count,
                 unsigned char* out)
{
    if constexpr (form == SampleForm::Nearest || !Pixel::kWords) {
        Sample<form, Pixel>(source, BySteps(steps), count, out);
        return;
    }
    constexpr double kUnit = 1.0 / static_cast<double>(std::int64_t{1} << kStepBits);
    vfil::SampleSteps left = steps;
    double u[kBlock];
    double v[kBlock];
    for (std::size_t done = 0; done < count; done += kBlock) {
        const std::size_t block = count - done < kBlock ? count - done : kBlock;
        for (std::size_t at = 0; at < block; ++at, left.u += left.du, left.v += left.dv) {
            u[at] = static_cast<double>(left.u) * kUnit;
            v[at] = static_cast<double>(left.v) * kUnit;
        }
        Sample<form, Pixel>(source, ByDoubles(u, v), block, out + done * Pixel::kBytes);
    }
}

std::size_t CountWithin(const SampleBounds& bounds, const double* u, const double* v, std::size_t count)
{
    const F64 lowU = SplatDouble(bounds.lowU);
    const F64 lowV = SplatDouble(bounds.lowV);
    const F64 highU = SplatDouble(bounds.highU);
    const F64 highV = SplatDouble(bounds.highV);
    std::size_t at = 0;
    for (; count - at >= 4; at += 4) {
        const F64 x = LoadDoubles(u + at);
        const F64 y = LoadDoubles(v + at);
        if (!AllTrue(AtLeast(x, lowU) & (x < highU) & AtLeast(y, lowV) & (y < highV))) break;
    }
    while (at < count && u[at] >= bounds.lowU && u[at] < bounds.highU && v[at] >= bounds.lowV &&
           v[at] < bounds.highV)
        ++at;
    return at;
}

using FourBytes = PixelOf<std::uint8_t, 4>;
using FourWords = PixelOf<std::uint16_t, 4>;
using Byte = PixelOf<std::uint8_t, 1>;
using Word = PixelOf<std::uint16_t, 1>;

template <SampleForm form, class... Pixels>
void FillForm(SampleRows& rows)
{
    constexpr auto kForm = static_cast<std::size_t>(form);
    std::size_t pixel = 0;
    ((rows.inside[kForm][pixel] = SampleInside<form, Pixels>,
      rows.steps[kForm][pixel++] = SampleSteps<form, Pixels>),
     ...);
}

#endif

} // namespace

namespace VFIL_LEVEL {

/// At the level avx512 those of avx2 stay: what takes the time is to fetch the pixels, which vectors of any
/// size do one by one.
void Fill([[maybe_unused]] SampleRows& rows)
{
#if defined(__AVX2__) && !defined(__AVX512BW__)
    FillForm<SampleForm::Nearest, FourBytes, FourWords, Byte, Word>(rows);
    FillForm<SampleForm::Bilinear, FourBytes, FourWords, Byte, Word>(rows);
    FillForm<SampleForm::Bicubic, FourBytes, FourWords, Byte, Word>(rows);
    rows.countInside = CountWithin;
#endif
}

} // namespace VFIL_LEVEL
} // namespace vfil
