/// \file
/// Order, channels, depth and premultiplication of pixel rows.

#include "host/pixelrows.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <type_traits>

namespace vfil::host {

namespace {

/// Calls \p step with a sample of the type that has \p sampleBytes.
template <class Step>
auto WithSample(int sampleBytes, Step step)
{
    return sampleBytes == 1 ? step(std::uint8_t{}) : step(std::uint16_t{});
}

template <class Sample>
constexpr Sample kFull = std::numeric_limits<Sample>::max();

template <class Sample>
void Expand(const Sample* from, int channels, Sample* to, long pixels)
{
    const bool colour = channels >= 3;
    const bool alpha = channels == 2 || channels == 4;
    for (long i = 0; i < pixels; ++i, from += channels, to += 4) {
        to[0] = from[0];
        to[1] = colour ? from[1] : from[0];
        to[2] = colour ? from[2] : from[0];
        to[3] = alpha ? from[channels - 1] : kFull<Sample>;
    }
}

template <class Sample>
Sample Unpremultiply(Sample colour, Sample alpha)
{
    if (alpha == 0) return 0;
    // 65535 * 65535 + 32767 fits 32 bits.
    const std::uint32_t scaled = std::uint32_t{colour} * kFull<Sample> + std::uint32_t{alpha} / 2;
    return static_cast<Sample>(std::min<std::uint32_t>(scaled / alpha, kFull<Sample>));
}

template <class Sample>
void Unpremultiply(const Sample* from, Sample* to, long pixels)
{
    for (long i = 0; i < pixels; ++i, from += 4, to += 4) {
        for (int c = 0; c < 3; ++c) {
            to[c] = Unpremultiply(from[c], from[3]);
        }
        to[3] = from[3];
    }
}

template <class Sample>
void Premultiply(const Sample* from, Sample* to, long pixels)
{
    constexpr int kBits = std::numeric_limits<Sample>::digits;
    for (long i = 0; i < pixels; ++i, from += 4, to += 4) {
        const std::uint32_t alpha = from[3];
        for (int c = 0; c < 3; ++c) {
            // To the nearest by shifts; full * full and the half added fit 32 bits, and so does the sum.
            const std::uint32_t x = from[c] * alpha + (1u << (kBits - 1));
            to[c] = static_cast<Sample>((x + (x >> kBits)) >> kBits);
        }
        to[3] = from[3];
    }
}

template <class Sample>
bool IsOpaque(const Sample* pixels, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i) {
        if (pixels[4 * i + 3] != kFull<Sample>) return false;
    }
    return true;
}

/// Changes the depth of \p count samples; the sizes differ.
void ConvertDepth(const Picture& from, Picture& to, std::size_t count)
{
    if (from.FormatInfo().sampleBytes == 1) {
        auto* out = reinterpret_cast<std::uint16_t*>(to.Pixels());
        std::transform(from.Pixels(), from.Pixels() + count, out,
                       [](std::uint8_t v) { return static_cast<std::uint16_t>(v * 257); });
    } else {
        const auto* in = reinterpret_cast<const std::uint16_t*>(from.Pixels());
        std::transform(in, in + count, to.Pixels(),
                       [](std::uint16_t v) { return static_cast<std::uint8_t>(v >> 8); });
    }
}

std::size_t PixelCount(const Picture& picture)
{
    return picture.Bytes() / static_cast<std::size_t>(picture.PixelBytes());
}

/// A new picture of another format with the same size and state flags.
PicturePtr CreateLike(Picture& model, const GUID& format)
{
    PicturePtr picture = Picture::Create(format, model.Width(), model.Height());
    picture->SetPremultiplied(model.Premultiplied());
    return picture;
}

} // namespace

std::uint8_t* FileRow(Picture& picture, long row)
{
    return picture.Row(picture.Height() - 1 - row);
}

const std::uint8_t* FileRow(const Picture& picture, long row)
{
    return picture.Row(picture.Height() - 1 - row);
}

bool IsFileFormat(const GUID& format)
{
    return format == PXFormat_RGBA32 || format == PXFormat_RGBA64 || format == PXFormat_Mono8 ||
           format == PXFormat_Mono16;
}

const GUID& FileFormat(bool gray, int sampleBytes)
{
    if (gray) return sampleBytes == 1 ? PXFormat_Mono8 : PXFormat_Mono16;
    return sampleBytes == 1 ? PXFormat_RGBA32 : PXFormat_RGBA64;
}

void ExpandRow(const void* from, int channels, int sampleBytes, void* to, long pixels)
{
    WithSample(sampleBytes, [&](auto sample) {
        using Sample = decltype(sample);
        Expand(static_cast<const Sample*>(from), channels, static_cast<Sample*>(to), pixels);
    });
}

void PremultiplyRow(const void* from, int sampleBytes, void* to, long pixels)
{
    WithSample(sampleBytes, [&](auto sample) {
        using Sample = decltype(sample);
        Premultiply(static_cast<const Sample*>(from), static_cast<Sample*>(to), pixels);
    });
}

void UnpremultiplyRow(const void* from, int sampleBytes, void* to, long pixels)
{
    WithSample(sampleBytes, [&](auto sample) {
        using Sample = decltype(sample);
        Unpremultiply(static_cast<const Sample*>(from), static_cast<Sample*>(to), pixels);
    });
}

bool IsOpaque(const Picture& picture)
{
    const vfILFormatInfo& format = picture.FormatInfo();
    if (format.channels == 1) return true;
    return WithSample(format.sampleBytes, [&](auto sample) {
        return IsOpaque(reinterpret_cast<const decltype(sample)*>(picture.Pixels()), PixelCount(picture));
    });
}

bool CanConvert(const GUID& from, const GUID& to)
{
    if (!IsFileFormat(from) || !IsFileFormat(to)) return false;
    return GetColorModelFromFormat(from) == PXColorModel_MONO ||
           GetColorModelFromFormat(to) == PXColorModel_RGB;
}

PicturePtr ConvertPicture(const PicturePtr& picture, const GUID& format)
{
    const vfILFormatInfo& wanted = *vfILFindFormat(format);
    PicturePtr result = picture;
    if (result->FormatInfo().sampleBytes != wanted.sampleBytes) {
        const std::size_t samples =
            PixelCount(*result) * static_cast<std::size_t>(result->FormatInfo().channels);
        PicturePtr other =
            CreateLike(*result, FileFormat(result->FormatInfo().channels == 1, wanted.sampleBytes));
        ConvertDepth(*result, *other, samples);
        result = other;
    }
    if (result->Format() != format) {
        const PicturePtr other = CreateLike(*result, format);
        ExpandRow(result->Pixels(), 1, wanted.sampleBytes, other->Pixels(),
                  static_cast<long>(PixelCount(*result)));
        result = other;
    }
    return result;
}

} // namespace vfil::host
